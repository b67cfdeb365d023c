"""Runs the command-line tool in a folder and looks at what it left there."""

import csv
import json
import subprocess
import tempfile

import built


def refusal(done, code):
    """The message of a run that must have failed with this code, and written nothing."""
    assert done.returncode == code, f"exit {done.returncode}\n{done.stderr}"
    assert done.stdout == ""
    assert done.stderr.startswith("qelm: error: "), done.stderr
    return done.stderr


def run_all(runs):
    """Runs many (tool, arguments), one after another, and returns what came of each.

    One Wine session for all of them: starting it costs far more than the runs.
    """
    if not built.IS_WINDOWS:
        return [tool.run(*arguments) for tool, arguments in runs]
    logs = runs[0][0].folder.parent / "logs"
    logs.mkdir()
    lines = ["@echo off"]
    for k, (tool, arguments) in enumerate(runs):
        command = subprocess.list2cmdline(map(str, (windows(built.program("qelm")), *arguments)))
        lines += [
            f'cd /d "{windows(tool.folder)}"',
            f'{command} >"{windows(logs)}\\{k}.out" 2>"{windows(logs)}\\{k}.err"',
            f'echo %errorlevel% >"{windows(logs)}\\{k}.code"',
        ]
    batch = logs / "run.bat"
    batch.write_bytes("\r\n".join([*lines, ""]).encode())
    # Its own exit code is that of the last run.
    null = subprocess.DEVNULL
    subprocess.run([*built.LAUNCHER, "cmd", "/c", windows(batch)], stdout=null, stderr=null)
    return [
        subprocess.CompletedProcess(
            arguments,
            int((logs / f"{k}.code").read_text()),
            (logs / f"{k}.out").read_text(encoding="utf-8"),
            (logs / f"{k}.err").read_text(encoding="utf-8"),
        )
        for k, (_, arguments) in enumerate(runs)
    ]


def text_of(file):
    file.seek(0)
    return file.read().decode("utf-8").replace("\r\n", "\n")


def windows(path):
    """A path of this system as Wine shows it to programs."""
    return "Z:" + str(path).replace("/", "\\")


class Tool:
    def __init__(self, folder):
        self.folder = folder

    def write(self, name, content):
        path = self.folder / name
        if isinstance(content, str):
            content = content.encode()
        path.write_bytes(content)
        return name

    def run(self, *arguments):
        # Into files, not pipes: those would have to wait for every process that Wine
        # may have left in the background.
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
            command = [*built.LAUNCHER, built.program("qelm"), *map(str, arguments)]
            done = subprocess.run(command, cwd=self.folder, stdout=out, stderr=err)
            done.stdout, done.stderr = text_of(out), text_of(err)
        return done

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
        assert self.files() == before, "a failed run left files behind"
        return refusal(done, code)

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
