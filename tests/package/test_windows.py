"""The Windows archive, unzipped and run under Wine; and the library for Microsoft's linker."""

import re
import shutil
import subprocess

import pytest
from built import SOURCE, run
from packages import VERSION

WINE = SOURCE / "scripts/run-wine"
CONSUMER = SOURCE / "tests/consumer"


def run_tool(folder, *arguments, cwd=None):
    return subprocess.run([WINE, folder / "qelm.exe", *map(str, arguments)], cwd=cwd or folder,
                          capture_output=True, text=True, stdin=subprocess.DEVNULL)


def test_it_holds_what_its_readme_names(windows):
    named = re.findall(r"^\| \[?`([^`]+)`", (windows / "README.md").read_text(), re.M)
    assert len(named) >= 7
    for name in named:
        assert (windows / name).exists(), name


def test_the_commands_of_its_readme_run_where_it_was_unzipped(windows, tmp_path):
    """In a folder with blanks and letters beyond ASCII, without a console."""
    moved = tmp_path / "Blechdach, größer 屋根"
    shutil.copytree(windows, moved)
    block = re.search(r"```\n(qelm check.*?)```", (moved / "README.md").read_text(), re.S).group(1)
    commands = [line.split()[1:] for line in block.strip().splitlines()]
    assert len(commands) == 5
    # One batch file: starting Wine costs far more than the runs.
    lines = [f"{subprocess.list2cmdline(['qelm.exe', *arguments])}\r\nif errorlevel 1 exit 1" for arguments in commands]
    (moved / "readme.bat").write_bytes("\r\n".join(["@echo off", *lines, "exit 0", ""]).encode())
    done = subprocess.run([WINE, "cmd", "/c", "readme.bat"], cwd=moved, capture_output=True, text=True,
                          stdin=subprocess.DEVNULL)
    assert done.returncode == 0, done.stdout + done.stderr
    for name in ("field.csv", "curves.svg", "roof-heat.obj", "roof-heat.mtl", "roof.html"):
        assert (moved / name).stat().st_size > 50, name
    assert "three:" in (moved / "roof.html").read_text(encoding="utf-8")


def test_it_reads_and_writes_below_a_long_path(windows, tmp_path):
    deep = tmp_path.joinpath(*["f" * 50] * 5)  # Windows' own limit was 260
    deep.mkdir(parents=True)
    shutil.copy(windows / "roof.obj", deep)
    name = str(deep / "roof.obj").replace("/", "\\")
    out = str(deep / "feld größe.csv").replace("/", "\\")
    done = run_tool(windows, "solve", f"Z:{name}", "--fix", "loop:0=0", "--fix", "loop:1=1", "-o", f"Z:{out}")
    assert done.returncode == 0, done.stderr
    assert (deep / "feld größe.csv").stat().st_size > 1000


def test_the_files_carry_version_icon_and_manifest(windows):
    for file, description in (("qelm.exe", "command line"), ("qelm.dll", "Smooth fields")):
        content = (windows / file).read_bytes()
        assert "FileVersion\0".encode("utf-16-le") in content, file
        assert VERSION.encode("utf-16-le") in content
        assert description.encode("utf-16-le") in content
        assert file.encode("utf-16-le") in content
    icon = (SOURCE / "packaging/icon/qelm.ico").read_bytes()
    largest = icon[icon.rindex(b"\x89PNG") :]
    assert largest in (windows / "qelm.exe").read_bytes()
    assert (SOURCE / "tools/qelm/qelm.manifest").read_bytes() in (windows / "qelm.exe").read_bytes()


def test_the_files_need_nothing_but_windows(windows):
    for file in ("qelm.exe", "qelm.dll"):
        needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", run("x86_64-w64-mingw32-objdump", "-p", windows / file))}
        assert needed <= {"kernel32.dll", "msvcrt.dll", "user32.dll", "gdi32.dll", "dwmapi.dll", "shell32.dll", "qelm.dll"}, file


def test_the_manual_is_a_page(windows):
    manual = (windows / "manual.html").read_text(encoding="utf-8")
    assert "<style>" in manual and "curves" in manual and "--fix" in manual
    assert "<link" not in manual


