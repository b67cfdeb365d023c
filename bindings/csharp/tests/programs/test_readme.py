"""What the README shows compiles and does what it says."""

import re

from built import LIBRARY, SOURCE

README = SOURCE / "bindings/csharp/README.md"


def test_the_first_program_prints_what_the_readme_says(mono):
    text = README.read_text()
    program = re.search(r"```csharp\n(.*?)```", text, re.S).group(1)
    printed = re.search(r"```text\n(.*?)```", text, re.S).group(1)
    mono.compile(program)
    (mono.folder / "libqelm.so").symlink_to(LIBRARY)
    assert mono.run() == (0, printed, "")
