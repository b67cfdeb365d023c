"""The binding's own shape: against the header, against its documentation, against old Pythons."""

import ast
import ctypes
import doctest
import enum
import importlib
import inspect
import os
import pathlib
import re
import subprocess

import pytest
import qelm
from built import BUILD, SOURCE, program, run
from qelm import _native, _records

PACKAGE = pathlib.Path(qelm.__file__).parent
MODULES = sorted(path.stem for path in PACKAGE.glob("*.py") if path.stem not in ("__init__", "__main__"))
HEADER = re.sub(r"/\*.*?\*/", "", (SOURCE / "include/qelm.h").read_text(), flags=re.S)

C_TYPES = {
    "void": None, "int": ctypes.c_int, "int64_t": ctypes.c_int64, "int64_t*": ctypes.POINTER(ctypes.c_int64), "double": ctypes.c_double, "float": ctypes.c_float,
    "const char*": ctypes.c_char_p, "float*": ctypes.POINTER(ctypes.c_float),
    "const double**": ctypes.POINTER(ctypes.c_void_p), "const int**": ctypes.POINTER(ctypes.c_void_p),
    "MeshSystem**": ctypes.POINTER(ctypes.c_void_p),
    "MeshSystem*": ctypes.c_void_p, "const MeshSystem*": ctypes.c_void_p,
    "const double*": ctypes.c_void_p, "const int*": ctypes.c_void_p, "double*": ctypes.c_void_p,
    "QelmMeshReport*": ctypes.POINTER(_records.QelmMeshReport),
    **{f"{name}{stars}": ctypes.POINTER(ctypes.POINTER(record)) if stars == "**" else ctypes.POINTER(record)
       for name, record in vars(_records).items() if inspect.isclass(record) and issubclass(record, ctypes.Structure)
       for stars in ("*", "**")},
}  # fmt: skip


def declared():
    """{name: (result, [parameter types])} in the header."""
    found = re.findall(r"QELM_API ([\w ]+?\*?) ?(\w+)\(([^)]*)\);", HEADER)
    functions = {}
    for result, name, parameters in found:
        kinds = [re.sub(r"\s*\w+$", "", parameter.strip()) for parameter in parameters.split(",")]
        functions[name] = (result.strip(), [] if kinds in ([""], ["void"]) else [kind.strip() for kind in kinds])
    return functions


def test_every_export_is_declared_and_nothing_else():
    exports = (SOURCE / "src/exports.txt").read_text().split()
    assert set(_native.FUNCTIONS) == set(exports)


@pytest.mark.parametrize("name", _native.FUNCTIONS)
def test_declarations_are_those_of_the_header(name):
    result, parameters = declared()[name]
    ours_result, ours = _native.FUNCTIONS[name]
    assert ours_result is C_TYPES[result]
    assert len(ours) == len(parameters)
    for mine, kind in zip(ours, parameters):
        # Arrays of int go over as addresses, single results by reference.
        assert mine is C_TYPES.get(kind) or (kind == "int*" and mine in (ctypes.c_void_p, ctypes.POINTER(ctypes.c_int)))


def test_records_are_laid_out_as_in_c():
    lines = run(program("record_layouts")).split("\n")
    for line in filter(None, lines):
        name, *numbers = line.split()
        if "." in name:
            record, field = name.split(".")
            slot = getattr(getattr(_records, record), field)
            assert (slot.offset, slot.size) == tuple(map(int, numbers)), name
        else:
            assert ctypes.sizeof(getattr(_records, name)) == int(numbers[0]), name


def public():
    """(name, object) of all that users call."""
    for name in qelm.__all__:
        thing = getattr(qelm, name)
        yield name, thing
        if inspect.isclass(thing):
            own = [cls for cls in thing.__mro__ if cls.__module__.startswith("qelm")]
            for member, value in [item for cls in own for item in vars(cls).items()]:
                if not member.startswith("_") and (callable(value) or isinstance(value, (property, classmethod))):
                    yield f"{name}.{member}", value


@pytest.mark.parametrize("name, thing", public(), ids=lambda value: value if isinstance(value, str) else "")
def test_everything_public_is_documented(name, thing):
    text = inspect.getdoc(thing) or ""
    assert text.split("\n")[0].endswith((".", ".``", ":", ")", "curves")), name
    function = getattr(thing, "__func__", thing)
    if inspect.isfunction(function):
        signature = inspect.signature(function)
        for parameter in signature.parameters:
            assert parameter in ("self", "cls") or re.search(rf"^(.*, )?{parameter}(, .*)? ?(:|$)", text, re.M), parameter
        assert signature.return_annotation == "None" or "Returns\n-------" in text, name
        if "." not in name:
            assert ">>> " in text and "Raises\n------" in text, name
    # What is raised and what is counted needs no example.
    if inspect.isclass(thing) and not issubclass(thing, (Exception, enum.Enum)):
        assert ">>> " in text and "Attributes\n----------" in text, name


@pytest.mark.parametrize("module", ["", *MODULES])
def test_the_examples_in_the_docstrings_do_what_they_say(module):
    done = doctest.testmod(importlib.import_module(f"qelm.{module}".rstrip(".")), optionflags=doctest.ELLIPSIS)
    assert done.failed == 0


@pytest.mark.parametrize("path", sorted(PACKAGE.parent.rglob("*.py")), ids=lambda path: path.name)
def test_the_sources_are_python_3_9(path):
    ast.parse(path.read_text(), feature_version=(3, 9))


def test_types_are_strict():
    folder = SOURCE / "bindings/python"
    done = subprocess.run(
        ["mypy", "--config-file", "pyproject.toml", f"--cache-dir={BUILD / 'mypy'}", "src", "tests/typed_user.py"],
        cwd=folder, capture_output=True, text=True,
    )  # fmt: skip
    assert done.returncode == 0, done.stdout + done.stderr


def test_types_tell_a_user_of_mistakes(tmp_path):
    """What typed_user.py does right, done wrong in five places."""
    (tmp_path / "wrong.py").write_text(
        "import qelm\n"
        "system = qelm.MeshSystem([[0, 0]], [[0, 0, 0]], [1])\n"
        "system.solve([1.0]).upper()\n"
        "system.curves([1.0], 3)[0].nothing\n"
        "qelm.weld([[0, 0]], [[0, 0, 0]], tolerance='much')\n"
        "system.info = None\n"
        "qelm.nothing\n"
    )
    done = subprocess.run(
        ["mypy", "--strict", f"--cache-dir={BUILD / 'mypy'}", "--python-version", "3.9", tmp_path / "wrong.py"],
        env={**os.environ, "MYPYPATH": str(PACKAGE.parent)}, cwd=tmp_path, capture_output=True, text=True,
    )  # fmt: skip
    assert done.returncode == 1
    assert sorted({int(line) for line in re.findall(r"wrong.py:(\d+): error", done.stdout)}) == [3, 4, 5, 6, 7]
