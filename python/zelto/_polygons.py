"""Polygons from pixels."""

from __future__ import annotations

from typing import Optional, Union

from . import _engine
from ._arguments import PathLike, band_numbers, encoded, text_argument
from ._progress import Progress, as_callable
from ._raster import Raster, as_raster


def polygonize(
    raster: Union[Raster, PathLike],
    out: PathLike,
    *,
    band: int = 1,
    mask: Optional[int] = None,
    nodata: bool = False,
    field: str = "value",
    eight: bool = False,
    progress: Progress = None,
) -> int:
    """Writes a polygon for every area of equal pixels into a new vector file.

    :param out: its format is told by the extension: .shp, .gpkg, .geojson …
    :param mask: band whose zeros make no polygons
    :param nodata: make polygons of no-data areas too
    :param field: name of the field that receives the value; fractions are cut off
    :param eight: pixels that touch at a corner belong together
    :return: how many there are

    >>> with zelto.create("map.tif", width=4, height=2) as new:
    ...     new.write(np.uint8([[1, 1, 2, 2], [1, 1, 2, 3]]))
    >>> zelto.polygonize("map.tif", "map.geojson")
    3
    """
    scene = as_raster(raster)
    (number,) = band_numbers(band, scene.count)
    other = 0 if mask is None else band_numbers(mask, scene.count)[0]
    return _engine.polygonize(
        scene._native,
        encoded(out),
        number,
        other,
        bool(nodata),
        text_argument("field", field),
        bool(eight),
        as_callable(progress),
    )
