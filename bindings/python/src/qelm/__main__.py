"""``python -m qelm`` is the command-line tool."""

from qelm_command import main

main()
