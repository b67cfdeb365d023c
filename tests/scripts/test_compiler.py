"""What stands in one header each, of the library and of the tool: what they take from compilers beyond the language,
and casts of indices."""

import re

import built
import pytest

EACH = pytest.mark.parametrize("part", ["src", "tools/qelm"])


def files_with(part, *patterns):
    sources = sorted(file for ending in ("h", "cpp") for file in (built.SOURCE / part).rglob(f"*.{ending}"))
    return [file.name for file in sources if any(re.search(pattern, file.read_text()) for pattern in patterns)]


@EACH
def test_builtins_of_compilers(part):
    assert files_with(part, "__builtin_", "_mm_", r"_Pragma\(") == ["compiler.h"]


@EACH
def test_casts_between_indices_and_sizes(part):
    # Others are of hashes, codes and floating-point numbers. A call in brackets has no arguments.
    inside = r"(?:[^()]|\(\))*"
    to = r"static_cast<(?:std::size_t|int|std::int32_t)>"
    assert files_with(part, rf"{to}\({inside}(?:size|begin|[Cc]ount)\(\){inside}\)",
                      rf"{to}\((?:i|j|k|v|s|t|index|vertex|triangle)\)", r"\bstd::size_t\(\w") == ["index.h"]
