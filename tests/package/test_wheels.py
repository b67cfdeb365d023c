"""The wheels: what is in them, whether their tags are true, and one in use in a fresh environment."""

import base64
import csv
import hashlib
import os
import pathlib
import re
import shutil
import stat
import sys
import zipfile

import pytest
from built import BUILD, SOURCE, run
from packages import ZIP

CONSUMER = SOURCE / "tests/consumer"
# Works on what is installed, given the interpreter.
TESTS = SOURCE / "bindings/python/tests"
PORTABLE_TESTS = [
    f"test_{what}.py" for what in ("arrays", "building", "curves", "solve", "view")
]


def wheel_for(packages, platform):
    (found,) = packages.glob(f"qelm-*{platform}*.whl")
    return found


@pytest.fixture(scope="session")
def linux_wheel(packages):
    return wheel_for(packages, "manylinux")


@pytest.fixture(scope="session")
def windows_wheel(packages):
    return wheel_for(packages, "win_amd64")


@pytest.fixture(scope="session")
def linux(linux_wheel, tmp_path_factory):
    """Unpacked."""
    folder = tmp_path_factory.mktemp("linux-wheel")
    zipfile.ZipFile(linux_wheel).extractall(folder)
    return folder


@pytest.fixture(scope="session")
def windows(windows_wheel, tmp_path_factory):
    folder = tmp_path_factory.mktemp("windows-wheel")
    zipfile.ZipFile(windows_wheel).extractall(folder)
    return folder


def binaries_in(folder):
    found = [path for path in folder.rglob("*") if path.is_file() and path.read_bytes()[:4] == b"\x7fELF"]
    assert sorted(path.name for path in found) == ["libqelm.so.1", "qelm"]
    return found


# ---- Tags


def asked_for(binary, family):
    """Versions of symbols of a family that a binary has to find elsewhere."""
    text = run("readelf", "--version-info", "--wide", binary)
    needs = text[text.index("Version needs section") :]
    return {tuple(map(int, number.split("."))) for number in re.findall(rf"Name: {family}_([\d.]+)", needs)}


def test_the_linux_tag_is_that_of_the_glibc_that_the_binaries_need(linux, linux_wheel):
    tag = int(re.search(r"-py3-none-manylinux_2_(\d+)_x86_64\.whl$", linux_wheel.name).group(1))
    newest = max(max(asked_for(binary, "GLIBC")) for binary in binaries_in(linux))
    # GCC's libraries of that glibc's time have what is asked of them; see POLICY in packaging/wheels.py.
    assert newest == (2, tag)
    for binary in binaries_in(linux):
        assert max(asked_for(binary, "GLIBCXX")) <= (3, 4, 30)
        assert max(asked_for(binary, "CXXABI")) <= (1, 3, 13)
        assert max(asked_for(binary, "GCC"), default=(0,)) <= (7, 0, 0)


def test_the_tag_follows_what_is_asked_for(monkeypatch, tmp_path):
    sys.path.insert(0, str(SOURCE / "packaging"))
    import wheels

    asked = {}
    monkeypatch.setattr(wheels, "required_versions", lambda binary: asked)
    for versions, minor in [
        ({"GLIBC": (2, 17)}, 17),
        ({"GLIBC": (2, 14), "GLIBCXX": (3, 4, 21)}, 24),
        ({"GLIBC": (2, 32), "GLIBCXX": (3, 4, 29), "CXXABI": (1, 3, 9)}, 34),
        ({"GLIBC": (2, 36), "GCC": (3, 0)}, 36),
    ]:
        asked = versions
        assert wheels.glibc_minor([tmp_path]) == minor
    asked = {"GLIBCXX": (3, 4, 99)}
    with pytest.raises(SystemExit, match="GLIBCXX_3.4.99; extend POLICY"):
        wheels.glibc_minor([tmp_path])


def test_the_linux_binaries_need_only_what_every_system_has(linux):
    needed = set()
    for binary in binaries_in(linux):
        needed |= set(re.findall(r"\(NEEDED\).*\[(.+)\]", run("readelf", "--dynamic", binary)))
    everywhere = {"ld-linux-x86-64.so.2", "libc.so.6", "libgcc_s.so.1", "libm.so.6", "libstdc++.so.6"}
    assert needed <= everywhere | {"libqelm.so.1"}


