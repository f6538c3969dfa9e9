"""What was measured of many scenes."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Dict, List, Tuple

from .._histogram import Histogram
from .._statistics import BandStatistics, Covariance
from ._scenes import SceneResult


@dataclass(frozen=True)
class ManyScenes:
    """What was measured, and what could not be."""

    scenes: Tuple[str, ...]
    failures: Tuple[SceneResult, ...]

    def to_dict(self) -> Dict[str, Any]:
        return {
            "scenes": list(self.scenes),
            "failures": [failure.to_dict() for failure in self.failures],
        }


@dataclass(frozen=True)
class ManyStatistics(ManyScenes):
    """Of all scenes together."""

    bands: Tuple[BandStatistics, ...]

    def rows(self) -> List[Dict[str, Any]]:
        """A row for each band: ``pandas.DataFrame(found.rows())``.

        >>> many.statistics("L7_ETMs.tif", bands=4, jobs=1).rows()[0]["minimum"]
        9.0
        """
        return [band.to_dict() for band in self.bands]

    def to_dict(self) -> Dict[str, Any]:
        return {"bands": self.rows(), **super().to_dict()}


@dataclass(frozen=True)
class ManyCovariance(ManyScenes):
    """Of all scenes together."""

    covariance: Covariance

    def to_dict(self) -> Dict[str, Any]:
        return {"covariance": self.covariance.to_dict(), **super().to_dict()}


@dataclass(frozen=True)
class ManyHistogram(ManyScenes):
    """Of all scenes together."""

    histogram: Histogram

    def to_dict(self) -> Dict[str, Any]:
        return {"histogram": self.histogram.to_dict(), **super().to_dict()}
