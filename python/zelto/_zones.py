"""Statistics under many polygons in one pass over a raster."""

from __future__ import annotations

import json
from collections.abc import Iterable, Mapping, Sequence
from dataclasses import asdict, dataclass
from typing import Any, Dict, List, Tuple, Union

from . import _engine
from ._arguments import PathLike, band_numbers, finite
from ._shapes import Shape
from ._progress import Progress, as_callable
from ._raster import Raster, as_raster


@dataclass(frozen=True)
class ZoneBand:
    """Of a band's values in a zone; without values NaN, but for count, weight and sum."""

    band: int
    #: Pixels with a value, whatever they weigh.
    count: int
    #: Sum of their weights.
    weight: float
    minimum: float
    maximum: float
    sum: float
    mean: float
    #: Of the population.
    standard_deviation: float
    quantiles: Tuple[float, ...] = ()

    def to_dict(self) -> Dict[str, Any]:
        return asdict(self)


def _geometries(zones: Any) -> List[Mapping[str, Any]]:
    if isinstance(zones, Mapping):
        if zones.get("type") == "FeatureCollection":
            return [member["geometry"] for member in zones["features"]]
        return [zones["geometry"] if zones.get("type") == "Feature" else zones]
    if isinstance(zones, Shape) or hasattr(zones, "__geo_interface__"):
        return _geometries(zones.__geo_interface__)
    if isinstance(zones, Iterable) and not isinstance(zones, (str, bytes)):
        return [geometry for zone in zones for geometry in _geometries(zone)]
    raise TypeError("zones are GeoJSON objects or what has __geo_interface__")


def zonal_statistics(
    raster: Union[Raster, PathLike],
    zones: Any,
    *,
    bands: Union[None, int, Sequence[int]] = None,
    weights: str = "center",
    quantiles: Sequence[float] = (),
    progress: Progress = None,
) -> List[Tuple[ZoneBand, ...]]:
    """Statistics under every polygon, all of them in one pass over the raster.

    Unlike :func:`zelto.statistics` with ``each=True``, holes are no part of a polygon, and a
    multipolygon is one zone.

    :param zones: GeoJSON objects or what has ``__geo_interface__``, in the raster's system
    :param weights: "center": pixels whose middle lies in the zone weigh 1; "coverage": each
        weighs the share of it that the zone covers
    :param quantiles: shares from 0 to 1
    :return: per zone its bands

    >>> corner = zelto.Rectangle(288776.25, 9120700, 288890.25, 9120760.75)
    >>> (zone,) = zelto.zonal_statistics("L7_ETMs.tif", corner, bands=1, weights="coverage")
    >>> zone[0].count, round(zone[0].weight, 3)
    (12, 8.526)
    """
    if weights not in ("center", "coverage"):
        raise ValueError("weights is 'center' or 'coverage'")
    scene = as_raster(raster)
    found = _engine.zonal_statistics(
        scene._native,
        [json.dumps(geometry).encode("utf-8") for geometry in _geometries(zones)],
        [] if bands is None else band_numbers(bands, scene.count),
        weights == "coverage",
        [finite("quantiles", share) for share in quantiles],
        as_callable(progress),
    )
    return [tuple(ZoneBand(*band) for band in zone) for zone in found]
