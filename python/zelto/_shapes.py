"""Shapes, which areas of interest are made of."""

from __future__ import annotations

import math
from collections.abc import Iterable, Mapping, Sequence
from dataclasses import dataclass
from typing import Any, Dict, List, Tuple

from . import _engine
from ._arguments import box_argument, coordinates, finite

Coordinates = Tuple[Tuple[float, float], ...]


class Shape:
    """A shape on the ground; coordinates are x and y in its area's units."""

    def _engine_form(self) -> Tuple[str, List[float]]:
        raise NotImplementedError

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        raise NotImplementedError

    def contains(self, x: Any, y: Any, tolerance: float = 0.0) -> Any:
        """Whether points lie in the shape, or within a tolerance of a point or segment. A
        polygon's left and lower edges belong to it, its right and upper ones do not.

        >>> zelto.Rectangle(0, 0, 10, 5).contains([1, 11], [1, 1])
        array([ True, False])
        """
        xs, ys, shape = coordinates(x, y)
        kind, numbers = self._engine_form()
        inside = _engine.shape_contains(kind, numbers, xs, ys, finite("tolerance", tolerance))
        return bool(inside[0]) if shape == () else inside.reshape(shape)


def _vertices(coordinates: Iterable[Sequence[float]], least: int) -> Coordinates:
    vertices = tuple((finite("x", c[0]), finite("y", c[1])) for c in coordinates)
    if len(vertices) < least:
        raise ValueError(f"the shape takes at least {least} vertices")
    return vertices


def _flat(vertices: Coordinates) -> List[float]:
    return [number for vertex in vertices for number in vertex]


@dataclass(frozen=True)
class Point(Shape):
    """A place, which holds what lies within a tolerance of it.

    >>> zelto.Point(3, 4).contains(3, 4.1, tolerance=0.2)
    True
    """

    x: float
    y: float

    def _engine_form(self) -> Tuple[str, List[float]]:
        return "point", [self.x, self.y]

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        return {"type": "Point", "coordinates": (self.x, self.y)}


@dataclass(frozen=True)
class Line(Shape):
    """Segments through vertices. A single segment holds what lies within a tolerance of it;
    several hold nothing.

    >>> zelto.Line([(0, 0), (4, 0)]).contains(2, 0.1, tolerance=0.2)
    True
    """

    vertices: Coordinates

    def __post_init__(self) -> None:
        object.__setattr__(self, "vertices", _vertices(self.vertices, 2))

    def _engine_form(self) -> Tuple[str, List[float]]:
        return ("line" if len(self.vertices) == 2 else "multiline"), _flat(self.vertices)

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        return {"type": "LineString", "coordinates": self.vertices}


@dataclass(frozen=True)
class Rectangle(Shape):
    """Left, bottom, right and top.

    >>> zelto.Rectangle(0, 0, 4, 2).contains(1, 1)
    True
    """

    left: float
    bottom: float
    right: float
    top: float

    def __post_init__(self) -> None:
        box_argument("a rectangle", (self.left, self.bottom, self.right, self.top))

    def _engine_form(self) -> Tuple[str, List[float]]:
        return "rectangle", [self.left, self.top, self.right, self.bottom]

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        ring = (
            (self.left, self.bottom),
            (self.right, self.bottom),
            (self.right, self.top),
            (self.left, self.top),
            (self.left, self.bottom),
        )
        return {"type": "Polygon", "coordinates": (ring,)}


@dataclass(frozen=True)
class Ellipse(Shape):
    """The ellipse that a rectangle holds; its outline belongs to it.

    >>> zelto.Ellipse(0, 0, 4, 2).contains([2, 0.1], [1, 0.1])
    array([ True, False])
    """

    left: float
    bottom: float
    right: float
    top: float

    def __post_init__(self) -> None:
        box_argument("an ellipse", (self.left, self.bottom, self.right, self.top))

    def _engine_form(self) -> Tuple[str, List[float]]:
        return "ellipse", [self.left, self.top, self.right, self.bottom]

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        """A ring of 721 points."""
        x, y = (self.left + self.right) / 2, (self.bottom + self.top) / 2
        a, b = (self.right - self.left) / 2, (self.top - self.bottom) / 2
        angles = [math.radians(step / 2) for step in range(720)]
        ring = [(x + a * math.cos(angle), y + b * math.sin(angle)) for angle in angles]
        return {"type": "Polygon", "coordinates": (tuple(ring + ring[:1]),)}


