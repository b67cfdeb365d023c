"""The Linux archive and the Debian packages: unpacked, installed and used from outside the source tree."""

import os
import re
import shutil
import subprocess

import pytest
from built import SOURCE, run
from packages import VERSION

EXPECTED = "0 0.5 1 0.5\n"
CONSUMER = SOURCE / "tests/consumer"


def newest_version(file, family):
    """The newest version of symbols that a file asks for."""
    found = re.findall(rf"\b{family}_([\d.]+)", run("objdump", "-T", file))
    return max((tuple(map(int, version.split("."))) for version in found), default=(0,))


# ---- The archive


def test_it_holds_tool_library_manual_and_completions(linux):
    for name in ("README.md", "bin/qelm", "lib/libqelm.so", "include/qelm.h", "lib/cmake/qelm/qelmConfig.cmake",
                 "share/man/man1/qelm.1", "share/bash-completion/completions/qelm", "share/zsh/site-functions/_qelm",
                 "share/fish/vendor_completions.d/qelm.fish", "share/qelm/viridis.PNG", "share/qelm/roof.obj",
                 "share/doc/qelm/LICENSE", "share/doc/qelm/CHANGELOG.md"):  # fmt: skip
        assert (linux / name).exists(), name


def test_the_commands_of_its_readme_run_where_it_was_unpacked(linux, tmp_path):
    moved = tmp_path / "größer, with blanks"
    shutil.copytree(linux, moved, symlinks=True)
    commands = re.findall(r"^(?:cd|\.\./).*$", (moved / "README.md").read_text(), re.M)
    assert len(commands) == 3
    run("bash", "-euc", "\n".join(commands), cwd=moved)
    assert (moved / "share/qelm/curves.svg").stat().st_size > 10000


def test_its_tool_has_the_page_and_says_the_version(linux, tmp_path):
    assert VERSION in run(linux / "bin/qelm", "--version")
    run(linux / "bin/qelm", "view", linux / "share/qelm/roof.obj", "--fix", "loop:0=0", "--fix", "loop:1=1",
        "-o", tmp_path / "roof.html", "-q")
    assert "three:" in (tmp_path / "roof.html").read_text()


def test_it_needs_no_newer_system_than_its_readme_says(linux):
    readme = (linux / "README.md").read_text()
    for file, glibc in (("bin/qelm", (2, 34)), ("lib/libqelm.so", (2, 32))):
        assert f"glibc {glibc[0]}.{glibc[1]}" in readme
        assert newest_version(linux / file, "GLIBC") <= glibc, file
        # 3.4.29 is GCC 11.
        assert newest_version(linux / file, "GLIBCXX") <= (3, 4, 29), file


def test_its_manual_page_is_well_formed(linux):
    assert "qelm" in run("mandoc", "-T", "ascii", linux / "share/man/man1/qelm.1")


def test_a_program_builds_against_the_archive(linux, tmp_path):
    run("cmake", "-S", CONSUMER, "-B", tmp_path, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={linux}")
    run("cmake", "--build", tmp_path)
    assert run(tmp_path / "square") == EXPECTED


# ---- Debian


def test_lintian_finds_no_error(packages):
    found = subprocess.run(["lintian", "--fail-on", "error", *sorted(packages.glob("*.deb"))],
                           capture_output=True, text=True)
    assert found.returncode == 0, found.stdout


def dependencies(packages, name):
    (package,) = packages.glob(f"{name}_{VERSION}-1_*.deb")
    return run("dpkg-deb", "-f", package, "Depends")


def test_the_packages_depend_on_each_other(packages):
    library = f"libqelm{VERSION.split('.')[0]}"
    assert "libstdc++6" in dependencies(packages, library)
    for name in ("libqelm-dev", "qelm"):
        assert f"{library} (= {VERSION}-1)" in dependencies(packages, name)


def test_dpkg_knows_the_installed_packages(debian):
    listed = run("dpkg-query", f"--admindir={debian}/var/lib/dpkg", "-W", "-f", "${Package} ${Status}\n")
    assert listed.count("install ok installed") == 3


def test_the_installed_tool_runs_with_the_installed_library(debian, tmp_path):
    (library,) = debian.glob("usr/lib/*/libqelm.so.1")
    environment = dict(os.environ, LD_LIBRARY_PATH=str(library.parent))
    run(debian / "usr/bin/qelm", "curves", SOURCE / "data/roof.obj", "--fix", "loop:0=0", "--fix", "loop:1=1",
        "--levels", "3", "-o", tmp_path / "curves.json", "-q", env=environment)
    assert (tmp_path / "curves.json").stat().st_size > 1000
    # Debian's tool takes the library from the system, not from where it was built.
    assert not re.search("RPATH|RUNPATH", run("readelf", "-d", debian / "usr/bin/qelm"))


def test_a_program_builds_against_the_installed_development_files(debian, tmp_path):
    (library,) = debian.glob("usr/lib/*/libqelm.so")
    run("cmake", "-S", CONSUMER, "-B", tmp_path, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={debian}/usr",
        f"-Dqelm_DIR={library.parent}/cmake/qelm")
    run("cmake", "--build", tmp_path)
    assert run(tmp_path / "square") == EXPECTED


@pytest.mark.parametrize("package", ["qelm", "libqelm-dev", "libqelm1"])
def test_every_package_brings_copyright_and_changelog(debian, package):
    folder = debian / "usr/share/doc" / package
    assert "MIT" in (folder / "copyright").read_text()
    changelog = run("zcat", folder / "changelog.Debian.gz")
    assert VERSION in changelog
    year, month, day = re.search(rf"^## {re.escape(VERSION)} \((....)-(..)-(..)\)$",
                                 (SOURCE / "CHANGELOG.md").read_text(), re.M).groups()
    assert re.search(rf", {day} \w+ {year} ", changelog), "dated as the changelog is"
