"""The command ``qelm``: the tool that the wheel carries.

It stands beside the package, not in it, so that the tool starts without numpy.
"""

import os
import pathlib
import subprocess
import sys
from typing import NoReturn


def main() -> NoReturn:
    """Becomes the tool; on Windows, waits for it and passes on its exit code."""
    name = "qelm.exe" if sys.platform == "win32" else "qelm"
    tool = os.environ.get("QELM_TOOL") or str(pathlib.Path(__file__).resolve().parent / "qelm/native/bin" / name)
    if not os.path.isfile(tool):
        sys.exit(f"qelm: this installation has no command-line tool at {tool}; install qelm's wheel")
    try:
        if sys.platform == "win32":
            sys.exit(subprocess.call([tool, *sys.argv[1:]]))
        os.execv(tool, [tool, *sys.argv[1:]])
    except OSError as error:
        sys.exit(f"qelm: the command-line tool {tool} cannot be run: {error.strerror}")


if __name__ == "__main__":
    main()
