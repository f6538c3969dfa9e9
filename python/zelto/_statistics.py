"""Numbers over a region of a raster."""

from __future__ import annotations

from collections.abc import Iterator, Sequence
from dataclasses import asdict, dataclass
from typing import Any, Dict, List, Optional, Tuple, Union, overload

import numpy as np

from . import _engine
from ._alike import Alike
from ._area import AreaOfInterest, as_area
from ._arguments import AreaLike, Box, PathLike, band_numbers, box_argument, numbers
from ._arrays import Doubles
from ._progress import Progress, as_callable
from ._raster import Raster, as_raster
from ._shapes import Rectangle


@dataclass(frozen=True)
class BandStatistics:
    """Of a band's values in a region; without values all but the count are NaN."""

    band: int
    count: int
    minimum: float
    maximum: float
    mean: float
    #: Of the population.
    standard_deviation: float
    low_percentile: Optional[float] = None
    high_percentile: Optional[float] = None

    def to_dict(self) -> Dict[str, Any]:
        return {name: value for name, value in asdict(self).items() if value is not None}


@dataclass(frozen=True, eq=False)
class Covariance(Alike):
    """Of the pixels that have a value in every band, in the population form."""

    bands: Tuple[int, ...]
    count: int
    matrix: Doubles

    @property
    def correlation(self) -> Doubles:
        """NaN for bands of a single value."""
        deviations = np.sqrt(np.diagonal(self.matrix))
        with np.errstate(divide="ignore", invalid="ignore"):
            found: Doubles = self.matrix / np.outer(deviations, deviations)
        return found

    def to_dict(self) -> Dict[str, Any]:
        return {"bands": list(self.bands), "count": self.count, "matrix": self.matrix.tolist()}


@dataclass(frozen=True)
class RegionStatistics:
    """Of one region."""

    bands: Tuple[BandStatistics, ...]
    #: Number of the shape in its area, from 1; None for all shapes together.
    shape: Optional[int] = None
    covariance: Optional[Covariance] = None
    #: Whether a sample was taken, with approx=True.
    sampled: bool = False

    def to_dict(self) -> Dict[str, Any]:
        found: Dict[str, Any] = {"bands": [band.to_dict() for band in self.bands]}
        if self.shape is not None:
            found["shape"] = self.shape
        if self.covariance is not None:
            found["covariance"] = self.covariance.to_dict()
        return found


class StatisticsTable(Sequence[RegionStatistics]):
    """Results of :func:`statistics`, one for each region."""

    def __init__(self, regions: Sequence[RegionStatistics]) -> None:
        self._regions = tuple(regions)

    @overload
    def __getitem__(self, index: int) -> RegionStatistics: ...

    @overload
    def __getitem__(self, index: slice) -> Tuple[RegionStatistics, ...]: ...

    def __getitem__(
        self, index: Union[int, slice]
    ) -> Union[RegionStatistics, Tuple[RegionStatistics, ...]]:
        return self._regions[index]

    def __len__(self) -> int:
        return len(self._regions)

    def __iter__(self) -> Iterator[RegionStatistics]:
        return iter(self._regions)

    def rows(self) -> List[Dict[str, Any]]:
        """A flat row for each band of each region: ``pandas.DataFrame(table.rows())``.

        >>> table = zelto.statistics("L7_ETMs.tif", bands=(1, 4))
        >>> [(row["band"], row["maximum"]) for row in table.rows()]
        [(1, 255.0), (4, 255.0)]
        """
        return [
            {**({} if region.shape is None else {"shape": region.shape}), **band.to_dict()}
            for region in self._regions
            for band in region.bands
        ]

    def to_dict(self) -> Dict[str, Any]:
        return {"regions": [region.to_dict() for region in self._regions]}

    def __repr__(self) -> str:
        names = list(self.rows()[0]) if self.rows() else []
        lines = ["  ".join(f"{name:>18}" for name in names)]
        lines += [
            "  ".join(f"{value:>18.6g}" for value in row.values()) for row in self.rows()
        ]
        return "\n".join(lines)


def region_area(area: Optional[AreaLike], box: Optional[Box]) -> Optional[AreaOfInterest]:
    """The area that the arguments of a measurement ask for; None for the whole raster."""
    if area is not None and box is not None:
        raise ValueError("area and box contradict each other")
    if box is not None:
        return AreaOfInterest(Rectangle(*box_argument("box", box)))
    return None if area is None else as_area(area)


def statistics(
    raster: Union[Raster, PathLike],
    area: Optional[AreaLike] = None,
    *,
    box: Optional[Box] = None,
    each: bool = False,
    bands: Union[None, int, Sequence[int]] = None,
    approx: bool = False,
    percentiles: Optional[Sequence[float]] = None,
    covariance: bool = False,
    progress: Progress = None,
) -> StatisticsTable:
    """Count, range, mean and deviation of the values in a region.

    A pixel belongs to a region when its middle lies in one of its shapes, and counts once.
    No-data values, NaN and infinities are left out band by band; zeros count. An area in another
    reference system is transformed.

    :param area: see :class:`zelto.AreaOfInterest`; None: the whole raster
    :param box: left, bottom, right, top in place of an area
    :param each: a result for every shape of the area instead of one for all
    :param approx: a sample of large regions, of at most 2**24 values
    :param percentiles: two percentages, interpolated between the sorted values
    :param covariance: of all bands, too

    >>> table = zelto.statistics("L7_ETMs.tif", bands=(3, 4), percentiles=(2, 98))
    >>> for row in table.rows():
    ...     print(row["band"], row["count"], round(row["mean"], 3), row["high_percentile"])
    3 122848 64.359 113.0
    4 122848 59.235 95.0
    """
    scene = as_raster(raster)
    region = region_area(area, box)
    if each and region is None:
        raise ValueError("each=True takes an area")
    shares = None if percentiles is None else numbers("percentiles", percentiles, 2)
    found = _engine.statistics(
        scene._native,
        None if region is None else region._native,
        [] if bands is None else band_numbers(bands, scene.count),
        bool(each),
        bool(approx),
        shares,
        bool(covariance),
        as_callable(progress),
    )
    return StatisticsTable(
        [
            _region(result, number if each else None, shares is not None)
            for number, result in enumerate(found, 1)
        ]
    )


def _region(result: Dict[str, Any], shape: Optional[int], shares: bool) -> RegionStatistics:
    bands = tuple(BandStatistics(*(band if shares else band[:6])) for band in result["bands"])
    matrix = None
    if "covariance" in result:
        matrix = Covariance(
            tuple(band.band for band in bands), result["covariance_count"], result["covariance"]
        )
    return RegionStatistics(bands, shape, matrix, result["sampled"])


def covariance(
    raster: Union[Raster, PathLike],
    area: Optional[AreaLike] = None,
    *,
    box: Optional[Box] = None,
    bands: Union[None, int, Sequence[int]] = None,
    progress: Progress = None,
) -> Covariance:
    """Covariance of the bands over the pixels that have a value in every one.

    >>> zelto.covariance("L7_ETMs.tif", bands=(1, 2)).matrix.round(1)
    array([[215.9, 235. ],
           [235. , 268.7]])
    """
    table = statistics(
        raster, area, box=box, bands=bands, covariance=True, progress=progress
    )
    found = table[0].covariance
    assert found is not None
    return found
