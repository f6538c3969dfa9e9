"""Areas of interest."""

from __future__ import annotations

import os
from typing import Any, Dict, Tuple, Union

import numpy as np

from . import _engine
from ._arguments import AreaLike, Bounds, PathLike, coordinates, encoded, finite, text_argument
from ._arrays import Mask
from ._raster import Raster
from ._shapes import Rectangle, Shape, shape_of, shapes_of


class AreaOfInterest:
    """Shapes that together mark a part of the ground.

    :param source: a path of a file of areas (.aif) or of any vector file; or a shape, a GeoJSON
        dictionary, an object with ``__geo_interface__`` (Shapely's have it), or several of these
    :param crs: reference system of shapes that come from no file, in any form GDAL reads; ""
        means that they are in the system of the raster they are used with

    Holes of GeoJSON polygons are holes. Of vector files, as everywhere in the engine, every ring
    is an area of its own, so that holes count as inside.

    >>> fields = zelto.AreaOfInterest({"type": "Polygon", "coordinates":
    ...     [[(0, 0), (10, 0), (10, 10), (0, 0)]]})
    >>> len(fields), fields.bounds
    (1, Bounds(left=0.0, bottom=0.0, right=10.0, top=10.0))
    """

    def __init__(self, source: Any = (), crs: str = "") -> None:
        system = text_argument("crs", crs)
        if isinstance(source, (str, os.PathLike)):
            if crs:
                raise ValueError("crs is for shapes; a file has its own")
            self._native = _engine.Area(encoded(source))
            return
        shapes = shapes_of(source)
        self._native = _engine.Area()
        if crs:
            self._native.wkt = text_argument("crs", _engine.crs_as_wkt(system))
        self._native.add([shape._engine_form() for shape in shapes])

    @property
    def crs(self) -> str:
        """The reference system as WKT; empty without one."""
        return str(self._native.wkt)

    @property
    def shapes(self) -> Tuple[Shape, ...]:
        return tuple(shape_of(kind, numbers) for kind, numbers in self._native.shapes())

    @property
    def bounds(self) -> Bounds:
        left, top, right, bottom = self._native.extent()
        return Bounds(left, bottom, right, top)

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        return {
            "type": "FeatureCollection",
            "features": [
                {"type": "Feature", "properties": {}, "geometry": shape.__geo_interface__}
                for shape in self.shapes
            ],
        }

    def to_dict(self) -> Dict[str, Any]:
        """GeoJSON."""
        return self.__geo_interface__

    def __len__(self) -> int:
        return self._native.count

    def __repr__(self) -> str:
        return f"<zelto.AreaOfInterest of {len(self)} shapes>"

    def __reduce__(self) -> Tuple[Any, ...]:
        return (_area_again, (self._native.shapes(), self.crs))

    def add(self, source: Any) -> None:
        """Appends shapes, in any form that the constructor takes but a path.

        >>> fields = zelto.AreaOfInterest(zelto.Rectangle(0, 0, 2, 1))
        >>> fields.add([zelto.Ellipse(5, 5, 6, 7), zelto.Polygon([(3, 3), (4, 3), (4, 4)])])
        >>> len(fields)
        3
        """
        self._native.add([shape._engine_form() for shape in shapes_of(source)])

    def contains(self, x: Any, y: Any) -> Any:
        """Whether points lie in any of the shapes; arrays give an array.

        >>> zelto.AreaOfInterest(zelto.Ellipse(0, 0, 4, 2)).contains([2, 0.1], [1, 0.1])
        array([ True, False])
        """
        xs, ys, shape = coordinates(x, y)
        inside = self._native.contains(xs, ys)
        return bool(inside[0]) if shape == () else inside.reshape(shape)

    def mask(self, raster: Union["Raster", PathLike]) -> Mask:
        """Rows × columns: which pixels of a raster have their middle in the area. It is the rule
        of :func:`zelto.statistics`.

        >>> scene = zelto.open("L7_ETMs.tif")
        >>> corner = zelto.Rectangle(288776.25, 9120700, 288890.25, 9120760.75)
        >>> zelto.AreaOfInterest(corner).mask(scene).sum()
        8
        """
        from ._raster import as_raster

        scene = as_raster(raster)
        inside = np.zeros(scene.shape, dtype=np.bool_)
        _engine.mask(scene._native, self._native, inside)
        return inside

    def to_crs(self, crs: str) -> "AreaOfInterest":
        """The same area in another reference system.

        >>> field = zelto.Polygon([(117, 40), (117.1, 40), (117.1, 40.1)])
        >>> area = zelto.AreaOfInterest(field, crs="EPSG:4326").to_crs("EPSG:32650")
        >>> round(area.bounds.left), round(area.bounds.bottom)
        (500000, 4427757)
        """
        area: AreaOfInterest = _area_again(self._native.shapes(), self.crs)
        area._native.transform(text_argument("crs", crs))
        return area

    def save(self, path: PathLike, tolerance: float = 0.0) -> None:
        """Writes an .aif, .shp, .gpkg or .geojson file, which appears when it is complete. Only
        .aif keeps ellipses; in vector files they become polygons. GeoJSON is in longitude and
        latitude.

        :param tolerance: largest distance of such a polygon from its ellipse, in ground units; 0:
            a hundred-thousandth of the ellipse's longer side

        >>> zelto.AreaOfInterest(zelto.Ellipse(0, 0, 4, 2)).save("pond.aif")
        >>> zelto.AreaOfInterest("pond.aif").shapes
        (Ellipse(left=0.0, bottom=0.0, right=4.0, top=2.0),)
        """
        distance = finite("tolerance", tolerance)
        if distance < 0:
            raise ValueError("tolerance is not below 0")
        self._native.save(encoded(path), distance)


def _area_again(shapes: Any, crs: str) -> AreaOfInterest:
    area = AreaOfInterest()
    area._native.wkt = text_argument("crs", crs)
    area._native.add(shapes)
    return area


def as_area(source: AreaLike) -> AreaOfInterest:
    return source if isinstance(source, AreaOfInterest) else AreaOfInterest(source)
