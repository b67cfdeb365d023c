"""The exceptions of this package. Each message names the argument, the element and the cure.

Wrong types of argument are plain :class:`TypeError`, lists whose rows differ in length and
paths that name no file plain :class:`ValueError`; everything else that this package raises
itself is a :class:`QelmError`.
"""

from __future__ import annotations

from typing import Optional

__all__ = [
    "ClosedError",
    "FieldError",
    "LibraryError",
    "MeshError",
    "QelmError",
    "SingularSystemError",
    "TooLargeError",
    "ToolError",
]


class QelmError(Exception):
    """Base of this package's exceptions.

    Attributes
    ----------
    status : int or None
        The status code of the native library, if it was the library that refused.
    """

    def __init__(self, message: str, status: Optional[int] = None) -> None:
        super().__init__(message)
        self.status = status


class MeshError(QelmError, ValueError):
    """Something is wrong with vertices, triangles, tags or fixed vertices.

    Examples
    --------
    >>> import qelm
    >>> qelm.MeshSystem([[0, 0, 0], [1, 0, 0], [0, 1, 0]], [[0, 1, 7]], [1, 0, 0])
    Traceback (most recent call last):
    ...
    qelm.errors.MeshError: triangle 0 (0, 1, 7): vertex 7 is not in 0 .. 2; vertices are numbered from 0
    """


class FieldError(QelmError, ValueError):
    """Something is wrong with values, a load, a field, levels or an output array.

    Examples
    --------
    >>> import qelm
    >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> system.solve([0, float("nan")])
    Traceback (most recent call last):
    ...
    qelm.errors.FieldError: values: vertex 2: nan is not finite
    """


class SingularSystemError(QelmError, ArithmeticError):
    """The equations have no single finite solution.

    Examples
    --------
    Without a fixed vertex a solution is not the only one:

    >>> import qelm
    >>> qelm.MeshSystem([[0, 0], [1, 0], [1, 1]], [[0, 1, 2]], [0, 0, 0], check=False).solve([0, 0, 0])
    Traceback (most recent call last):
    ...
    qelm.errors.SingularSystemError: the factorisation ended with NUMERICAL_ISSUE: ...
    """


class TooLargeError(QelmError, MemoryError):
    """The system would take more memory than is free, or more entries than the library can index."""


class ClosedError(QelmError, ValueError):
    """The system was closed before.

    Examples
    --------
    >>> import qelm
    >>> with qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0]) as system:
    ...     field = system.solve([0, 1])
    >>> system.curves(field)
    Traceback (most recent call last):
    ...
    qelm.errors.ClosedError: the system is closed; build it again, or close it later
    """


class LibraryError(QelmError, ImportError):
    """The native library is missing, or is not one that this package can use."""


class ToolError(QelmError, RuntimeError):
    """The command-line tool is missing or failed.

    Attributes
    ----------
    exit_code : int or None
        The tool's exit code; None if it did not run.
    """

    def __init__(self, message: str, exit_code: Optional[int] = None) -> None:
        super().__init__(message)
        self.exit_code = exit_code
