"""Reference systems, transformations, polynomial grids."""

from __future__ import annotations

from dataclasses import asdict, dataclass
from typing import Any, Dict, Optional, Sequence, Tuple, Union

import numpy as np

from . import _engine
from ._alike import Alike
from ._arguments import coordinates, numbers, text_argument, whole
from ._arrays import Doubles


class CoordinateTransformation:
    """From one reference system to another; x is east or longitude, y north or latitude.

    :param source: any form GDAL reads: WKT, "EPSG:4326", a PROJ string, a .prj file's name
    :param target: likewise
    :param source_shift: seven parameters from the source's datum to WGS 84 (metres, arc-seconds,
        parts per million; position-vector rotation), in place of the projection library's way
    :param target_shift: the same of the target

    >>> to_utm = zelto.CoordinateTransformation("EPSG:4326", "EPSG:32633")
    >>> x, y = to_utm(15.0, [0.0, 1.0])
    >>> x.round(3), y.round(3)
    (array([500000., 500000.]), array([     0.   , 110530.159]))
    """

    def __init__(
        self,
        source: str,
        target: str,
        *,
        source_shift: Optional[Sequence[float]] = None,
        target_shift: Optional[Sequence[float]] = None,
    ) -> None:
        self._arguments = (source, target, source_shift, target_shift)
        self._native = _engine.Transformation(
            text_argument("source", source),
            text_argument("target", target),
            None if source_shift is None else numbers("source_shift", source_shift, 7),
            None if target_shift is None else numbers("target_shift", target_shift, 7),
        )

    def __call__(self, x: Any, y: Any, z: Any = None) -> Tuple[Any, ...]:
        """Points without an answer become infinite. With heights z, three arrays."""
        xs, ys, shape = coordinates(x, y)
        xs, ys = xs.copy(), ys.copy()
        zs: Optional[Doubles] = None
        if z is not None:
            xs, zs, shape = coordinates(xs.reshape(shape), z)
            ys = np.broadcast_to(np.asarray(y, np.float64), shape).reshape(-1).copy()
            xs, zs = xs.copy(), zs.copy()
        if xs.size:
            self._native.transform(xs, ys, zs)
        found = [values for values in (xs, ys, zs) if values is not None]
        if shape == ():
            return tuple(float(values[0]) for values in found)
        return tuple(values.reshape(shape) for values in found)

    def __repr__(self) -> str:
        source, target = (repr(text if len(text) < 40 else text[:39] + "…")
                          for text in self._arguments[:2])
        return f"<zelto.CoordinateTransformation from {source} to {target}>"

    def __reduce__(self) -> Tuple[Any, ...]:
        return (_transformation_again, self._arguments)


def _transformation_again(
    source: str, target: str, source_shift: Any, target_shift: Any
) -> CoordinateTransformation:
    return CoordinateTransformation(
        source, target, source_shift=source_shift, target_shift=target_shift
    )


#: A fact's text, its number, or a name with a number.
Fact = Union[str, float, Tuple[str, float]]


@dataclass(frozen=True)
class CrsDescription:
    """What a reference system is made of."""

    #: "geographic", "projected" or "other".
    kind: str
    #: "EPSG:4326" where the text names or is one.
    authority: str
    facts: Dict[str, Fact]

    def to_dict(self) -> Dict[str, Any]:
        return asdict(self)


def describe_crs(crs: str) -> CrsDescription:
    """Name, datum, spheroid, units and projection of a reference system.

    >>> found = zelto.describe_crs("EPSG:4326")
    >>> found.kind, found.facts["Semimajor Axis"]
    ('geographic', 6378137.0)
    """
    kind, authority, facts = _engine.describe_crs(text_argument("crs", crs))
    return CrsDescription(kind, authority, {label: _fact(text, n) for label, text, n in facts})


def _fact(text: str, number: Optional[float]) -> Fact:
    if number is None:
        return text
    return (text, number) if text else number


def is_same_crs(a: str, b: str) -> bool:
    """Whether two texts describe the same system; dialect and order of axes do not count.

    >>> zelto.is_same_crs("EPSG:4326", "+proj=longlat +datum=WGS84")
    True
    """
    return _engine.is_same_crs(text_argument("a", a), text_argument("b", b))


def gauss_kruger(crs: str, *, zone: int, width: int) -> str:
    """WKT of a Gauss-Krüger system on the geographic system of another one.

    :param zone: from 1: central meridian 6 · zone − 3, or 3 · zone
    :param width: 6 or 3 degrees

    >>> wkt = zelto.gauss_kruger("EPSG:4490", zone=39, width=3)
    >>> zelto.describe_crs(wkt).facts["central_meridian"]
    117.0
    """
    return _engine.gauss_kruger(text_argument("crs", crs), whole("zone", zone), whole("width", width))


