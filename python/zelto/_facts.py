"""Facts of rasters: size, type, place, bands, classes."""

from __future__ import annotations

import os
from typing import Any, Dict, Iterable, NamedTuple, Optional, Tuple

import numpy as np

from . import _engine
from ._arguments import Bounds, band_numbers
from ._looks import ClassColor, Color


class Affine(NamedTuple):
    """A geotransform in the order of the package affine: x = a·column + b·row + c, y = d·column
    + e·row + f. ``affine.Affine(*scene.transform)`` makes one of that package's."""

    a: float
    b: float
    c: float
    d: float
    e: float
    f: float


class Sampled(NamedTuple):
    """What a display takes from a sample of a band, the same for every call."""

    minimum: float
    maximum: float
    mean: float
    standard_deviation: float
    #: Bounds of the standard-deviation stretch.
    low: float
    high: float


class Subdataset(NamedTuple):
    #: Opens as a raster.
    name: str
    description: str


class Band(NamedTuple):
    """Facts of a band."""

    number: int
    #: NumPy's name of the type; float64 where the file's own is none of the seven.
    dtype: str
    #: GDAL's name of the file's own type.
    type_name: str
    #: Rows and columns that the file stores together.
    block: Tuple[int, int]
    nodata: Optional[float]
    #: Red, green, blue, alpha of every entry of the colour table.
    colors: Tuple[Color, ...]
    #: Rows and columns of every level of the pyramid.
    overviews: Tuple[Tuple[int, int], ...]

    def to_dict(self) -> Dict[str, Any]:
        return self._asdict()


class Grid:
    """A rectangle of pixels on the ground, as the engine's module describes it."""

    _facts: Dict[str, Any]

    @property
    def width(self) -> int:
        return int(self._facts["width"])

    @property
    def height(self) -> int:
        return int(self._facts["height"])

    @property
    def shape(self) -> Tuple[int, int]:
        """Rows and columns."""
        return (self.height, self.width)

    @property
    def bounds(self) -> Bounds:
        """Left, bottom, right, top of all pixels."""
        left, top, right, bottom = self._facts["extent"]
        return Bounds(left, bottom, right, top)

    @property
    def crs(self) -> str:
        """The reference system as WKT; empty without one."""
        return str(self._facts["wkt"])


class RasterFacts(Grid):
    """What a raster says of itself."""

    def __init__(self, native: _engine.Raster, path: str, new: bool = False) -> None:
        self._native = native
        self._path = path
        self._new = new
        self._facts: Dict[str, Any] = native.describe()

    @property
    def closed(self) -> bool:
        return self._native.closed

    @property
    def writable(self) -> bool:
        return self._native.writable

    @property
    def path(self) -> str:
        return self._path

    @property
    def driver(self) -> str:
        """GDAL's short name of the format."""
        return str(self._facts["driver"])

    @property
    def count(self) -> int:
        """Number of bands."""
        return len(self._facts["bands"])

    @property
    def bands(self) -> Tuple[Band, ...]:
        """Facts of the bands, which are numbered from 1."""
        return tuple(
            Band(
                number=number,
                dtype=facts["dtype"] or "float64",
                type_name=facts["type_name"],
                block=facts["block"],
                nodata=facts["nodata"],
                colors=tuple(facts["colors"]),
                overviews=tuple(facts["overviews"]),
            )
            for number, facts in enumerate(self._facts["bands"], 1)
        )

    @property
    def dtype(self) -> str:
        """The type that read() gives by default: one that holds all bands' values."""
        return self._common_dtype(range(1, self.count + 1)).name

    def _common_dtype(self, bands: Iterable[int]) -> np.dtype[Any]:
        """One of the seven that holds the values of bands."""
        facts = self._facts["bands"]
        return _engine.common_dtype([facts[band - 1]["dtype"] for band in bands])

    @property
    def nodata(self) -> Optional[float]:
        """The first band's no-data value."""
        return self.bands[0].nodata

    @property
    def geotransform(self) -> Tuple[float, float, float, float, float, float]:
        """GDAL's order: x, pixel width, row rotation, y, column rotation, pixel height."""
        x, width, row, y, column, height = self._facts["geotransform"]
        return (x, width, row, y, column, height)

    @property
    def transform(self) -> Affine:
        """The geotransform in the order of the package affine, which rasterio uses."""
        x, width, row, y, column, height = self.geotransform
        return Affine(width, row, x, column, height, y)

    @property
    def control_points(self) -> int:
        """Number of ground control points of the file."""
        return int(self._facts["control_points"])

    @property
    def classes(self) -> Tuple[ClassColor, ...]:
        """Values, colours and names from the file of classes beside the image."""
        return tuple(ClassColor(*entry) for entry in self._facts["classes"])

    @property
    def subdatasets(self) -> Tuple[Subdataset, ...]:
        """The rasters that the file contains, each to be opened by its name."""
        return tuple(
            Subdataset(name, text) for name, text in _engine.subdatasets(os.fsencode(self._path))
        )

    def sampled(self, band: int = 1) -> Sampled:
        """Statistics of a sample, which displays go by; :func:`zelto.statistics` reads every
        pixel.

        >>> zelto.open("L7_ETMs.tif").sampled(1).maximum
        255.0
        """
        (number,) = band_numbers(band, self.count)
        return Sampled(*self._native.sampled(number))

    def to_dict(self) -> Dict[str, Any]:
        return {
            "path": self.path,
            "driver": self.driver,
            "shape": self.shape,
            "geotransform": self.geotransform,
            "bounds": tuple(self.bounds),
            "crs": self.crs,
            "bands": [band.to_dict() for band in self.bands],
        }
