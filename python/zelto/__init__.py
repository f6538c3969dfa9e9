"""Zelto: an image engine for remote sensing.

>>> import zelto
>>> with zelto.open("L7_ETMs.tif") as scene:
...     picture = scene.render(bands=(4, 3, 2), size=(512, 512), stretch="percent")
>>> picture.shape
(512, 512, 4)

Rasters are opened with :func:`open`, made with :func:`create`; areas are
:class:`AreaOfInterest`; numbers come from :func:`statistics`, :func:`covariance` and
:func:`histogram`. Many scenes at once, on one machine or a cluster, are in :mod:`zelto.many`.
"""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, List

from ._arguments import Bounds
from ._errors import Error
from ._raster import Raster, create, open

if TYPE_CHECKING:
    from . import many as many
    from ._area import AreaOfInterest
    from ._compose import Composition, compose
    from ._coordinates import (
        CoordinateTransformation,
        CrsDescription,
        GeoGrid,
        Residuals,
        describe_crs,
        gauss_kruger,
        is_same_crs,
    )
    from ._copy import copy
    from ._facts import Affine, Band, Sampled, Subdataset
    from ._histogram import Histogram, histogram
    from ._looks import ClassColor
    from ._pictures import save_picture
    from ._polygons import polygonize
    from ._recipes import Recipe
    from ._samples import (
        ClassEntry,
        ClassFile,
        SampleClass,
        SampleFile,
        SamplePixels,
        sample_pixels,
    )
    from ._shapes import Ellipse, Line, Point, Polygon, Rectangle, Shape
    from ._statistics import (
        BandStatistics,
        Covariance,
        RegionStatistics,
        StatisticsTable,
        covariance,
        statistics,
    )
    from ._zones import ZoneBand, zonal_statistics
else:
    # Scripts that only draw need not wait for the rest: it is loaded when it is first named.
    _LATER = {
        "_area": "AreaOfInterest",
        "_compose": "Composition compose",
        "_coordinates": "CoordinateTransformation CrsDescription GeoGrid Residuals describe_crs "
        "gauss_kruger is_same_crs",
        "_copy": "copy",
        "_facts": "Affine Band Sampled Subdataset",
        "_histogram": "Histogram histogram",
        "_looks": "ClassColor",
        "_pictures": "save_picture",
        "_polygons": "polygonize",
        "_recipes": "Recipe",
        "_samples": "ClassEntry ClassFile SampleClass SampleFile SamplePixels sample_pixels",
        "_shapes": "Ellipse Line Point Polygon Rectangle Shape",
        "_statistics": "BandStatistics Covariance RegionStatistics StatisticsTable covariance "
        "statistics",
        "_zones": "ZoneBand zonal_statistics",
    }

    def __getattr__(name: str) -> Any:
        from importlib import import_module

        if name == "many":
            return import_module(".many", __name__)
        for module, names in _LATER.items():
            if name in names.split():
                found = getattr(import_module("." + module, __name__), name)
                globals()[name] = found
                return found
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")

    def __dir__() -> List[str]:
        return sorted({*globals(), *__all__})


__version__ = "1.0.0"

__all__ = [
    "Affine",
    "AreaOfInterest",
    "Band",
    "BandStatistics",
    "Bounds",
    "ClassColor",
    "ClassEntry",
    "ClassFile",
    "Composition",
    "CoordinateTransformation",
    "Covariance",
    "CrsDescription",
    "Ellipse",
    "Error",
    "GeoGrid",
    "Histogram",
    "Line",
    "Point",
    "Polygon",
    "Raster",
    "Recipe",
    "Rectangle",
    "RegionStatistics",
    "Residuals",
    "SampleClass",
    "SampleFile",
    "SamplePixels",
    "Sampled",
    "Shape",
    "StatisticsTable",
    "Subdataset",
    "ZoneBand",
    "compose",
    "copy",
    "covariance",
    "create",
    "describe_crs",
    "gauss_kruger",
    "histogram",
    "is_same_crs",
    "open",
    "polygonize",
    "sample_pixels",
    "save_picture",
    "statistics",
    "zonal_statistics",
]