@dataclass(frozen=True)
class Polygon(Shape):
    """A polygon, closed from its last vertex to the first. Where it crosses itself, points with
    an odd number of edges beside them are inside.

    A polygon with holes goes along each hole and back on its way round: such edges are passed
    twice and count for nothing. See :meth:`with_holes`.

    >>> zelto.Polygon([(0, 0), (4, 0), (4, 4)]).contains([3, 1], [1, 3])
    array([ True, False])
    """

    vertices: Coordinates

    def __post_init__(self) -> None:
        object.__setattr__(self, "vertices", _vertices(self.vertices, 3))

    @classmethod
    def with_holes(cls, rings: Sequence[Sequence[Sequence[float]]]) -> "Polygon":
        """From an outer ring and those of holes, as GeoJSON has them.

        >>> ring = [(0, 0), (9, 0), (9, 9), (0, 9), (0, 0)]
        >>> hole = [(3, 3), (6, 3), (6, 6), (3, 6), (3, 3)]
        >>> zelto.Polygon.with_holes([ring, hole]).contains([1, 5], [1, 5])
        array([ True, False])
        """
        outer, *holes = [_open_ring(ring) for ring in rings]
        if not holes:
            return cls(outer)
        path = outer + outer[:1]
        for hole in holes:
            path = path + hole + hole[:1] + outer[:1]
        return cls(path)

    def _engine_form(self) -> Tuple[str, List[float]]:
        return "polygon", _flat(self.vertices)

    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        return {"type": "Polygon", "coordinates": _rings(self.vertices)}


def _open_ring(ring: Sequence[Sequence[float]]) -> Coordinates:
    vertices = _vertices(ring, 3)
    if vertices[0] == vertices[-1]:
        vertices = vertices[:-1]
    return _vertices(vertices, 3)


def _rings(vertices: Coordinates) -> Tuple[Coordinates, ...]:
    """The rings of a polygon that with_holes() made; of any other, one ring."""
    first = vertices[0]
    stops = [i for i, vertex in enumerate(vertices) if vertex == first]
    closed = stops[-1] == len(vertices) - 1
    if not closed or len(stops) < 3:
        return (vertices if closed else vertices + (first,),)
    rings = [vertices[: stops[1] + 1]]
    for begin, end in zip(stops[1:], stops[2:]):
        hole = vertices[begin + 1 : end]
        if len(hole) < 4 or hole[0] != hole[-1]:
            return (vertices,)
        rings.append(hole)
    return tuple(rings)


_KINDS = {"rectangle": Rectangle, "ellipse": Ellipse}


def shape_of(kind: str, numbers: Sequence[float]) -> Shape:
    """A shape in the engine's form."""
    if kind in _KINDS:
        left, top, right, bottom = numbers
        return _KINDS[kind](left, bottom, right, top)
    return Polygon(tuple(zip(numbers[::2], numbers[1::2])))


def _polygons_of(geo: Mapping[str, Any]) -> List[Shape]:
    """The polygons of a GeoJSON object, all the way down."""
    kind = geo.get("type")
    if kind == "Polygon":
        rings = geo["coordinates"]
        return [Polygon.with_holes(rings)] if len(rings) else []
    if kind == "MultiPolygon":
        return [Polygon.with_holes(rings) for rings in geo["coordinates"]]
    if kind == "Feature":
        return _polygons_of(geo["geometry"]) if geo.get("geometry") else []
    if kind in ("FeatureCollection", "GeometryCollection"):
        members = geo["features" if kind == "FeatureCollection" else "geometries"]
        return [polygon for member in members for polygon in _polygons_of(member)]
    if kind in ("Point", "MultiPoint", "LineString", "MultiLineString"):
        raise ValueError(f"a {kind} encloses no area")
    raise ValueError(f"{kind!r} is no GeoJSON type")


def shapes_of(source: Any) -> List[Shape]:
    """What encloses an area of a shape, a GeoJSON object, or several of them."""
    if isinstance(source, Shape):
        if isinstance(source, (Point, Line)):
            raise ValueError("an area is made of polygons, rectangles and ellipses")
        return [source]
    if isinstance(source, Mapping):
        return _polygons_of(source)
    if hasattr(source, "__geo_interface__"):
        return _polygons_of(source.__geo_interface__)
    if isinstance(source, Iterable) and not isinstance(source, (str, bytes)):
        return [shape for member in source for shape in shapes_of(member)]
    raise TypeError("an area is made of shapes, GeoJSON objects or what has __geo_interface__")
