"""The release packages: built, unpacked and used; built again elsewhere, the same bytes."""

import os
import re
import shutil
import subprocess
import xml.etree.ElementTree as ElementTree
import zipfile

from built import SOURCE, run
from packages import IN_CI, NUPKG, VERSION, build_packages, ready_tree

EXPECTED = "0 0.5 1 0.5\n"
CONSUMER = SOURCE / "tests/consumer"


def under_wine(program):
    return run(SOURCE / "scripts/run-wine", program).replace("\r", "")


def test_built_again_in_another_folder_all_packages_are_the_same_bytes(packages, tmp_path):
    # Compiling the tool takes two minutes; continuous integration does that once. There, either
    # library was compiled by a preset and is compiled by the script, and what one tests the other ships.
    names = ["developers", "nuget"] if IN_CI else []
    again = build_packages(tmp_path, *ready_tree("linux-x64", "linux-release"), *names)
    built = sorted(path.name for path in again.iterdir())
    assert len(built) == (2 if names else 10)
    for name in built:
        if zipfile.is_zipfile(again / name):
            first, second = zipfile.ZipFile(packages / name), zipfile.ZipFile(again / name)
            assert first.namelist() == second.namelist()
            for entry in first.namelist():
                assert first.read(entry) == second.read(entry), f"{name}: {entry}"
        assert (packages / name).read_bytes() == (again / name).read_bytes(), name


# ---- The zip file for plug-in developers


def test_the_zip_holds_what_a_developer_needs(zip_content):
    names = {path.relative_to(zip_content).as_posix() for path in zip_content.rglob("*")}
    assert {
        "README.md", "CHANGELOG.md", "LICENSE", "viridis.PNG",
        "windows-x64/include/qelm.h", "windows-x64/bin/qelm.dll", "windows-x64/lib/qelm.def",
        "windows-x64/lib/libqelm.dll.a", "windows-x64/lib/qelm.lib", "windows-x64/lib/cmake/qelm/qelmConfig.cmake",
        "linux-x64/include/qelm.h", "linux-x64/lib/libqelm.so", "linux-x64/lib/pkgconfig/qelm.pc",
        "linux-x64/lib/cmake/qelm/qelmConfig.cmake",
        "csharp/README.md", "csharp/src/Qelm.csproj", "csharp/src/MeshSystem.cs",
        "csharp/samples/RimCurves/Program.cs",
    } <= names  # fmt: skip
    assert not [name for name in names if name.lower().endswith((".pdb", ".dbg", "/bin/qelm", ".obj"))]


def test_every_file_that_its_readme_names_is_there(zip_content):
    named = re.findall(r"^\| `([^`]+)` \|", (zip_content / "README.md").read_text(), re.M)
    assert len(named) > 5
    for name in named:
        assert (zip_content / name).exists(), name


def test_a_linux_program_builds_against_it_and_runs(zip_content, tmp_path):
    prefix = zip_content / "linux-x64"
    assert (prefix / "lib/libqelm.so").is_symlink()
    run("cmake", "-S", CONSUMER, "-B", tmp_path, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}")
    run("cmake", "--build", tmp_path)
    assert run(tmp_path / "square") == EXPECTED


def test_a_windows_program_builds_against_it_and_runs(zip_content, tmp_path):
    prefix = zip_content / "windows-x64"
    run("cmake", "-S", CONSUMER, "-B", tmp_path, "-G", "Ninja",
        f"-DCMAKE_TOOLCHAIN_FILE={SOURCE}/cmake/toolchains/windows-mingw64.cmake",
        f"-Dqelm_DIR={prefix}/lib/cmake/qelm")
    run("cmake", "--build", tmp_path)
    shutil.copy(prefix / "bin/qelm.dll", tmp_path)
    assert under_wine(tmp_path / "square.exe") == EXPECTED


def test_no_file_tells_where_it_was_built(zip_content, nuget):
    for folder in (zip_content, nuget):
        for path in folder.rglob("*"):
            if path.is_file():
                content = path.read_bytes()
                assert str(SOURCE).encode() not in content, path
                assert b"pytest-of-" not in content, path


def test_the_csharp_sources_in_it_compile(zip_content, tmp_path):
    sources = sorted((zip_content / "csharp/src").glob("*.cs"))
    library = tmp_path / "Qelm.dll"
    run("mcs", "-langversion:7", "-unsafe", "-target:library", f"-out:{library}", *sources)
    sample = sorted((zip_content / "csharp/samples/RimCurves").glob("*.cs"))
    run("mcs", "-langversion:7", f"-reference:{library}", f"-out:{tmp_path}/RimCurves.exe", *sample)


# ---- The NuGet package


def test_every_part_of_the_package_has_a_content_type(packages):
    archive = zipfile.ZipFile(packages / NUPKG)
    assert archive.testzip() is None
    types = ElementTree.fromstring(archive.read("[Content_Types].xml"))
    extensions = {node.get("Extension") for node in types if node.tag.endswith("Default")}
    parts = {node.get("PartName") for node in types if node.tag.endswith("Override")}
    for name in archive.namelist():
        if name != "[Content_Types].xml":
            assert f"/{name}" in parts or name.rsplit(".", 1)[-1] in extensions, name
    for part in parts:
        assert part[1:] in archive.namelist()


