"""The sources against the .NET Framework's own interface, where Mono's reference assemblies are."""

import pathlib

import pytest
from built import SOURCE, run

FRAMEWORK = pathlib.Path("/usr/lib/mono/4.8-api")


@pytest.mark.skipif(not FRAMEWORK.exists(), reason="mono-devel is not installed")
def test_the_sources_compile_for_net_framework_4_8(tmp_path):
    sources = sorted((SOURCE / "bindings/csharp/src").glob("*.cs"))
    run("mcs", "-langversion:7", "-warnaserror", "-unsafe", "-noconfig", "-nostdlib",
        f"-reference:{FRAMEWORK}/mscorlib.dll", "-target:library", f"-out:{tmp_path}/Qelm.dll", *sources)
