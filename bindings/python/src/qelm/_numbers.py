"""Single numbers among the arguments."""

from __future__ import annotations

from . import _arrays


def one_number(argument: object, name: str) -> float:
    """A number from anything that is one. Raises TypeError."""
    array = _arrays.doubles(argument, name)
    if array.size != 1:
        raise TypeError(f"{name}: the shape is {array.shape}; one number is needed")
    return float(array.item())
