"""The bit-exact functions give the same words with every compiler, on every system."""

import shutil

import pytest
from built import CHECKER, IS_CROSS_BUILT, LAUNCHER, SOURCE, program, run

EXPECTED = (SOURCE / "tests/bits/expected.txt").read_text()


def test_this_build_gives_the_words_that_are_on_record(tmp_path):
    assert run(*LAUNCHER, program("bits"), cwd=tmp_path) == EXPECTED
    assert len(EXPECTED.splitlines()) == 9


@pytest.mark.skipif(IS_CROSS_BUILT or bool(CHECKER), reason="once is enough: natively, in the release")
# The presets are g++ -O3 and -O1, clang -O1 and, for Windows and ARM, g++ -O3.
@pytest.mark.parametrize("compiler, level", [("g++", "-O0"), ("clang++", "-O3")])
def test_other_compilers_and_levels_give_the_same_words(tmp_path, compiler, level):
    assert shutil.which(compiler), f"{compiler} is missing: run scripts/setup"
    tree = tmp_path / "tree"
    run("cmake", "-S", SOURCE, "-B", tree, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={compiler}",
        f"-DCMAKE_CXX_FLAGS={level}", "-DCMAKE_BUILD_TYPE=None", "-DQELM_BUILD_TOOLS=OFF",
        "-DQELM_BUILD_CSHARP=OFF", "-DQELM_BUILD_TESTS=ON",
        # Several sources at a time: compiling is mostly headers.
        "-DCMAKE_UNITY_BUILD=ON")
    run("cmake", "--build", tree, "--target", "bits")
    assert run(tree / "bin/bits", cwd=tmp_path) == EXPECTED