@pytest.mark.parametrize("system", ["linux", "windows"])
def test_the_wheel_file_says_what_the_name_says(system, request):
    wheel = request.getfixturevalue(f"{system}_wheel")
    folder = request.getfixturevalue(system)
    _, version, *tags = wheel.stem.split("-")
    (info,) = folder.glob("*.dist-info")
    assert info.name == f"qelm-{version}.dist-info"
    text = (info / "WHEEL").read_text()
    assert f"Tag: {'-'.join(tags)}\n" in text and "Root-Is-Purelib: false\n" in text
    metadata = (info / "METADATA").read_text()
    header = (SOURCE / "include/qelm.h").read_text()
    assert version == ".".join(re.search(rf"VERSION_{p} (\d+)", header).group(1) for p in ("MAJOR", "MINOR", "PATCH"))
    for line in (f"Version: {version}", "Requires-Python: >=3.9", "Requires-Dist: numpy (>=1.21)", "Name: qelm"):
        assert f"\n{line}\n" in metadata
    assert (SOURCE / "bindings/python/README.md").read_text() in metadata


def test_the_documents_name_the_wheels_that_are_built(linux_wheel, windows_wheel):
    for document in ("docs/python.md", "bindings/python/README.md"):
        text = (SOURCE / document).read_text()
        assert linux_wheel.name in text and "...-win_amd64.whl" in text
    assert windows_wheel.name.endswith("-py3-none-win_amd64.whl")


# ---- Contents


@pytest.mark.parametrize("system", ["linux", "windows"])
def test_a_wheel_holds_the_package_the_native_parts_and_nothing_else(system, request):
    folder = request.getfixturevalue(system)
    names = {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}
    native = {name for name in names if name.startswith("qelm/native/")}
    assert native == (
        {"qelm/native/bin/qelm", "qelm/native/lib/libqelm.so.1"}
        if system == "linux"
        else {"qelm/native/bin/qelm.exe", "qelm/native/bin/qelm.dll"}
    )
    source = SOURCE / "bindings/python/src"
    sources = {
        path.relative_to(source).as_posix()
        for path in source.rglob("*")
        if path.is_file() and "native" not in path.parts and "__pycache__" not in path.parts
    }
    assert {"qelm/__init__.py", "qelm/py.typed", "qelm/data/viridis.PNG", "qelm_command.py"} <= sources
    assert {name for name in names - native if ".dist-info/" not in name} == sources


@pytest.mark.parametrize("system", ["linux", "windows"])
def test_the_record_has_every_file_with_its_hash(system, request):
    folder = request.getfixturevalue(system)
    (record,) = folder.glob("*.dist-info/RECORD")
    rows = {name: digest for name, digest, _ in csv.reader(record.read_text().splitlines())}
    assert set(rows) == {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}
    for name, digest in rows.items():
        if not name.endswith("/RECORD"):
            expected = base64.urlsafe_b64encode(hashlib.sha256((folder / name).read_bytes()).digest())
            assert digest == "sha256=" + expected.decode().rstrip("="), name


@pytest.mark.parametrize("system", ["linux", "windows"])
def test_the_licences_of_what_is_linked_in_are_in_the_wheel(system, request):
    (info,) = request.getfixturevalue(system).glob("*.dist-info")
    listed = set(re.findall(r"`([\w.-]+\.txt)`", (info / "THIRD-PARTY.md").read_text()))
    assert listed == {path.name for path in info.glob("*.txt")} - {"entry_points.txt", "top_level.txt"}
    assert "Mozilla Public License" in (info / "MPL-2.0.txt").read_text()
    assert (info / "LICENSE").read_bytes() == (SOURCE / "LICENSE").read_bytes()


@pytest.mark.parametrize("system", ["linux", "windows"])
def test_no_file_of_a_wheel_tells_where_it_was_built(system, request):
    for path in request.getfixturevalue(system).rglob("*"):
        if path.is_file():
            content = path.read_bytes()
            assert str(SOURCE).encode() not in content, path
            assert b"pytest-of-" not in content, path


def test_programs_are_executable_and_nothing_else_is(linux_wheel, windows_wheel):
    for wheel in (linux_wheel, windows_wheel):
        for entry in zipfile.ZipFile(wheel).infolist():
            mode = entry.external_attr >> 16
            assert stat.S_IFMT(mode) in (0, stat.S_IFREG)
            assert bool(mode & 0o111) == entry.filename.startswith("qelm/native/"), entry.filename
            assert entry.date_time == (1980, 1, 1, 0, 0, 0)


