"""Copies of rasters and of parts of them."""

from __future__ import annotations

import math
from typing import Any, List, Optional, Sequence, Tuple, Union

import numpy as np

from . import _engine
from ._arguments import PathLike, Window, band_numbers
from ._arrays import DTypeLike
from ._progress import Progress, as_callable
from ._raster import Raster, as_raster, create


def copy(
    source: Union[Raster, PathLike],
    path: PathLike,
    *,
    window: Optional[Window] = None,
    bands: Union[None, int, Sequence[int]] = None,
    dtype: Optional[DTypeLike] = None,
    format: str = "",
    options: Sequence[str] = (),
    progress: Progress = None,
) -> None:
    """Copies pixels into a new raster, with their place, no-data value and colour table. An
    interrupted copy leaves nothing behind.

    >>> zelto.copy("L7_ETMs.tif", "corner.tif", window=(10, 20, 30, 40), bands=(4, 3))
    >>> corner = zelto.open("corner.tif")
    >>> corner.shape, corner.count
    ((40, 30), 2)
    """
    raster = as_raster(source)
    tell = as_callable(progress)
    place = _engine.window_within(window, raster.width, raster.height)
    chosen = band_numbers(bands, raster.count)
    kind = raster._common_dtype(chosen) if dtype is None else _engine.sample_dtype(dtype)
    x, width, row_turn, y, column_turn, height = raster.geotransform
    corner = None
    if raster._facts["placed"]:
        corner = (
            x + place[0] * width + place[1] * row_turn,
            width,
            row_turn,
            y + place[0] * column_turn + place[1] * height,
            column_turn,
            height,
        )
    first = raster.bands[chosen[0] - 1]
    made = create(
        path,
        width=place[2],
        height=place[3],
        bands=len(chosen),
        dtype=kind,
        geotransform=corner,
        crs=raster.crs,
        nodata=first.nodata if _holds(kind, first.nodata) else None,
        format=format,
        options=options,
    )
    with made:
        if first.colors and len(chosen) == 1:
            made.set_colors(first.colors)
        for strip in _strips(raster, place, place[2] * len(chosen) * kind.itemsize):
            values = raster.read(chosen, window=strip, dtype=kind)
            made.write(values, window=(0, strip[1] - place[1], strip[2], strip[3]))
            if tell is not None:
                tell((strip[1] + strip[3] - place[1]) / place[3])


def _strips(raster: Raster, window: Tuple[int, int, int, int], row_bytes: int) -> List[Window]:
    """Parts of a window of a few megabytes that end where the file's blocks do."""
    column, row, columns, rows = window
    block = raster.bands[0].block[0]
    most = max(2**24 // max(row_bytes, 1), 1)
    strips: List[Window] = []
    at = row
    while at < row + rows:
        end = at + most
        if block <= most:
            end -= end % block
        end = min(max(end, at + 1), row + rows)
        strips.append((column, at, columns, end - at))
        at = end
    return strips


def _holds(kind: "np.dtype[Any]", value: Optional[float]) -> bool:
    """Whether a no-data value survives in a type."""
    if value is None:
        return False
    if kind.kind == "f":
        return math.isnan(value) or math.isinf(value) or float(kind.type(value)) == value
    limits = np.iinfo(kind)
    return math.isfinite(value) and value == int(value) and limits.min <= value <= limits.max
