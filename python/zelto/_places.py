"""Between pixels and ground coordinates."""

from __future__ import annotations

from typing import Any, Tuple

import numpy as np

from . import _engine
from ._arguments import coordinates
from ._arrays import Array
from ._facts import RasterFacts


class RasterPlaces(RasterFacts):
    """Where pixels lie, and which values lie where."""

    def xy(self, row: Any, column: Any, offset: str = "center") -> Tuple[Any, Any]:
        """Ground coordinates of pixels, single ones or arrays; of infinite ones NaN or infinite.

        :param offset: which place of the pixel: "center", or "ul" for its first corner

        >>> x, y = zelto.open("L7_ETMs.tif").xy(0, 0, offset="ul")
        >>> round(x, 3), round(y, 3)
        (288776.25, 9120760.75)
        """
        if offset not in ("center", "ul"):
            raise ValueError("offset is 'center' or 'ul'")
        rows, columns, shape = coordinates(row, column)
        shift = 0.5 if offset == "center" else 0.0
        a, b, c, d, e, f = self.transform
        with np.errstate(invalid="ignore", over="ignore"):
            x = a * (columns + shift) + b * (rows + shift) + c
            y = d * (columns + shift) + e * (rows + shift) + f
        if shape == ():
            return float(x[0]), float(y[0])
        return x.reshape(shape), y.reshape(shape)

    def index(self, x: Any, y: Any) -> Tuple[Any, Any]:
        """Row and column of the pixels that hold ground points; they may lie off the raster.

        >>> zelto.open("L7_ETMs.tif").index(288777, 9120760)
        (0, 0)
        """
        xs, ys, shape = coordinates(x, y)
        if not (np.isfinite(xs).all() and np.isfinite(ys).all()):
            raise ValueError("x and y are finite")
        if not any(self._facts["inverse"]):
            raise ValueError("the geotransform has no inverse")
        c0, cx, cy, r0, rx, ry = self._facts["inverse"]
        with np.errstate(invalid="ignore", over="ignore"):
            rows = np.floor(r0 + rx * xs + ry * ys)
            columns = np.floor(c0 + cx * xs + cy * ys)
        limit = float(2**62)
        if rows.size and not np.abs((rows, columns)).max() <= limit:
            raise ValueError("the points are too far away for a row and a column")
        if shape == ():
            return int(rows[0]), int(columns[0])
        return rows.reshape(shape).astype(np.int64), columns.reshape(shape).astype(np.int64)

    def value_at(self, x: Any, y: Any) -> Array:
        """Values of all bands under ground points, as float64: an array of the points' shape and
        one axis more for the bands. Points beside the raster have NaN.

        >>> zelto.open("L7_ETMs.tif").value_at(288777, 9120760)
        array([69., 56., 46., 79., 86., 46.])
        """
        xs, ys, shape = coordinates(x, y)
        return _engine.values_at(self._native, xs, ys).reshape(*shape, self.count)