def test_the_wheels_hold_the_libraries_of_the_other_packages(linux, windows, packages):
    archive = zipfile.ZipFile(packages / ZIP)
    top = pathlib.Path(ZIP).stem
    (shared,) = [name for name in archive.namelist() if re.search(r"/libqelm\.so\.\d+\.\d+\.\d+$", name)]
    assert (linux / "qelm/native/lib/libqelm.so.1").read_bytes() == archive.read(shared)
    assert (windows / "qelm/native/bin/qelm.dll").read_bytes() == archive.read(f"{top}/windows-x64/bin/qelm.dll")


# ---- In use


@pytest.fixture(scope="session")
def environment(linux_wheel, tmp_path_factory):
    """A fresh virtual environment with the wheel; numpy is the system's."""
    folder = tmp_path_factory.mktemp("venv")
    run(sys.executable, "-m", "venv", "--system-site-packages", folder)
    run(folder / "bin/pip", "install", "--no-index", "--disable-pip-version-check", linux_wheel, cwd=folder)
    return folder


def clean():
    """Nothing of this build or of its tests in the environment."""
    return {name: value for name, value in os.environ.items() if not name.startswith(("QELM_", "PYTHON"))}


def test_the_installed_package_does_what_its_readme_says(environment, tmp_path):
    text = (SOURCE / "bindings/python/README.md").read_text()
    program = re.search(r"```python\n(.*?)```", text, re.S).group(1) + "print(qelm.__file__)\n"
    printed = run(environment / "bin/python", "-c", program, cwd=tmp_path, env=clean()).splitlines()
    assert printed[-1].startswith(str(environment / "lib"))
    assert printed[:-1] == re.search(r"```text\n(.*?)```", text, re.S).group(1).splitlines()


def test_the_installed_command_is_the_tool(environment, tmp_path):
    version = run(environment / "bin/qelm", "--version", cwd=tmp_path, env=clean())
    assert version == run(BUILD / "bin/qelm", "--version")
    mesh = SOURCE / "data/roof.obj"
    run(environment / "bin/qelm", "solve", mesh, "--fix", "loop:0=0", "--fix", "loop:1=1", "-o", "field.csv", "-q",
        cwd=tmp_path, env=clean())  # fmt: skip
    assert len((tmp_path / "field.csv").read_text().splitlines()) == 22295


def test_the_bindings_own_tests_pass_on_what_is_installed(environment, tmp_path):
    for name in [*PORTABLE_TESTS, "conftest.py", "meshes.py"]:
        shutil.copy(TESTS / name, tmp_path)
    told = {name: os.environ[name] for name in os.environ if name.startswith("QELM_")}
    printed = run(environment / "bin/python", "-m", "pytest", "-q", "-p", "no:cacheprovider", tmp_path,
                  cwd=tmp_path, env={**clean(), **told, "QELM_TEST_INSTALLED": str(environment)})  # fmt: skip
    assert int(re.search(r"(\d+) passed", printed).group(1)) > 100


def test_it_can_be_uninstalled_without_a_trace(linux_wheel, tmp_path):
    run(sys.executable, "-m", "venv", "--system-site-packages", "--without-pip", tmp_path / "venv")
    pip = [sys.executable, "-m", "pip", "--disable-pip-version-check", "--python", tmp_path / "venv/bin/python"]

    def files():
        return {path for path in (tmp_path / "venv").rglob("*") if not path.is_dir()}

    before = files()
    run(*pip, "install", "--no-index", "--no-compile", linux_wheel, cwd=tmp_path)
    assert (tmp_path / "venv/bin/qelm").is_file()
    run(*pip, "uninstall", "--yes", "qelm", cwd=tmp_path)
    assert files() == before


def under_wine(program, *arguments):
    return run(SOURCE / "scripts/run-wine", program, *arguments).replace("\r", "")


def test_the_windows_library_serves_a_program_in_c(windows, tmp_path):
    (tmp_path / "qelm.def").write_text("LIBRARY qelm.dll\nEXPORTS\n" + (SOURCE / "src/exports.txt").read_text())
    run("x86_64-w64-mingw32-dlltool", "-d", "qelm.def", "-l", "libqelm.a", cwd=tmp_path)
    program = tmp_path / "square.exe"
    run("x86_64-w64-mingw32-gcc", CONSUMER / "square.c", f"-I{SOURCE}/include", tmp_path / "libqelm.a", "-o", program)
    shutil.copy(windows / "qelm/native/bin/qelm.dll", tmp_path)
    assert under_wine(program) == "0 0.5 1 0.5\n"


def test_the_windows_tool_runs_where_the_wheel_has_it(windows):
    assert under_wine(windows / "qelm/native/bin/qelm.exe", "--version") == run(BUILD / "bin/qelm", "--version")
