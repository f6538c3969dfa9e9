"""Which part of the ground a picture shows, in how many pixels."""

from __future__ import annotations

from collections.abc import Sequence
from typing import NamedTuple, Optional, Tuple, Union

from ._arguments import Bounds, Box, box_argument, finite, numbers, whole

Size = Union[int, Tuple[Optional[int], Optional[int]]]

LONGEST_SIDE = 65500
_DEFAULT_SIDE = 1024


class View(NamedTuple):
    box: Bounds
    width: int
    height: int


def _sides(size: Optional[Size]) -> Tuple[Optional[int], Optional[int], Optional[int]]:
    """Width, height, longer side; what is not given is None."""
    if size is None:
        return None, None, None
    if not isinstance(size, Sequence):
        return None, None, whole("size", size, 1, LONGEST_SIDE)
    if len(size) != 2 or isinstance(size, (str, bytes)):
        raise ValueError("size is (width, height), or the longer side")
    width, height = (
        None if side is None else whole("size", side, 1, LONGEST_SIDE) for side in size
    )
    return width, height, None


def _matching(given: int, given_length: float, length: float) -> int:
    """The side that keeps the shape of a box, at least one pixel."""
    side = given * length / given_length
    if not side <= LONGEST_SIDE:
        raise ValueError("size: the box is too long and narrow for that size")
    return max(int(side + 0.5), 1)


def _completed(box: Bounds, size: Optional[Size], default: int) -> View:
    width, height, longer = _sides(size)
    across, along = box.right - box.left, box.top - box.bottom
    if width is None and height is None:
        if across >= along:
            width = longer or default
        else:
            height = longer or default
    if width is None:
        assert height is not None
        width = _matching(height, along, across)
    if height is None:
        height = _matching(width, across, along)
    return View(box, width, height)


def choose_view(
    extent: Bounds,
    shape: Tuple[int, int],
    pixel_width: float,
    box: Optional[Box],
    center: Optional[Sequence[float]],
    scale: Optional[float],
    size: Optional[Size],
) -> View:
    """The view that the arguments of render() ask for.

    :param shape: rows and columns of the raster
    :param pixel_width: ground units, for a centre without a scale
    """
    if center is not None:
        if box is not None:
            raise ValueError("box and center contradict each other")
        x, y = numbers("center", center, 2)
        step = abs(pixel_width) if scale is None else finite("scale", scale)
        if not step > 0:
            raise ValueError("scale is above 0")
        width, height, longer = _sides(size)
        columns = width or height or longer or _DEFAULT_SIDE
        rows = height or columns
        dx, dy = step * columns / 2, step * rows / 2
        return View(box_argument("center", (x - dx, y - dy, x + dx, y + dy)), columns, rows)
    if scale is not None:
        raise ValueError("scale goes with center")
    if box is None:
        return _completed(
            box_argument("the extent", extent), size, min(max(shape), _DEFAULT_SIDE)
        )
    return _completed(box_argument("box", box), size, _DEFAULT_SIDE)