@dataclass(frozen=True, eq=False)
class Residuals(Alike):
    """What a fitted grid misses its points by, in pixels."""

    columns: Doubles
    rows: Doubles

    @property
    def rms(self) -> Tuple[float, float]:
        return (
            float(np.sqrt(np.mean(self.columns**2))),
            float(np.sqrt(np.mean(self.rows**2))),
        )

    @property
    def largest(self) -> Tuple[float, float]:
        return float(np.abs(self.columns).max()), float(np.abs(self.rows).max())

    def to_dict(self) -> Dict[str, Any]:
        return {"rms": self.rms, "largest": self.largest}


class GeoGrid:
    """A polynomial of order 1, 2 or 3 from ground points to image positions, fitted by least
    squares.

    >>> x, y = np.meshgrid(np.arange(4.0), np.arange(4.0))
    >>> grid = zelto.GeoGrid(1).fit(x, y, columns=2 * x + 1, rows=5 - y)
    >>> columns, rows = grid.transform([0.5, 2.5], [0.5, 2.5])
    >>> columns.round(6), rows.round(6)
    (array([2., 6.]), array([4.5, 2.5]))
    """

    def __init__(self, order: int) -> None:
        self._order = whole("order", order, 1, 3)
        self._native = _engine.Grid(self._order)
        self._points: Optional[Tuple[Doubles, ...]] = None

    def __repr__(self) -> str:
        state = "not fitted" if self._points is None else f"fitted to {self._points[0].size} points"
        return f"<zelto.GeoGrid of order {self._order}, {state}>"

    def __reduce__(self) -> Tuple[Any, ...]:
        return (_grid_again, (self._order, self._points))

    @property
    def order(self) -> int:
        return self._order

    @property
    def coefficients(self) -> Optional[Tuple[Doubles, Doubles]]:
        """Of the column and of the row: 1, u, v, u², uv, v², u³, u²v, uv², v³, with u and v the
        coordinates less :attr:`input_centre`. None before the fit."""
        found = self._native.coefficients()
        return None if found is None else (found[0], found[1])

    @property
    def input_centre(self) -> Tuple[float, float]:
        found = self._native.coefficients()
        return (0.0, 0.0) if found is None else found[2]

    @property
    def output_centre(self) -> Tuple[float, float]:
        """What is added to the polynomials' column and row."""
        found = self._native.coefficients()
        return (0.0, 0.0) if found is None else found[3]

    def fit(self, x: Any, y: Any, columns: Any, rows: Any) -> "GeoGrid":
        """Fits the polynomial; raises ValueError for points that do not determine it.

        >>> x, y = [0, 1, 0, 1], [0, 0, 1, 1]
        >>> grid = zelto.GeoGrid(1).fit(x, y, columns=[0, 10, 0, 10], rows=[10, 10, 0, 0])
        >>> grid
        <zelto.GeoGrid of order 1, fitted to 4 points>
        """
        xs, ys, _ = coordinates(x, y)
        cs, rs, _ = coordinates(columns, rows)
        self._native.fit(xs, ys, cs, rs)
        self._points = tuple(values.copy() for values in (xs, ys, cs, rs))
        return self

    def transform(self, x: Any, y: Any) -> Tuple[Any, Any]:
        """Columns and rows of ground points.

        >>> x, y = [0, 1, 0, 1], [0, 0, 1, 1]
        >>> grid = zelto.GeoGrid(1).fit(x, y, columns=[0, 10, 0, 10], rows=[10, 10, 0, 0])
        >>> tuple(round(number, 6) for number in grid.transform(0.5, 0.2))
        (5.0, 8.0)
        """
        xs, ys, shape = coordinates(x, y)
        columns, rows = self._native.positions(xs, ys)
        if shape == ():
            return float(columns[0]), float(rows[0])
        return columns.reshape(shape), rows.reshape(shape)

    def residuals(self, x: Any, y: Any, columns: Any, rows: Any) -> Residuals:
        """Fitted less given positions.

        >>> x, y = [0, 1, 0, 1], [0, 0, 1, 1]
        >>> grid = zelto.GeoGrid(1).fit(x, y, columns=[0, 10, 0, 10], rows=[10, 10, 0, 0])
        >>> grid.residuals([0.5], [0.2], [6], [8]).columns.round(6)
        array([-1.])
        """
        xs, ys, _ = coordinates(x, y)
        cs, rs, _ = coordinates(columns, rows)
        if cs.size != xs.size or xs.size == 0:
            raise ValueError("x, y, columns and rows are as many numbers, at least one")
        fitted_columns, fitted_rows = self._native.positions(xs, ys)
        return Residuals(fitted_columns - cs, fitted_rows - rs)


def _grid_again(order: int, points: Optional[Tuple[Doubles, ...]]) -> GeoGrid:
    grid = GeoGrid(order)
    return grid if points is None else grid.fit(*points)
