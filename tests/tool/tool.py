"""Runs the command-line tool in a folder and looks at what it left there."""

import csv
import json
import os
import subprocess

import built


class Tool:
    def __init__(self, folder):
        self.folder = folder

    def write(self, name, content):
        path = self.folder / name
        if isinstance(content, str):
            content = content.encode()
        path.write_bytes(content)
        return name

    def run(self, *arguments, env=None):
        return subprocess.run(
            [*built.LAUNCHER, built.program("qelm"), *map(str, arguments)],
            cwd=self.folder,
            capture_output=True,
            encoding="utf-8",
            env={**os.environ, **(env or {})},
        )

    def ok(self, *arguments):
        done = self.run(*arguments)
        assert done.returncode == 0, done.stderr
        return done

    def json(self, *arguments):
        done = self.ok(*arguments, "--json")
        return json.loads(done.stdout)

    def fails(self, code, *arguments):
        """The message; nothing may stand on the standard output or be left as a file."""
        before = self.files()
        done = self.run(*arguments)
        assert done.returncode == code, f"exit {done.returncode}\n{done.stderr}"
        assert done.stdout == ""
        assert self.files() == before, "a failed run left files behind"
        assert done.stderr.startswith("qelm: error: "), done.stderr
        return done.stderr

    def files(self):
        return sorted(p.name for p in self.folder.iterdir())

    def field(self, name="field.csv"):
        """The values of a field file, after looking at its form."""
        with open(self.folder / name, newline="") as file:
            rows = list(csv.reader(file))
        assert rows[0] == ["vertex", "x", "y", "z", "value"]
        assert [int(row[0]) for row in rows[1:]] == list(range(len(rows) - 1))
        return [float(row[4]) for row in rows[1:]]

    def points(self, name="field.csv"):
        with open(self.folder / name, newline="") as file:
            return [tuple(map(float, row[1:4])) for row in list(csv.reader(file))[1:]]
