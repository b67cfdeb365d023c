"""What stands in one header each: what the library takes from compilers beyond the language, and casts of indices."""

import re

import built

SOURCES = sorted(file for ending in ("h", "cpp") for file in (built.SOURCE / "src").rglob(f"*.{ending}"))


def files_with(*patterns):
    return [file.name for file in SOURCES if any(re.search(pattern, file.read_text()) for pattern in patterns)]


def test_builtins_of_compilers():
    assert files_with("__builtin_", "_mm_", r"_Pragma\(") == ["compiler.h"]


def test_casts_between_indices_and_sizes():
    # Others are of hashes, codes and floating-point numbers. A call in brackets has no arguments.
    inside = r"(?:[^()]|\(\))*"
    to = r"static_cast<(?:std::size_t|int|std::int32_t)>"
    assert files_with(rf"{to}\({inside}(?:size|begin|[Cc]ount)\(\){inside}\)",
                      rf"{to}\((?:i|j|k|v|s|t|index|vertex|triangle)\)", r"\bstd::size_t\(\w") == ["index.h"]
