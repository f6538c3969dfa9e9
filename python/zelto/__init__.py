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

from ._area import AreaOfInterest, Ellipse, Line, Point, Polygon, Rectangle, Shape
from ._arguments import Bounds
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
from ._errors import Error
from ._facts import Affine, Band, Sampled, Subdataset
from ._looks import ClassColor
from ._pictures import save_picture
from ._polygons import polygonize
from ._raster import Raster, create, open
from ._samples import (
    ClassEntry,
    ClassFile,
    SampleClass,
    SampleFile,
    SamplePixels,
    sample_pixels,
)
from ._statistics import (
    BandStatistics,
    Covariance,
    Histogram,
    RegionStatistics,
    StatisticsTable,
    covariance,
    histogram,
    statistics,
)
from ._zones import ZoneBand, zonal_statistics

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
