"""Results that hold arrays, to be compared like all others."""

from __future__ import annotations

from typing import Any

import numpy as np


def _same(a: Any, b: Any) -> bool:
    if isinstance(a, np.ndarray) or isinstance(b, np.ndarray):
        return np.array_equal(a, b, equal_nan=True)
    return bool(a == b)


class Alike:
    """Is equal to another of its kind when all that they hold is; NaN is like NaN in arrays."""

    def __eq__(self, other: object) -> bool:
        if type(self) is not type(other):
            return NotImplemented
        theirs = vars(other)
        return all(_same(value, theirs[name]) for name, value in vars(self).items())

    # Arrays may change.
    __hash__ = None  # type: ignore[assignment]
