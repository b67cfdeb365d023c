"""Compiles mutants beside a finished build and runs its suites on them."""
import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import shutil
import subprocess
import tempfile
import threading
import time
from pathlib import Path

# Quick to compile; a write beyond an array's end ends the program.
FLAGS = ["-O1", "-D_GLIBCXX_ASSERTIONS", "-w"]
PATIENCE = 4  # times what a suite takes on the sources as they are, and
GRACE = 10  # seconds

# The suites that run what is compiled from a folder: those that mirror it, then others.
SEEN_BY = {
    "export": ("export write_faults block_writer", "allocation_failure bits twin"),
    "factor": ("factor batch", "solve mesh size_limit robust_steps robust interface allocation_failure bits twin"),
    "infowindow": ("infowindow_layout", ""),
    "interface": ("interface", "mesh solve size_limit robust isolines curves export batch allocation_failure bits twin"),
    "isolines": ("isolines curves", "interface allocation_failure bits twin"),
    "mesh": ("mesh element_sums size_limit",
             "solve batch robust_steps robust interface isolines export allocation_failure bits twin"),
    "mesh/check": ("check", "robust allocation_failure bits twin"),
    "mesh/weld": ("weld", "allocation_failure bits twin"),
    "robust": ("robust_steps robust", "size_limit mesh interface allocation_failure bits"),
    "solve": ("solve batch", "robust interface allocation_failure bits twin"),
}  # fmt: skip


class Build:
    """What a finished build folder says of itself."""

    def __init__(self, root, folder):
        self.root, self.folder = root, folder
        if not (folder / "compile_commands.json").exists():
            raise SystemExit(f"mutants: {folder} has no build; scripts/test linux-release makes one")
        self.commands = {}  # object -> (words, source)
        for entry in json.loads((folder / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            if os.path.basename(words[0]) == "ccache":
                words = words[1:]
            obj = words[words.index("-o") + 1]
            if obj.startswith(("src/", "tests/")):
                self.commands[obj] = (words, Path(entry["file"]))
        self._dependents = {}
        current = None
        for line in self._ninja("-t", "deps").splitlines():
            if line and not line[0].isspace():
                current = line.split(":")[0]
            elif line.strip() and current in self.commands:
                path = os.path.normpath(folder / line.strip())
                if path.startswith(f"{root}/src/"):
                    self._dependents.setdefault(os.path.relpath(path, root), set()).add(current)

    def compiled_from(self, file):
        """Objects of the library, and of suites that compile the file themselves."""
        return sorted(o for o in self._dependents.get(file, ()) if "/qelm_objects.dir/" in o or
                      str(self.commands[o][1].relative_to(self.root)).startswith("src/"))

    def compiled_in_suite(self, file, suite):
        return sorted(o for o in self._dependents.get(file, ()) if f"/{suite}_tests.dir/" in o)

    def suites(self):
        """Of the build as it is configured now: programs of an earlier one may lie beside."""
        folders = {object.split("/")[2] for object in self.commands if object.startswith("tests/CMakeFiles/")}
        return sorted(f[: -len("_tests.dir")] for f in folders if f.endswith("_tests.dir"))

    def link_command(self, target):
        lines = [line for line in self._ninja("-t", "commands", target).splitlines() if " -o " in line and ".o" in line]
        command = next(c for c in reversed(lines) if f" -o bin/{target}" in c or " -o lib/lib" + target + ".so" in c)
        words = shlex.split(command)
        words = words[words.index("&&") + 1 :] if words[0] == ":" else words
        return words[: words.index("&&")] if "&&" in words else words

    def _ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.folder, *arguments], capture_output=True, text=True, check=True).stdout