def test_relationships_lead_to_the_manifest_and_the_core_properties(packages):
    archive = zipfile.ZipFile(packages / NUPKG)
    relationships = ElementTree.fromstring(archive.read("_rels/.rels"))
    targets = {node.get("Type").rsplit("/", 1)[1]: node.get("Target") for node in relationships}
    assert targets["manifest"] == "/Qelm.nuspec"
    assert targets["core-properties"].endswith(".psmdcp")
    assert len({node.get("Id") for node in relationships}) == 2
    for target in targets.values():
        ElementTree.fromstring(archive.read(target[1:]))


def test_the_manifest_names_files_that_are_there_and_the_version_of_the_header(nuget):
    manifest = ElementTree.parse(nuget / "Qelm.nuspec").getroot()
    space = {"n": manifest.tag[1:].split("}")[0]}
    assert manifest.findtext(".//n:id", namespaces=space) == "Qelm"
    assert manifest.findtext(".//n:version", namespaces=space) == VERSION
    for tag in ("readme", "license"):
        assert (nuget / manifest.findtext(f".//n:{tag}", namespaces=space)).is_file()
    groups = manifest.findall(".//n:dependencies/n:group", space)
    assert [group.get("targetFramework") for group in groups] == [".NETStandard2.0"]
    assert len(groups[0]) == 0, "no dependency"


def test_a_nuget_client_finds_and_installs_it(packages, tmp_path):
    home = dict(os.environ, HOME=str(tmp_path))
    run("nuget", "install", "Qelm", "-Source", packages, "-OutputDirectory", tmp_path / "installed",
        "-NonInteractive", cwd=tmp_path, env=home, timeout=120)
    installed = tmp_path / f"installed/Qelm.{VERSION}"
    assert (installed / "lib/netstandard2.0/Qelm.dll").is_file()
    assert (installed / "runtimes/win-x64/native/qelm.dll").is_file()
    assert (installed / "build/Qelm.targets").is_file()
    assert (installed / "build/viridis.PNG").read_bytes() == (SOURCE / "data/viridis.PNG").read_bytes()


def test_the_build_targets_copy_files_that_are_there(nuget):
    targets = ElementTree.parse(nuget / "build/Qelm.targets").getroot()
    copied = [node.get("Include") for node in targets.iter() if node.get("Include")]
    assert len(copied) == 3
    for include in copied:
        folder, _, rest = include.partition(")")
        assert folder == "$(MSBuildThisFileDirectory"
        assert (nuget / "build" / rest.replace("\\", "/")).is_file()
    imported = ElementTree.parse(nuget / "buildTransitive/Qelm.targets").getroot()
    assert [node.get("Project").endswith(r"..\build\Qelm.targets") for node in imported] == [True]


def test_the_documentation_of_every_public_member_is_in_it(nuget):
    members = ElementTree.parse(nuget / "lib/netstandard2.0/Qelm.xml").getroot()
    names = {node.get("name") for node in members.iter("member")}
    for part in ("T:Qelm.MeshSystem", "P:Qelm.MeshSystem.UseCount", "M:Qelm.MeshSystem.Solve(System.Double[])"):
        assert part in names


def test_a_program_compiled_against_the_package_runs_with_its_library(nuget, tmp_path):
    readme = (nuget / "README.md").read_text()
    (tmp_path / "program.cs").write_text(re.search(r"```csharp\n(.*?)```", readme, re.S).group(1))
    shutil.copy(nuget / "lib/netstandard2.0/Qelm.dll", tmp_path)
    run("mcs", "-langversion:7", "-reference:Qelm.dll", "program.cs", cwd=tmp_path)
    missing = subprocess.run(["mono", "program.exe"], cwd=tmp_path, capture_output=True, text=True)
    assert missing.returncode != 0 and "could not be loaded" in missing.stderr
    shutil.copy(nuget / "runtimes/linux-x64/native/libqelm.so", tmp_path)
    assert run("mono", "program.exe", cwd=tmp_path) == re.search(r"```text\n(.*?)```", readme, re.S).group(1)


def test_the_dll_of_the_package_runs_a_windows_program(nuget, zip_content, tmp_path):
    windows = zip_content / "windows-x64"
    program = tmp_path / "square.exe"
    run("x86_64-w64-mingw32-gcc", CONSUMER / "square.c", f"-I{windows}/include",
        windows / "lib/libqelm.dll.a", "-o", program)
    shutil.copy(nuget / "runtimes/win-x64/native/qelm.dll", tmp_path)
    assert under_wine(program) == EXPECTED


def test_both_packages_hold_the_same_libraries(nuget, zip_content):
    assert (nuget / "runtimes/win-x64/native/qelm.dll").read_bytes() == (
        zip_content / "windows-x64/bin/qelm.dll").read_bytes()
    assert (nuget / "runtimes/linux-x64/native/libqelm.so").read_bytes() == (
        zip_content / "linux-x64/lib/libqelm.so").read_bytes()
