#!/usr/bin/python3
"""Reads and writes mesh files with the tool and with peers; prints a section of Markdown.

usage: mesh_files.py PROGRAM RESULTS [TRIANGLES [RUNS [REGEX]]]

PROGRAM is mesh_files_bench. One surface of TRIANGLES (a million) is read from a file of every
format and written into every format, by the tool and by each peer that knows it, in turn, RUNS
(5) times. Times stay in RESULTS, a JSON file; REGEX measures some files alone, "^read text", and
the section has all. What counts is the processor time from the call until the mesh is in memory,
or the file is in a folder in memory (/dev/shm): not the start of a process, of Python or of its
modules. Peers are called in one Python process; VTK, assimp and most of what meshio and numpy do is
compiled code there. Both processes keep the memory that they free, so that nobody pays for fresh
pages; the tool's, which is a new one each time, does all twice and counts the second time.
"""

import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import time

os.environ.setdefault("VTK_SMP_BACKEND_IN_USE", "Sequential")
# glibc's, of this process and of those that it starts.
KEEPING_MEMORY = {"MALLOC_MMAP_MAX_": "0", "MALLOC_TRIM_THRESHOLD_": str(2**40)}
if any(name not in os.environ for name in KEEPING_MEMORY):
    os.execve(sys.executable, [sys.executable, *sys.argv], {**os.environ, **KEEPING_MEMORY})
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "peers"))

import mesh_formats  # noqa: E402

PEERS = ["meshio", "VTK", "assimp", "ezdxf", "numpy"]


def milliseconds(call, *arguments):
    start = time.process_time()
    result = call(*arguments)
    passed = 1e3 * (time.process_time() - start)
    del result
    return passed


class Bench:
    def __init__(self, program, folder, triangles, runs):
        self.program, self.folder, self.runs = program, folder, runs
        self.surface = mesh_formats.Surface(triangles)
        self.source = folder / "source.ply"
        self.surface.meshio(field=True).write(self.source)

    def qelm(self, *words):
        done = subprocess.run([self.program, *map(str, words)], capture_output=True, text=True, check=True)
        time_passed, triangles = done.stdout.split()
        assert int(triangles) == len(self.surface.faces), words
        return float(time_passed)

    def writes(self, name):
        """Under the name that says what it is, then moved."""

        def write(path):
            written = self.folder / "own" / name
            written.parent.mkdir(exist_ok=True)
            self.qelm("write", self.source, written)
            written.rename(path)

        return write

    def in_turn(self, contenders):
        times = {name: [] for name in contenders}
        for _ in range(self.runs):
            for name, call in contenders.items():
                times[name].append(call())
        return times

    def reading(self, name, make, peers):
        path = self.folder / name
        make(path)
        contenders = {"qelm": lambda: self.qelm("read", path)}
        for peer, read in peers.items():
            contenders[peer] = lambda read=read: milliseconds(read, path)
        times = self.in_turn(contenders)
        path.unlink()
        return times

    def writing(self, name, peers):
        own, other = self.folder / name, self.folder / "other" / name
        other.parent.mkdir(exist_ok=True)
        contenders = {"qelm": lambda: self.qelm("write", self.source, own)}
        for peer, write in peers.items():
            contenders[peer] = lambda write=write: milliseconds(write, other)
        times = self.in_turn(contenders)
        own.unlink()
        other.unlink(missing_ok=True)
        return times

    def run(self, wanted):
        """{"read NAME" or "write NAME": {contender: milliseconds}} for each that is wanted."""
        for name, (make, peers) in mesh_formats.readings(self.surface, self.writes).items():
            if wanted.search(f"read {name}"):
                yield f"read {name}", self.reading(name, make, peers)
        curves, mesh = self.folder / "source-curves.vtp", self.folder / "source-mesh.ply"
        self.writes("curves.vtp")(curves)
        self.writes("mesh.ply")(mesh)
        for name, peers in mesh_formats.writings(self.surface, curves, mesh).items():
            if wanted.search(f"write {name}"):
                yield f"write {name}", self.writing(name, peers)


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "|".join([" --- "] + [" --: "] * (len(head) - 1)) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def digits(x):
    return f"{x:.0f}" if x >= 10 else f"{x:.1f}" if x >= 1 else f"{x:.2f}" if x >= 0.1 else f"{x:.3f}"


def rows(results, kind):
    for name, times in results.items():
        if not name.startswith(kind):
            continue
        own = statistics.median(times["qelm"])
        row = [f"`{name.removeprefix(kind)}`", digits(own)]
        yield row + [digits(own / statistics.median(times[peer])) if times.get(peer) else "–" for peer in PEERS]


def section(results, triangles):
    head = ["ms", *(f"/ {peer}" for peer in PEERS)]

    def part(kind):
        found = list(rows(results, kind))
        used = [0, 1, *(k for k in range(2, len(head) + 1) if any(row[k] != "–" for row in found))]
        return table([["", *head][k] for k in used], [[row[k] for k in used] for row in found])

    return f"""## Mesh files

Processor time of the tool's readers and writers on {triangles:,} triangles, and its ratio to that of peers; below 1 the
tool is faster. Reading begins with the file and ends with triangles in memory, writing ends with the file in a folder
in memory. Both sides take the same file, or write the same mesh. No process's start counts, and freed memory is kept. A
dash: the peer does not know the format, or there is none.

What is not quite the same work: VTK and meshio take the arrays of binary VTK files as they lie in the file, and neither
looks at an index. The tool has the system show it the file's pages, makes 32-bit indices of those in the file and looks
at each. It makes one vertex of those of a glTF file that lie on each other, which no peer does, nor assimp with those of
STL. VTK's readers of OBJ, PLY and STL and its writers of PLY and STL keep single precision, and so does all of assimp.

Reading:

{part("read ")}

Writing: the mesh, its heat map, its gradients, a hundred level curves, its field.

{part("write ")}
"""


def main():
    program, kept = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    triangles = int(sys.argv[3]) if len(sys.argv) > 3 else 1_000_000
    runs = int(sys.argv[4]) if len(sys.argv) > 4 else 5
    wanted = re.compile(sys.argv[5] if len(sys.argv) > 5 else "")
    results = json.loads(kept.read_text()) if kept.exists() else {}
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        bench = Bench(program, pathlib.Path(folder), triangles, runs)
        count = len(bench.surface.faces)
        for name, times in bench.run(wanted):
            results[name] = times
            print(name, {peer: round(statistics.median(all_times)) for peer, all_times in times.items()}, file=sys.stderr, flush=True)
            kept.write_text(json.dumps(results, indent=1))
    print(section(results, count))


if __name__ == "__main__":
    main()
