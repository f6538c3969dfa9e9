"""Arguments, checked before the engine is entered."""

from __future__ import annotations

import math
import os
from collections.abc import Iterable, Sequence
from typing import Any, List, NamedTuple, Tuple, Union

import numpy as np

from ._arrays import Doubles
from ._engine import band_numbers as band_numbers, whole as whole

PathLike = Union[str, "os.PathLike[str]"]
Box = Sequence[float]
Window = Sequence[int]
#: An area, or what one is made of: a path, shapes, GeoJSON, ``__geo_interface__``.
AreaLike = Any


class Bounds(NamedTuple):
    """A rectangle on the ground, its sides in the order that Shapely and rasterio use."""

    left: float
    bottom: float
    right: float
    top: float


def encoded(path: PathLike) -> bytes:
    """A path, or a name that GDAL opens, in the file system's encoding."""
    text = os.fspath(path)
    if not isinstance(text, str):
        raise TypeError("a path is a str or a pathlib.Path")
    if not text:
        raise ValueError("the path is empty")
    if "\0" in text:
        raise ValueError("the path has a null character")
    return os.fsencode(text)


def text_argument(name: str, value: str) -> bytes:
    if not isinstance(value, str):
        raise TypeError(f"{name} is a str")
    if "\0" in value:
        raise ValueError(f"{name} has a null character")
    return os.fsencode(value)


def finite(name: str, value: Any) -> float:
    try:
        number = float(value)
    except (TypeError, ValueError):
        raise TypeError(f"{name} is a number") from None
    if not math.isfinite(number):
        raise ValueError(f"{name} is not finite")
    return number


def numbers(name: str, values: Iterable[Any], count: int) -> List[float]:
    if isinstance(values, (str, bytes)):
        raise TypeError(f"{name} is {count} numbers")
    try:
        found = [finite(name, value) for value in values]
    except TypeError:
        raise TypeError(f"{name} is {count} numbers") from None
    if len(found) != count:
        raise ValueError(f"{name} is {count} numbers, not {len(found)}")
    return found


def box_argument(name: str, values: Box) -> Bounds:
    """Left, bottom, right, top with an area."""
    sides = Bounds(*numbers(name, values, 4))
    if not (sides.left < sides.right and sides.bottom < sides.top):
        raise ValueError(f"{name} is left, bottom, right, top with left < right and bottom < top")
    return sides


def engine_box(box: Bounds) -> Tuple[float, float, float, float]:
    """The engine names the sides in another order: left, top, right, bottom."""
    return (box.left, box.top, box.right, box.bottom)


def coordinates(x: Any, y: Any) -> Tuple[Doubles, Doubles, Tuple[int, ...]]:
    """Two arrays of one shape as packed rows of doubles, and the shape."""
    xs, ys = np.broadcast_arrays(
        np.asarray(x, dtype=np.float64), np.asarray(y, dtype=np.float64)
    )
    return (
        np.ascontiguousarray(xs.reshape(-1)),
        np.ascontiguousarray(ys.reshape(-1)),
        xs.shape,
    )
