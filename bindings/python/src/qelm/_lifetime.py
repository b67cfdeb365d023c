"""What owns a native system, from its construction to its end."""

from __future__ import annotations

import types
from typing import NoReturn, Optional, Type

from ._handle import Handle
from ._native import library
from .errors import ClosedError


def handle_of(system: object) -> Handle:
    """Of the system that a function of this package was given. Raises TypeError, ClosedError."""
    if not isinstance(system, SystemOwner):
        raise TypeError(f"system: a MeshSystem is needed, this is of type {type(system).__name__}")
    return system._alive()


class SystemOwner:
    """Closes once, at the end of a ``with`` or when the last reference goes; cannot be pickled."""

    _handle: Optional[Handle] = None

    @property
    def closed(self) -> bool:
        """Whether the system was closed."""
        return self._handle is None

    @property
    def use_count(self) -> int:
        """How many systems share this one's factorisation: 1, and one more for each duplicate.

        Raises ClosedError once the system is closed.
        """
        count: int = library().usecount(self._alive().pointer)
        return count

    def close(self) -> None:
        """Gives the native system back. Calls that are running on other threads finish first.

        Without it, that happens when the last reference goes. Doing it again does nothing.
        """
        self._handle = None

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[types.TracebackType],
    ) -> None:
        self.close()

    def __reduce__(self) -> NoReturn:
        raise TypeError(
            "a MeshSystem cannot be pickled, its factorisation is the native library's; "
            "send vertices, triangles and tags, and build it there"
        )

    def _alive(self) -> Handle:
        handle = self._handle
        if handle is None:
            raise ClosedError("the system is closed; build it again, or close it later")
        return handle
