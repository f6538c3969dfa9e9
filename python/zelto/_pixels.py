"""Pixels of rasters as arrays, and what else a raster stores."""

from __future__ import annotations

import os
from collections.abc import Sequence
from typing import Any, Optional, Tuple, Union

import numpy as np

from . import _engine
from ._arguments import Window, band_numbers, numbers, text_argument
from ._arrays import Array, DTypeLike
from ._facts import RasterFacts
from ._looks import as_color
from ._progress import Progress, as_callable

_DTYPES = ("uint8", "uint16", "int16", "uint32", "int32", "float32", "float64")


def _storable(values: Array, dtype: str) -> Array:
    """Values in one of the seven types: their own, or that of the file where none is lost."""
    if values.dtype.name in _DTYPES and values.dtype.isnative:
        return values
    if values.dtype.kind not in "biuf":
        raise TypeError(f"pixels are numbers, not {values.dtype}")
    stored = values.astype(dtype)
    if not np.array_equal(stored, values):
        raise ValueError(f"the values do not fit into {dtype}")
    return stored


class RasterPixels(RasterFacts):
    """Reading and writing."""

    def read(
        self,
        bands: Union[None, int, Sequence[int]] = None,
        window: Optional[Window] = None,
        shape: Optional[Tuple[int, int]] = None,
        dtype: Optional[DTypeLike] = None,
        *,
        resampling: str = "nearest",
        out: Optional[Array] = None,
        progress: Progress = None,
    ) -> Array:
        """Pixels as an array, read in one go into its memory.

        :param bands: one number gives rows × columns; several, or None for all, give bands ×
            rows × columns
        :param window: column, row, columns, rows; None: the whole raster
        :param shape: rows and columns of the result, where the pixels are to be resampled
        :param dtype: values that the type cannot hold become its nearest one
        :param resampling: nearest, bilinear, cubic, cubicspline, lanczos, average, mode
        :param out: an array of that shape to fill

        >>> zelto.open("L7_ETMs.tif").read(1, window=(0, 0, 4, 2))
        array([[69, 69, 63, 60],
               [74, 68, 59, 58]], dtype=uint8)
        """
        told = None if progress is None else as_callable(progress)
        return _engine.read(self._native, bands, window, shape, dtype, resampling, out, told)

    def write(
        self,
        values: Any,
        bands: Union[None, int, Sequence[int]] = None,
        window: Optional[Window] = None,
    ) -> None:
        """Writes pixels of a raster that is being made or is open for writing ("r+").

        :param values: rows × columns for one band, else bands × rows × columns; of one of the
            seven types, whose values the file's type takes as it can, or of another type, whose
            values must then be those of the file's

        >>> with zelto.create("part.tif", width=4, height=2) as new:
        ...     new.write([[7, 8]], window=(1, 0, 2, 1))
        >>> zelto.open("part.tif").read(1)
        array([[0, 7, 8, 0],
               [0, 0, 0, 0]], dtype=uint8)
        """
        chosen = band_numbers(bands, self.count)
        place = _engine.window_within(window, self.width, self.height)
        samples = _storable(np.asarray(values), self.bands[chosen[0] - 1].dtype)
        if samples.ndim == 2:
            samples = samples[np.newaxis]
        if samples.shape != (len(chosen), place[3], place[2]):
            raise ValueError(
                f"values have the shape {np.shape(values)}, not {(len(chosen), place[3], place[2])}"
            )
        _engine.write(self._native, np.ascontiguousarray(samples), chosen, place)

    def set_nodata(self, value: Optional[float]) -> None:
        """Stores the no-data value of all bands; None removes it.

        >>> with zelto.create("empty.tif", width=2, height=1) as new:
        ...     new.set_nodata(255)
        >>> zelto.open("empty.tif").nodata
        255.0
        """
        number = None if value is None else float(value)
        _engine.set_nodata(self._native, number)
        self._facts = self._native.describe()

    def set_colors(self, colors: Sequence[Any], band: int = 1) -> None:
        """Stores a colour table: the colour of value 0, 1, 2 …

        >>> with zelto.create("colours.tif", width=2, height=1) as new:
        ...     new.set_colors(["#000000", (255, 0, 0)])
        ...     new.write([[0, 1]])
        >>> zelto.open("colours.tif").render(size=2)[0, :, :3].tolist()
        [[0, 0, 0], [255, 0, 0]]
        """
        (number,) = band_numbers(band, self.count)
        _engine.set_colors(self._native, number, [as_color(color) for color in colors])
        self._facts = self._native.describe()

    def set_georeference(
        self, geotransform: Optional[Sequence[float]] = None, crs: Optional[str] = None
    ) -> None:
        """Stores where the raster lies.

        :param geotransform: six numbers in GDAL's order; None: as it is
        :param crs: any form GDAL reads; "" removes it, None leaves it

        >>> with zelto.create("placed.tif", width=2, height=1) as new:
        ...     new.set_georeference((500000, 10, 0, 4000000, 0, -10), "EPSG:32650")
        >>> zelto.open("placed.tif").bounds
        Bounds(left=500000.0, bottom=3999990.0, right=500020.0, top=4000000.0)
        """
        place = None if geotransform is None else numbers("geotransform", geotransform, 6)
        wkt = None
        if crs is not None:
            wkt = text_argument("crs", _engine.crs_as_wkt(text_argument("crs", crs)) if crs else "")
        _engine.set_place(self._native, place, wkt)
        self._facts = self._native.describe()

    def build_pyramids(
        self,
        resampling: str = "nearest",
        bands: Union[None, int, Sequence[int]] = None,
        progress: Progress = None,
    ) -> None:
        """Builds the levels that make drawing large rasters quick, in place of those there are.
        Their files appear when they are complete.

        :param resampling: GDAL's name: nearest, average, gauss, cubic, mode …

        >>> zelto.copy("L7_ETMs.tif", "copied.tif")
        >>> scene = zelto.open("copied.tif")
        >>> scene.build_pyramids("average")
        >>> scene.bands[0].overviews
        ((176, 175), (88, 88), (44, 44))
        """
        if self.writable:
            raise ValueError("close the raster first, or open it for reading")
        chosen = [] if bands is None else band_numbers(bands, self.count)
        name = text_argument("resampling", resampling).upper()
        _engine.build_pyramid(os.fsencode(self._path), name, chosen, as_callable(progress))
        self._native.reopen()
        self._facts = self._native.describe()
