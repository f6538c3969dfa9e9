"""How often values occur in a region of a raster."""

from __future__ import annotations

import math
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any, Dict, Optional, Tuple, Union

import numpy as np

from . import _engine
from ._alike import Alike
from ._arguments import AreaLike, Box, PathLike, band_numbers, numbers, whole
from ._arrays import Counts, Doubles
from ._progress import Progress, as_callable
from ._raster import Raster, as_raster
from ._statistics import region_area, statistics


@dataclass(frozen=True, eq=False)
class Histogram(Alike):
    """Counts of the values from each edge up to, but not including, the next."""

    band: int
    counts: Counts
    edges: Doubles

    def to_dict(self) -> Dict[str, Any]:
        return {
            "band": self.band,
            "counts": self.counts.tolist(),
            "edges": self.edges.tolist(),
        }


@dataclass(frozen=True)
class Buckets:
    """Buckets of equal width."""

    low: float
    width: float
    count: int

    def edges(self) -> Doubles:
        return self.low + self.width * np.arange(self.count + 1)


def plan_buckets(dtype: str, least: float, greatest: float, bins: int) -> Buckets:
    """At most `bins` buckets. Those of whole numbers hold as many whole values each."""
    if np.dtype(dtype).kind != "f":
        low = math.ceil(least)
        values = max(math.floor(greatest) - low + 1, 1)
        width = max(1, math.ceil(values / bins))
        return Buckets(low - 0.5, float(width), max(1, math.ceil(values / width)))
    if not greatest > least:
        return Buckets(least, 1.0, 1)
    # The greatest value falls into the last bucket.
    return Buckets(least, (greatest - least) * (1.0 + 1e-9) / bins, bins)


def range_argument(range: Optional[Sequence[float]]) -> Optional[Tuple[float, float]]:
    if range is None:
        return None
    low, high = numbers("range", range, 2)
    if not low < high:
        raise ValueError("range: low < high")
    return low, high


def histogram(
    raster: Union[Raster, PathLike],
    band: int = 1,
    area: Optional[AreaLike] = None,
    *,
    box: Optional[Box] = None,
    bins: int = 256,
    range: Optional[Sequence[float]] = None,
    progress: Progress = None,
) -> Histogram:
    """How often the values of a region occur.

    :param bins: how many buckets at most; whole numbers have as many values in each
    :param range: least and greatest value to count; None: those that occur

    >>> zelto.histogram("L7_ETMs.tif", 1, bins=4).counts
    array([115829,   6767,    201,     51])
    """
    scene = as_raster(raster)
    (number,) = band_numbers(band, scene.count)
    most = whole("bins", bins, 1, 2**24)
    region = region_area(area, box)
    limits = range_argument(range)
    if limits is None:
        (found,) = statistics(scene, region, bands=number, progress=progress)[0].bands
        if found.count == 0:
            raise ValueError("there are no values in the region; give a range")
        limits = (found.minimum, found.maximum)
    buckets = plan_buckets(scene.bands[number - 1].dtype, *limits, most)
    counts = _engine.histogram(
        scene._native,
        None if region is None else region._native,
        number,
        buckets.low,
        buckets.width,
        buckets.count,
        0,
        0,
        as_callable(progress),
    )
    return Histogram(number, counts, buckets.edges())