# ---- For Microsoft's linker

# Without the C library, whose headers and files for this toolchain are not here.
PROGRAM = """
#include <qelm.h>
__declspec(dllimport) void __stdcall ExitProcess(unsigned code);
int _fltused = 0;
static int near(double a, double b) { return a - b < 1e-12 && b - a < 1e-12; }
void start(void) {
  static const double xyz[] = {0,0,0,  1,0,0,  1,1,0,  0,1,0};
  static const int triangles[] = {0,1,2,  0,2,3};
  static const int tags[] = {1, 0, 1, 0};
  static const double values[] = {0, 0, 1, 0};
  static double field[4];
  int status = 0;
  MeshSystem* system = 0;
  qelmctorTagged(4, xyz, 2, triangles, tags, 0, &status, &system);
  qelmsolveTagged(system, values, field, &status);
  qelmfree(system);
  ExitProcess(status == 0 && near(field[1], 0.5) && near(field[2], 1) && near(field[3], 0.5) ? 42 : 1);
}
"""


@pytest.fixture
def kernel32(tmp_path):
    (tmp_path / "kernel32.def").write_text("LIBRARY kernel32.dll\nEXPORTS\n  ExitProcess\n")
    run("llvm-dlltool", "-m", "i386:x86-64", "-d", "kernel32.def", "-l", "kernel32.lib", cwd=tmp_path)
    return tmp_path / "kernel32.lib"


def exit_code(program):
    return subprocess.run([WINE, program], stdin=subprocess.DEVNULL).returncode


def test_a_program_of_microsofts_kind_links_with_the_import_library(zip_content, kernel32, tmp_path):
    windows = zip_content / "windows-x64"
    (tmp_path / "program.c").write_text(PROGRAM)
    run("clang", "--target=x86_64-pc-windows-msvc", "-c", "-O1", f"-I{windows}/include", "program.c", "-o", "program.obj",
        cwd=tmp_path)
    run("lld-link", "/nodefaultlib", "/entry:start", "/subsystem:console", "/out:program.exe", "program.obj",
        windows / "lib/qelm.lib", kernel32, cwd=tmp_path)
    shutil.copy(windows / "bin/qelm.dll", tmp_path)
    assert exit_code(tmp_path / "program.exe") == 42


def test_find_package_gives_microsofts_toolchains_their_import_library(zip_content, kernel32, tmp_path):
    """clang-cl and lld-link, for which CMake says MSVC."""
    (tmp_path / "program.c").write_text(PROGRAM)
    (tmp_path / "CMakeLists.txt").write_text(f"""
cmake_minimum_required(VERSION 3.25)
project(microsoft LANGUAGES C)
find_package(qelm REQUIRED)
add_executable(program program.c)
target_link_libraries(program PRIVATE qelm::qelm {kernel32})
target_compile_options(program PRIVATE /GS-)
target_link_options(program PRIVATE /nodefaultlib /entry:start /subsystem:console /manifest:no)
""")
    run("cmake", "-S", tmp_path, "-B", tmp_path / "tree", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
        "-DCMAKE_SYSTEM_NAME=Windows", "-DCMAKE_C_COMPILER=clang-cl-14", "-DCMAKE_C_COMPILER_TARGET=x86_64-pc-windows-msvc",
        "-DCMAKE_LINKER=lld-link", "-DCMAKE_RC_COMPILER=llvm-rc", "-DCMAKE_MT=llvm-mt", "-DCMAKE_C_COMPILER_WORKS=ON",
        "-DCMAKE_C_COMPILER_LAUNCHER=", "-DCMAKE_C_STANDARD_LIBRARIES=", "-DCMAKE_MSVC_RUNTIME_LIBRARY=MultiThreaded",
        f"-Dqelm_DIR={zip_content}/windows-x64/lib/cmake/qelm")
    assert "windows-x64/lib/qelm.lib" in (tmp_path / "tree/build.ninja").read_text()
    run("cmake", "--build", tmp_path / "tree")
    shutil.copy(zip_content / "windows-x64/bin/qelm.dll", tmp_path / "tree")
    assert exit_code(tmp_path / "tree/program.exe") == 42
