"""What scripts/mutants takes for a mutant, and how long a reason is good."""

import sys

import pytest
from built import SOURCE

sys.path.insert(0, str(SOURCE / "tests/mutants"))
from mutating import mutants_of  # noqa: E402
from reasons import Reasons  # noqa: E402

CODE = """#include <vector>
#define TWO 2
namespace qelm {
// a < b + 1
std::vector<int> below(const std::vector<int>& values, int limit) {
  std::vector<int> found;
  for (const int value : values) {
    if (value < limit) found.push_back(value);  // 3 < 4
  }
  const char* const text = "a < b + 1";
  found.push_back(-0.0);
  return found;
}
}
"""
REASON = """[["src/a.cpp"]]
function = "below"
old = "if (value < limit) found.push_back(value); // 3 < 4"
new = "if (value <= limit) found.push_back(value); // 3 < 4"
reason = "made up"
"""


@pytest.fixture
def tree(tmp_path):
    (tmp_path / "src").mkdir()
    (tmp_path / "src/a.cpp").write_text(CODE)
    (tmp_path / "tests/mutants/reasons").mkdir(parents=True)
    return tmp_path


def test_only_code_is_changed(tree):
    changes = [(m.line, m.change) for m in mutants_of(tree, "src/a.cpp")]
    assert changes == [
        (8, "the condition is false"), (8, "the condition is true"), (8, "< becomes <="),
        (11, "a statement is left out"), (11, "a sign is left out"), (11, "0.0 becomes (0.0 + 1)")]  # fmt: skip
    assert {m.function for m in mutants_of(tree, "src/a.cpp")} == {"below"}


def test_a_mutant_differs_in_its_line_alone(tree):
    for mutant in mutants_of(tree, "src/a.cpp"):
        lines = zip(CODE.splitlines(), mutant.apply(CODE).splitlines(), strict=True)
        assert [k for k, (a, b) in enumerate(lines, 1) if a != b] == [mutant.line]


def test_a_reason_stays_good_when_lines_move(tree):
    (tree / "tests/mutants/reasons/a.toml").write_text(REASON)
    (tree / "src/a.cpp").write_text(CODE.replace("namespace", "\n\n\nnamespace"))
    mutants = mutants_of(tree, "src/a.cpp")
    assert [m.change for m in mutants if Reasons(tree).of(m)] == ["< becomes <="]
    assert not Reasons(tree).stale(mutants)


def test_a_reason_whose_code_is_gone_is_stale(tree):
    (tree / "tests/mutants/reasons/a.toml").write_text(REASON)
    (tree / "src/a.cpp").write_text(CODE.replace("value < limit", "value < limit - 1"))
    assert Reasons(tree).stale(mutants_of(tree, "src/a.cpp"))


def test_a_reason_must_say_something(tree):
    (tree / "tests/mutants/reasons/a.toml").write_text(REASON.replace("made up", " "))
    with pytest.raises(SystemExit):
        Reasons(tree)
