"""What workers do: functions of one scene, or of some rows of one."""

from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Any, Dict, List, Optional, Sequence, Tuple

import numpy as np

from .. import _engine
from .._area import AreaOfInterest
from .._arrays import Counts
from .._histogram import Buckets
from .._raster import Raster, open
from ._exact import BandSums, ProductSums, band_sums, product_sums


@dataclass(frozen=True)
class Part:
    """Some rows of a scene; count 0: all."""

    path: str
    first: int = 0
    count: int = 0


@dataclass(frozen=True)
class Facts:
    """What has to be known before a scene is cut."""

    height: int
    block: int
    dtypes: Tuple[str, ...]


def facts_of(part: Part) -> Facts:
    with open(part.path) as scene:
        return Facts(scene.height, scene.bands[0].block[0], tuple(b.dtype for b in scene.bands))


def _native(area: Optional[AreaOfInterest]) -> Optional[_engine.Area]:
    return None if area is None else area._native


def sums_of(
    part: Part, area: Optional[AreaOfInterest], bands: Sequence[int]
) -> Dict[int, BandSums]:
    with open(part.path) as scene:
        return band_sums(
            _engine.sums(scene._native, _native(area), bands, part.first, part.count, None)
        )


def products_of(
    part: Part, area: Optional[AreaOfInterest], bands: Sequence[int]
) -> ProductSums:
    with open(part.path) as scene:
        return product_sums(
            _engine.products(scene._native, _native(area), bands, part.first, part.count, None)
        )


def counts_of(
    part: Part, area: Optional[AreaOfInterest], band: int, buckets: Buckets
) -> Counts:
    with open(part.path) as scene:
        return _engine.histogram(
            scene._native,
            _native(area),
            band,
            buckets.low,
            buckets.width,
            buckets.count,
            part.first,
            part.count,
            None,
        )


def picture_of(part: Part, out: str, look: Dict[str, Any]) -> str:
    with open(part.path) as scene:
        scene.save_picture(out, **look)
    return out


def pyramid_of(
    part: Part, resampling: str, bands: Optional[List[int]]
) -> Tuple[Tuple[int, int], ...]:
    with open(part.path) as scene:
        scene.build_pyramids(resampling, bands)
        return scene.bands[0].overviews


def fail_once(part: Part, mark: str) -> str:
    """For tests of lost workers: ends its process when it is the first to come here."""
    try:
        os.close(os.open(mark, os.O_CREAT | os.O_EXCL))
    except FileExistsError:
        return part.path
    os._exit(1)


def raster_path(scene: Any) -> str:
    """A scene in any form that the functions of the package take."""
    if isinstance(scene, Raster):
        return scene.path
    path: str = os.fspath(scene)
    # A name that GDAL opens need not be a file's.
    return os.path.abspath(path) if os.path.exists(path) else path
