"""What the library takes from compilers beyond the language stands in one header."""

import built

SOURCES = sorted(file for ending in ("h", "cpp") for file in (built.SOURCE / "src").rglob(f"*.{ending}"))


def files_with(*words):
    return [file.name for file in SOURCES if any(word in file.read_text() for word in words)]


def test_builtins_of_compilers():
    assert files_with("__builtin_", "_mm_", "_Pragma(") == ["compiler.h"]
