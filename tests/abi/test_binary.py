"""What the shared library exports, imports and promises to the loader."""

import re
import shutil
import subprocess

import pytest
from built import (
    BUILD,
    C_COMPILER,
    CHECKER,
    HAS_TOOL,
    IS_CROSS_BUILT,
    IS_WINDOWS,
    LIBRARY,
    OBJDUMP,
    SOURCE,
    program,
    run,
    run_built,
)

windows_only = pytest.mark.skipif(not IS_WINDOWS, reason="about the DLL")
linux_only = pytest.mark.skipif(IS_WINDOWS, reason="about the shared object")
needs_tool = pytest.mark.skipif(not HAS_TOOL, reason="built without the tool")

BINARIES = [LIBRARY, program("qelm")] if HAS_TOOL else [LIBRARY]

# Parts of Windows itself; nothing else may be needed to load the DLL.
WINDOWS_DLLS = {"kernel32.dll", "msvcrt.dll", "user32.dll", "gdi32.dll", "dwmapi.dll"}


def listed_exports():
    names = (SOURCE / "src/exports.txt").read_text().split()
    if IS_WINDOWS:
        names += (SOURCE / "src/exports-windows.txt").read_text().split()
    return sorted(names)


def dll_headers():
    return run(OBJDUMP, "-p", LIBRARY)


def exported():
    if not IS_WINDOWS:
        # Without the name of the version itself.
        found = [line.split() for line in run("nm", "-D", "--defined-only", LIBRARY).splitlines()]
        return [name.split("@")[0] for _, kind, name in found if kind != "A"]
    table = dll_headers().split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
    return re.findall(r"\[ *\d+\] (\S+)", table)


def test_exports_are_exactly_the_listed_names():
    assert sorted(exported()) == listed_exports()


def test_export_lists_are_sorted_and_without_doubles():
    for file in ("exports.txt", "exports-windows.txt"):
        names = (SOURCE / "src" / file).read_text().split()
        assert names == sorted(set(names)), file


def test_the_header_declares_exactly_the_listed_names():
    header = (SOURCE / "include/qelm.h").read_text()
    declared = re.findall(r"^QELM_API [\w\s*]*?(\w+)\(", header, re.MULTILINE)
    names = (SOURCE / "src/exports.txt").read_text().split()
    names += (SOURCE / "src/exports-windows.txt").read_text().split()
    assert sorted(declared) == sorted(names)


def test_the_header_works_from_strict_c99():
    run_built(program("header_c99"))


@windows_only
def test_the_dll_needs_nothing_but_windows():
    needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", dll_headers())}
    assert needed and needed <= WINDOWS_DLLS


@windows_only
def test_the_dll_has_dep_aslr_and_high_entropy_addresses():
    headers = dll_headers()
    for flag in ("NX_COMPAT", "DYNAMIC_BASE", "HIGH_ENTROPY_VA"):
        assert flag in headers
    assert "Base Relocation Directory" in headers
    assert not re.search(r"Entry 5 0+ 0+ ", headers), "no relocations: ASLR would not work"


@windows_only
def test_the_dll_is_64_bit():
    assert "pei-x86-64" in run(OBJDUMP, "-f", LIBRARY)


@windows_only
def test_the_dll_carries_no_time_stamp():
    stamp = re.search(r"Time/Date\s+(.*)", dll_headers()).group(1)
    assert "1970" in stamp


@windows_only
def test_the_def_file_lists_the_exports():
    lines = (BUILD / "qelm.def").read_text().split()
    assert lines[:3] == ["LIBRARY", "qelm.dll", "EXPORTS"]
    assert lines[3:] == listed_exports()


@linux_only
def test_the_soname_is_the_major_version():
    major = re.search(r"QELM_VERSION_MAJOR (\d+)", (SOURCE / "include/qelm.h").read_text()).group(1)
    dynamic = run(OBJDUMP, "-p", LIBRARY)
    assert re.search(r"SONAME\s+(\S+)", dynamic).group(1) == f"libqelm.so.{major}"


