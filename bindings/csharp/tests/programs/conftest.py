import pathlib
import subprocess
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parents[4] / "tests/support"))

from built import BUILD, run  # noqa: E402

ASSEMBLY = BUILD / "csharp/Qelm.dll"


class Mono:
    """Compiles and runs small programs in a folder of their own."""

    def __init__(self, folder):
        self.folder = folder

    def compile(self, source):
        """A program that finds the binding's assembly beside itself."""
        (self.folder / "program.cs").write_text(source)
        (self.folder / "Qelm.dll").write_bytes(ASSEMBLY.read_bytes())
        run("mcs", "-langversion:7", "-warnaserror", "-reference:Qelm.dll", "program.cs", cwd=self.folder)

    def run(self, program="program.exe", *arguments):
        """(exit code, output, errors)."""
        done = subprocess.run(
            ["mono", program, *map(str, arguments)], cwd=self.folder, capture_output=True, text=True
        )
        return done.returncode, done.stdout, done.stderr


@pytest.fixture
def mono(tmp_path):
    return Mono(tmp_path)