class Judge:
    def __init__(self, root, build, jobs):
        self.root, self.build = root, build
        self._local = threading.local()
        self._lock = threading.Lock()
        self._as_is = {}  # object -> hash of what the sources as they are compile to
        self._library = build.link_command("qelm")
        self._soname = next(w.split("soname,")[1] for w in self._library if "soname," in w)
        names = [n for n in build.suites() if n != "tool_geometry"] + ["bits"]
        self._links = {n: build.link_command(n if n == "bits" else f"{n}_tests") for n in names}
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            self._takes = dict(zip(names, pool.map(self._time_as_is, names)))

    def _time_as_is(self, suite):
        begin = time.monotonic()
        with tempfile.TemporaryDirectory() as folder:
            if not self._passes(suite, self.build.folder / "bin" / self._program(suite), folder, {}, 600):
                raise SystemExit(f"mutants: {suite} fails on the sources as they are")
        return time.monotonic() - begin

    def judge(self, mutant):
        """A verdict, and which suite gave it."""
        with tempfile.TemporaryDirectory(prefix="mutant-") as folder:
            return self._judge(mutant, Path(folder))

    def _judge(self, mutant, folder):
        changed = folder / "src" / Path(mutant.file).relative_to("src")
        changed.parent.mkdir(parents=True)
        changed.write_text(mutant.apply((self.root / mutant.file).read_text()))
        objects = {}
        for obj in self.build.compiled_from(mutant.file):
            objects[obj] = self._compile(obj, mutant.file, changed, folder)
            if objects[obj] is None:
                return "not compiled", ""
        same = all(_hash(made) == self._hash_as_is(obj, mutant.file) for obj, made in objects.items())
        suites = self._in_order(mutant.file)
        tests_see_it = any(self.build.compiled_in_suite(mutant.file, s) for s in suites)
        if same and (mutant.file.endswith(".cpp") or not tests_see_it):
            return "same code", ""
        for suite in suites:
            mine = dict(objects)
            for obj in self.build.compiled_in_suite(mutant.file, suite):
                mine[obj] = mine.get(obj) or self._compile(obj, mutant.file, changed, folder)
                if mine[obj] is None:
                    return "not compiled", ""
            if not self._suite_passes(suite, mine, folder):
                return "killed", suite
        return ("same code" if same else "survived"), ""

    def _in_order(self, file):
        """Suites that can see the file: its folder's, then those of the folders that include it."""
        inside = [os.path.dirname(file)[len("src/") :]]
        for obj in self.build.compiled_from(file):
            inside.append(os.path.dirname(self.build.commands[obj][1].relative_to(self.root / "src")))
        own = SEEN_BY[inside[0]][0].split()
        others = [s for folder in inside for lot in SEEN_BY[folder] for s in lot.split() if s not in own]
        lots = [own, sorted(set(others))]
        return [s for lot in lots for s in sorted(lot, key=lambda s: self._takes.get(s, 0)) if s in self._takes]

    def _compile(self, obj, file, changed, folder):
        """The object that a source gives when `changed` is in the file's place; None if none."""
        words, source = self.build.commands[obj]
        made = folder / "objects" / obj
        made.parent.mkdir(parents=True, exist_ok=True)
        words = list(words)
        words[words.index("-o") + 1] = str(made)
        if str(source) == str(self.root / file):
            words[words.index("-c") + 1] = str(changed)
        words[1:1] = ["-I", str(folder / "src")]  # before the sources' own
        words = [w for w in words if not re.fullmatch(r"-O\d|-W.*", w)] + FLAGS
        done = subprocess.run(words, cwd=self.build.folder, capture_output=True, timeout=600)
        return made if done.returncode == 0 else None

    def _hash_as_is(self, obj, file):
        with self._lock:
            known = self._as_is.get(obj)
        if known is None:
            with tempfile.TemporaryDirectory(prefix="mutant-") as folder:
                same = Path(folder) / "src" / Path(file).relative_to("src")
                same.parent.mkdir(parents=True)
                shutil.copy(self.root / file, same)
                known = _hash(self._compile(obj, file, same, Path(folder)))
            with self._lock:
                self._as_is[obj] = known
        return known

    def _suite_passes(self, suite, objects, folder):
        program = self.build.folder / "bin" / self._program(suite)
        environment = {}
        link = self._links[suite]
        if any(o in link for o in objects) or any(w.endswith("libqelm_static.a") for w in link):
            program = self._link(link, objects, folder / suite)
        if any(w.endswith(f"lib{self._soname[3:]}.0.0") or "libqelm.so" in w for w in link):
            library = folder / "lib" / self._soname
            if not library.exists():
                library.parent.mkdir()
                if self._link(self._library, objects, library) is None:
                    return False
            environment["LD_LIBRARY_PATH"] = str(library.parent)
        if program is None:  # the linker misses something
            return False
        work = folder / f"work-{suite}"
        work.mkdir()
        return self._passes(suite, program, work, environment, PATIENCE * self._takes[suite] + GRACE)

    def _link(self, link, objects, output):
        words = [str(objects[w]) if w in objects else w for w in link if "-Map=" not in w]
        words[words.index("-o") + 1] = str(output)
        # Before the archive, whose own are then not asked for.
        mine = [str(made) for obj, made in objects.items() if "/qelm_objects.dir/" in obj]
        for k, word in enumerate(words):
            if word.endswith("libqelm_static.a"):
                words[k:k] = mine
                break
        done = subprocess.run(words, cwd=self.build.folder, capture_output=True)
        return output if done.returncode == 0 else None

    def _passes(self, suite, program, folder, environment, limit):
        arguments = [] if suite == "bits" else ["--gtest_fail_fast", "--gtest_brief=1"]
        try:
            done = subprocess.run([program, *arguments], cwd=folder, capture_output=True, timeout=limit, stdin=subprocess.DEVNULL,
                                  env={**os.environ, "QELM_TEST_SEED": "1", **environment})
        except subprocess.TimeoutExpired:
            return False
        if suite == "bits" and done.stdout.decode() != (self.root / "tests/bits/expected.txt").read_text():
            return False
        return done.returncode == 0

    @staticmethod
    def _program(suite):
        return suite if suite == "bits" else f"{suite}_tests"


def _hash(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()