@linux_only
def test_every_symbol_carries_the_major_version():
    major = re.search(r"QELM_VERSION_MAJOR (\d+)", (SOURCE / "include/qelm.h").read_text()).group(1)
    symbols = run("nm", "-D", "--defined-only", "--with-symbol-versions", LIBRARY)
    versions = set(re.findall(r" T \S+?@@?(\S+)", symbols))
    assert versions == {f"QELM_{major}"}


@linux_only
@pytest.mark.skipif(bool(CHECKER) or IS_CROSS_BUILT, reason="once is enough: natively, in the release")
@pytest.mark.parametrize("other", [0, 2])
def test_a_program_linked_against_another_major_version_is_refused_by_name(tmp_path, other):
    (tmp_path / "version.map").write_text(f"QELM_{other} {{ global: *; }};\n")
    (tmp_path / "other.c").write_text("const char* qelmversion(void) { return \"other\"; }\n")
    (tmp_path / "program.c").write_text("const char* qelmversion(void);\nint main(void) { return *qelmversion() == 'o' ? 7 : 0; }\n")
    soname = f"libqelm.so.{other}"
    run(C_COMPILER, "-shared", "-fPIC", "other.c", f"-Wl,-soname,{soname}", "-Wl,--version-script=version.map",
        "-o", soname, cwd=tmp_path)
    run(C_COMPILER, "program.c", soname, "-o", "program", cwd=tmp_path)

    def start(folder):
        return subprocess.run([tmp_path / "program"], env={"LD_LIBRARY_PATH": str(folder)}, capture_output=True, text=True)

    # Beside this version it finds its own; with this one alone, nothing; under its own name, a complaint.
    shutil.copy(LIBRARY, tmp_path / "libqelm.so.1")
    assert start(tmp_path).returncode == 7
    (tmp_path / soname).unlink()
    assert f"{soname}: cannot open shared object file" in start(tmp_path).stderr
    shutil.copy(LIBRARY, tmp_path / soname)
    assert f"version `QELM_{other}' not found" in start(tmp_path).stderr


@linux_only
@pytest.mark.skipif(bool(CHECKER), reason="sanitizers bring libraries of their own")
def test_the_shared_object_needs_only_the_c_and_cxx_runtime():
    needed = set(re.findall(r"NEEDED\s+(\S+)", run(OBJDUMP, "-p", LIBRARY)))
    allowed = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6",
               "ld-linux-x86-64.so.2", "ld-linux-aarch64.so.1"}  # fmt: skip
    assert needed and needed <= allowed


@linux_only
def test_the_shared_object_is_hardened():
    headers = run("readelf", "-lW", LIBRARY)
    assert "GNU_RELRO" in headers
    assert re.search(r"GNU_STACK.* RW ", headers), "the stack must not be executable"
    assert "BIND_NOW" in run("readelf", "-dW", LIBRARY) or "NOW" in run("readelf", "-dW", LIBRARY)


@linux_only
@pytest.mark.skipif(bool(CHECKER), reason="sanitizers replace the checks of the stack")
def test_the_tool_and_the_library_check_their_stacks():
    for file in BINARIES:
        assert "__stack_chk_fail" in run("nm", "-D", "--undefined-only", file), file


@linux_only
@needs_tool
def test_the_tool_is_hardened_and_can_lie_anywhere():
    tool = program("qelm")
    headers = run("readelf", "-lW", tool)
    assert "GNU_RELRO" in headers
    assert re.search(r"GNU_STACK.* RW ", headers), "the stack must not be executable"
    assert "NOW" in run("readelf", "-dW", tool)
    assert re.search(r"Type:\s+DYN", run("readelf", "-hW", tool)), "not position-independent"


@linux_only
def test_nothing_is_both_writable_and_executable():
    for file in BINARIES:
        assert not re.search(r" RWE ", run("readelf", "-lW", file)), file


@windows_only
@needs_tool
def test_the_tool_has_dep_aslr_and_high_entropy_addresses():
    headers = run(OBJDUMP, "-p", program("qelm"))
    for flag in ("NX_COMPAT", "DYNAMIC_BASE", "HIGH_ENTROPY_VA"):
        assert flag in headers


@windows_only
def test_the_tool_needs_nothing_but_windows_and_the_dll():
    needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", run(OBJDUMP, "-p", program("qelm")))}
    assert needed <= WINDOWS_DLLS | {"qelm.dll", "shell32.dll"}, needed
