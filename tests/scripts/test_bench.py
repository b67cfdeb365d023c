"""What scripts/bench makes of measurements; the measurements here are made up."""

import importlib.machinery
import importlib.util
import json
import re
import sys

import pytest
from built import SOURCE

sys.path.insert(0, str(SOURCE / "bench"))
import report  # noqa: E402

MS = {"construct/qelm": 30, "construct/eigen": 120, "solve/qelm": 2, "solve/eigen": 4, "levels_100/curves": 9}


@pytest.fixture
def bench(tmp_path, monkeypatch):
    loader = importlib.machinery.SourceFileLoader("bench", str(SOURCE / "scripts/bench"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench", loader))
    loader.exec_module(module)
    for name in ("PAGE", "EVERY_RATIO", "PYTHON_SECTION", "BUILD"):
        monkeypatch.setattr(module, name, tmp_path / name)
    runs = [{"run_type": "iteration", "run_name": f"{name}/sphere/natural/100000", "cpu_time": ms, "peak_bytes": 5e7,
             "made": 1} for name, ms in MS.items()]
    (tmp_path / "BUILD/results").mkdir(parents=True)
    (tmp_path / "BUILD/results/all.json").write_text(json.dumps({"benchmarks": runs}))
    monkeypatch.setattr(sys, "argv", ["bench", "--report"])
    return module


def test_the_page_opens_with_how_long_it_takes_and_has_ratios_after_it(bench):
    bench.main()
    page = bench.PAGE.read_text()
    assert re.findall("^##? (.*)", page, re.M)[:3] == ["Performance", "How long for N vertices", "Ratios"]
    opening = page.split("## Ratios")[0]
    assert "| 100k | sphere | 30.0 ms | 2.00 ms | 9.00 ms | 50.0 MB |" in opening
    assert report.processor() in opening
    assert re.search(r"^\| construct / Eigen's compute .* 0\.25 ", page, re.M)


def test_every_ratio_is_in_a_file_of_its_own(bench):
    bench.main()
    page = bench.PAGE.read_text()
    assert "Every ratio" not in page and "(every-ratio.md)" in page
    rows = re.findall(r"^\| (.*?) \| sphere, natural \|(.*)\|$", bench.EVERY_RATIO.read_text(), re.M)
    assert {what: cells.split()[2] for what, cells in rows}["solve / Eigen's solve"] == "0.50"
    assert len(rows) >= 2
