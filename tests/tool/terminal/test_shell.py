"""Completion scripts and the manual page: made of what --help is made of, and in use."""

import re
import shutil
import subprocess

import pytest

import built

COMMANDS = ["info", "check", "solve", "gradient", "heatmap", "curves", "view", "weld", "repair", "completion", "manual", "help"]
posix_only = pytest.mark.skipif(built.IS_WINDOWS, reason="shells of POSIX")


@pytest.fixture(scope="module")
def installed(tmp_path_factory):
    if built.IS_WINDOWS:
        pytest.skip("installed on POSIX systems only")
    prefix = tmp_path_factory.mktemp("installed")
    built.run("cmake", "--install", built.BUILD, "--prefix", prefix)
    return prefix


class Bash:
    """Asks bash for the completions of a line, as pressing the tabulator would."""

    SCRIPT = """
source "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
compopt() { :; }
_qelm
printf '%s\\n' "${COMPREPLY[@]}"
"""

    def __init__(self, script, folder):
        self.script = script
        self.folder = folder

    def __call__(self, *words):
        command = ["bash", "-c", self.SCRIPT, "bash", self.script, "qelm", *words]
        return sorted(built.run(*command, cwd=self.folder).split())


@pytest.fixture
def bash(installed, tmp_path):
    (script,) = installed.rglob("bash-completion/completions/qelm")
    for name in ("a.obj", "b.off", "c.ply", "d.stl", "e.csv", "f.txt", "g.3mf", "h.vtu"):
        (tmp_path / name).touch()
    (tmp_path / "parts").mkdir()
    return Bash(script, tmp_path)


def test_bash_completes_commands(bash):
    assert bash("") == sorted([*COMMANDS, "-h", "--help", "--version"])
    assert bash("c") == ["check", "completion", "curves"]


def test_bash_completes_options_of_the_command(bash):
    assert bash("weld", "a.obj", "--") == sorted(["--help", "--strict", "--read-as", "--output", "--format", "--tolerance", "--quiet", "--verbose", "--json"])
    assert bash("curves", "a.obj", "--le") == ["--levels"]
    assert bash("weld", "a.obj", "--le") == []


def test_bash_completes_what_an_option_takes(bash):
    assert {"boundary=", "box:", "loop:", "near:", "vertex:"} < set(bash("solve", "a.obj", "--fix", ""))
    assert bash("solve", "a.obj", "--fix", "p") == ["part:", "part:near:", "plane:", "property:"]
    assert bash("solve", "a.obj", "--load", "") == ["e.csv", "parts"]
    assert bash("curves", "a.obj", "--format", "s") == ["svg"]
    assert "best" in bash("curves", "a.obj", "--view", "") and "X,Y,Z" not in bash("curves", "a.obj", "--view", "")
    assert bash("weld", "a.obj", "-o", "f") == ["f.txt"]
    assert bash("completion", "") == ["bash", "fish", "zsh"]
    assert bash("help", "l") == ["levels", "loads"]


def test_bash_completes_meshes_and_folders(bash):
    assert bash("solve", "") == ["a.obj", "b.off", "c.ply", "d.stl", "g.3mf", "h.vtu", "parts"]


def test_every_option_of_every_command_is_completed(qelm, bash):
    for command in COMMANDS:
        text = qelm.ok(command, "--help").stdout
        options = set(re.findall(r"(?<= |,)(--[\w-]+)", text.split("Examples:")[0]))
        assert options, command
        assert options <= set(bash(command, "--")), command


@posix_only
@pytest.mark.parametrize("shell", ["bash", "zsh", "fish"])
def test_scripts_have_no_error(qelm, shell):
    if not shutil.which(shell):
        pytest.skip(f"{shell} is not installed")
    qelm.write("script", qelm.ok("completion", shell).stdout)
    built.run(shell, "-n", qelm.folder / "script")


@posix_only
@pytest.mark.skipif(not shutil.which("fish"), reason="fish is not installed")
def test_fish_completes(installed, tmp_path):
    (script,) = installed.rglob("qelm.fish")
    run = lambda line: built.run("fish", "-N", "-c", f"source {script}; complete -C '{line}'", cwd=tmp_path,
                                 env={"HOME": str(tmp_path), "PATH": "/usr/bin:/bin"})  # fmt: skip
    assert {line.split("\t")[0] for line in run("qelm ").splitlines()} == set(COMMANDS)
    assert "--levels\tCut at N levels, evenly spaced" in run("qelm curves --").splitlines()
    assert "loop:" in run("qelm solve a.obj --fix ").split()


def test_an_unknown_shell_is_refused(qelm):
    assert "completion tcsh: give bash, zsh or fish" in qelm.fails(2, "completion", "tcsh")


def test_the_manual_page_has_every_command_option_and_section(qelm):
    page = qelm.ok("manual").stdout.replace("\\-", "-")
    assert page.startswith('.TH QELM 1 "" "qelm ')
    for command in COMMANDS:
        assert f".SS qelm {command}" in page
        text = qelm.ok(command, "--help").stdout
        for line in text[text.index("Examples:") :].partition("\nMore:")[0].splitlines():
            assert line in page, line
        for option in re.findall(r"^ +(?:-\w,)?(--[\w-]+)", text.split("Examples:")[0], re.MULTILINE):
            assert re.search(rf"^\\fB(-\w,)?{option}\\fR", page, re.MULTILINE), option
    for topic in re.findall(r"^  qelm help (\w+) ", qelm.ok("help").stdout, re.MULTILINE):
        for line in qelm.ok("help", topic).stdout.splitlines()[1:]:
            assert line in page.replace("\\e", "\\"), line
        assert page.count(f".SH {topic.upper()}\n") == 1


@posix_only
@pytest.mark.skipif(not shutil.which("groff"), reason="groff is not installed")
def test_the_installed_manual_page_has_no_warning(installed):
    (page,) = installed.rglob("man1/qelm.1")
    done = subprocess.run(["groff", "-man", "-ww", "-Tutf8", page], capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")
    text = re.sub(r"\x1b\[\d*m", "", done.stdout)
    assert "qelm - smooth fields between prescribed values" in text.replace("−", "-").replace("‐", "-")
