"""Why no test can tell an equivalent mutant, from tests/mutants/reasons/*.toml.

A reason is kept by file, function and text, so that it stays right when lines move."""
import tomllib


class Reasons:
    def __init__(self, root):
        self._of = {}
        for path in sorted((root / "tests/mutants/reasons").glob("*.toml")):
            for file, entries in tomllib.loads(path.read_text()).items():
                for entry in entries:
                    key = (file, entry["function"], entry["old"], entry["new"])
                    if key in self._of or not entry["reason"].strip():
                        raise SystemExit(f"{path}: twice, or without a reason: {key}")
                    self._of[key] = entry["reason"].strip()

    def of(self, mutant):
        """The reason for this very mutant, or nothing."""
        return self._of.get(mutant.key(), "")

    def of_any_change(self, mutant):
        """The reason for every change of its line, or of its function; for one that survived."""
        file, function, old, _ = mutant.key()
        return self._of.get((file, function, old, "*")) or self._of.get((file, function, "*", "*"), "")

    def stale(self, mutants):
        known = set()
        for m in mutants:
            file, function, old, new = m.key()
            known |= {(file, function, old, new), (file, function, old, "*"), (file, function, "*", "*")}
        return [" | ".join(key) for key in self._of if key not in known]
