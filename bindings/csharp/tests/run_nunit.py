"""Runs an NUnit assembly and leaves its results as JUnit does.

usage: run_nunit.py NUNIT_CONSOLE ASSEMBLY RESULTS.xml

Exits with what the console runner says, or with 1 when it left no results.
"""

import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree


def as_junit(nunit):
    """NUnit 2 names results Success, Failure, Error, Inconclusive, Ignored, Skipped, NotRunnable."""
    suite = ElementTree.Element("testsuite", name=nunit.get("name", ""))
    for case in nunit.iter("test-case"):
        name, result = case.get("name"), case.get("result")
        entry = ElementTree.SubElement(suite, "testcase", name=name, time=case.get("time", "0"))
        if result in ("Ignored", "Skipped"):
            ElementTree.SubElement(entry, "skipped", message=case.findtext("reason/message", ""))
        elif result != "Success":
            failure = ElementTree.SubElement(entry, "failure", message=result)
            failure.text = case.findtext("failure/message", "") + case.findtext("failure/stack-trace", "")
    return suite


def main(runner, assembly, results):
    with tempfile.TemporaryDirectory() as folder:
        raw = pathlib.Path(folder, "nunit.xml")
        done = subprocess.run(
            [runner, "-nologo", "-noshadow", "-nodots", f"-xml:{raw}", assembly], cwd=folder
        )
        if not raw.exists():
            return 1
        junit = as_junit(ElementTree.parse(raw).getroot())
    ElementTree.ElementTree(junit).write(results, encoding="utf-8", xml_declaration=True)
    return done.returncode


sys.exit(main(*sys.argv[1:]))
