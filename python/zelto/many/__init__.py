"""Many scenes at once: in processes of this machine, or on a Dask cluster.

Results do not depend on where and in how many parts the work was done, to the last bit: parts
give sums without rounding, which are added as whole numbers. A scene that cannot be read is
reported with its reason and does not end the others; a task that is lost with its worker runs
again.

Every function takes

- ``scenes``: paths; on a cluster they are those that the workers see;
- ``jobs``: number of processes, as many as processors when not given; 1: in this process;
- ``client``: a ``distributed.Client``, or a scheduler's address, in place of processes here;
- ``on_result``: a callable that gets each scene's result when it is there;
- ``progress``: a callable, or True for a bar with the time left.

>>> from zelto import many
>>> found = many.statistics(["L7_ETMs.tif", "missing.tif"], jobs=1)
>>> found.bands[0].count, found.failures[0].reason
(122848, 'No such file or directory')
"""

from __future__ import annotations

import os
from pathlib import Path
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple, Union

import numpy as np

from .._arguments import AreaLike, Box, PathLike, band_numbers, encoded, whole
from .._histogram import Histogram, plan_buckets, range_argument
from .._looks import DRAWING, LOOK, as_settings, check_beside_recipe, check_names
from .._progress import Progress
from .._raster import Raster
from .._recipes import as_recipe
from .._statistics import BandStatistics, Covariance, region_area
from ._exact import BandSums, ProductSums
from ._results import ManyCovariance, ManyHistogram, ManyStatistics
from ._scenes import Run, SceneResult
from ._tasks import (
    counts_of,
    picture_of,
    products_of,
    pyramid_of,
    raster_path,
    sums_of,
)
from ._workers import Task

Scenes = Union[PathLike, Raster, Sequence[Union[PathLike, Raster]]]
OnResult = Optional[Callable[[SceneResult], object]]

__all__ = [
    "ManyStatistics",
    "ManyCovariance",
    "ManyHistogram",
    "SceneResult",
    "covariance",
    "histogram",
    "pyramids",
    "render_all",
    "statistics",
]


def _paths(scenes: Scenes) -> List[str]:
    single = isinstance(scenes, (str, os.PathLike, Raster))
    listed: Sequence[Any] = [scenes] if single else list(scenes)  # type: ignore[arg-type]
    if not listed:
        raise ValueError("no scenes")
    for scene in listed:
        if not isinstance(scene, Raster):
            encoded(scene)
    return [raster_path(scene) for scene in listed]


def _band_statistics(band: int, sums: BandSums) -> BandStatistics:
    return BandStatistics(
        band, sums.count, sums.minimum, sums.maximum, sums.mean(), sums.standard_deviation()
    )


def _merged_sums(parts: Sequence[Dict[int, BandSums]]) -> Dict[int, BandSums]:
    merged: Dict[int, BandSums] = {}
    for part in parts:
        for band, sums in part.items():
            merged.setdefault(band, BandSums()).add(sums)
    return merged


def _chosen(bands: Union[None, int, Sequence[int]], run: Run) -> List[int]:
    """The bands asked for; none: those of the first scene, which all must have."""
    if bands is not None:
        return band_numbers(bands, 65535)
    return list(range(1, run.band_count() + 1))


def statistics(
    scenes: Scenes,
    area: Optional[AreaLike] = None,
    *,
    box: Optional[Box] = None,
    bands: Union[None, int, Sequence[int]] = None,
    rows: Optional[int] = None,
    jobs: Optional[int] = None,
    client: Any = None,
    on_result: OnResult = None,
    progress: Progress = None,
) -> ManyStatistics:
    """Count, range, mean and deviation of all values together, by the rules of
    :func:`zelto.statistics`. Mean and deviation are those of the exact sums, rounded once.

    :param rows: scenes are cut into parts of as many rows; None: as suits the workers

    >>> many.statistics("L7_ETMs.tif", bands=1, rows=50, jobs=1).bands[0].mean
    79.147...
    """
    region = region_area(area, box)
    with Run(_paths(scenes), jobs, client, on_result, progress) as run:
        chosen = _chosen(bands, run)
        done = run.by_parts(
            rows,
            chosen,
            lambda part: Task(sums_of, (part, region, chosen)),
            lambda parts: _scene_bands(_merged_sums(parts)),
        )
        total = _merged_sums([part for scene in done for part in scene.parts])
    return ManyStatistics(run.measured(), run.failures(), _scene_bands(total))


def _scene_bands(sums: Dict[int, BandSums]) -> Tuple[BandStatistics, ...]:
    return tuple(_band_statistics(band, found) for band, found in sums.items())


def _product_covariance(bands: Sequence[int], parts: Sequence[ProductSums]) -> Covariance:
    total = ProductSums()
    for part in parts:
        total.add(part)
    side = len(total.totals)
    matrix = np.array(total.matrix(), dtype=np.float64).reshape(side, side)
    return Covariance(tuple(bands), total.count, matrix)


def covariance(
    scenes: Scenes,
    area: Optional[AreaLike] = None,
    *,
    box: Optional[Box] = None,
    bands: Union[None, int, Sequence[int]] = None,
    rows: Optional[int] = None,
    jobs: Optional[int] = None,
    client: Any = None,
    on_result: OnResult = None,
    progress: Progress = None,
) -> ManyCovariance:
    """Covariance over the pixels of all scenes that have a value in every band.

    >>> many.covariance("L7_ETMs.tif", bands=(3, 4), jobs=1).covariance.matrix.shape
    (2, 2)
    """
    region = region_area(area, box)
    with Run(_paths(scenes), jobs, client, on_result, progress) as run:
        chosen = _chosen(bands, run)
        done = run.by_parts(
            rows,
            chosen,
            lambda part: Task(products_of, (part, region, chosen)),
            lambda parts: _product_covariance(chosen, parts),
        )
        found = _product_covariance(chosen, [part for scene in done for part in scene.parts])
    return ManyCovariance(run.measured(), run.failures(), found)


def histogram(
    scenes: Scenes,
    band: int = 1,
    area: Optional[AreaLike] = None,
    *,
    box: Optional[Box] = None,
    bins: int = 256,
    range: Optional[Sequence[float]] = None,
    rows: Optional[int] = None,
    jobs: Optional[int] = None,
    client: Any = None,
    on_result: OnResult = None,
    progress: Progress = None,
) -> ManyHistogram:
    """How often the values of all scenes occur; see :func:`zelto.histogram`.

    :param range: least and greatest value to count; None: the scenes are read once more to know

    >>> many.histogram("L7_ETMs.tif", bins=4, jobs=1).histogram.counts
    array([115829,   6767,    201,     51])
    """
    number = whole("a band", band, 1, 65535)
    most = whole("bins", bins, 1, 2**24)
    limits = range_argument(range)
    region = region_area(area, box)
    with Run(_paths(scenes), jobs, client, on_result, progress) as run:
        if limits is None:
            run.silent = True
            done = run.by_parts(
                rows, [number], lambda part: Task(sums_of, (part, region, [number])), tuple
            )
            found = _merged_sums([part for scene in done for part in scene.parts])
            sums = found.get(number, BandSums())
            if sums.count == 0:
                raise ValueError("there are no values in the scenes; give a range")
            limits = (sums.minimum, sums.maximum)
            run.silent = False
        buckets = plan_buckets(run.dtype(number), limits[0], limits[1], most)
        scenes_done = run.by_parts(
            rows,
            [number],
            lambda part: Task(counts_of, (part, region, number, buckets)),
            lambda parts: Histogram(number, sum(parts), buckets.edges()),
        )
        counts = np.zeros(buckets.count, dtype=np.int64)
        for scene in scenes_done:
            for part in scene.parts:
                counts += part
    return ManyHistogram(
        run.measured(), run.failures(), Histogram(number, counts, buckets.edges())
    )


def render_all(
    scenes: Scenes,
    out_folder: PathLike,
    *,
    format: str = "png",
    jobs: Optional[int] = None,
    client: Any = None,
    on_result: OnResult = None,
    progress: Progress = None,
    **look: Any,
) -> List[SceneResult]:
    """Draws every scene into a folder, which is made where it is missing. Pictures have the
    scenes' names and appear when they are complete.

    :param format: png, jpg or tif
    :param look: as :meth:`zelto.Raster.render`
    :return: per scene the picture's path, or the reason

    >>> many.render_all("L7_ETMs.tif", "pictures", bands=4, size=60, jobs=1)[0].reason
    >>> zelto.open("pictures/L7_ETMs.png").shape
    (60, 59)
    """
    if format not in ("png", "jpg", "tif"):
        raise ValueError("format is png, jpg or tif")
    check_names(look, DRAWING)
    as_settings({name: value for name, value in look.items() if name in LOOK})
    if look.get("recipe") is not None:
        check_beside_recipe(look)
        look["recipe"] = as_recipe(look["recipe"])
    if look.get("area") is not None:
        look["area"] = region_area(look["area"], None)
    paths = _paths(scenes)
    folder = os.path.abspath(os.fspath(out_folder))
    outs = [os.path.join(folder, Path(path).stem + "." + format) for path in paths]
    if len(set(outs)) < len(outs):
        raise ValueError("two scenes have the same name; their pictures would as well")
    os.makedirs(folder, exist_ok=True)
    names = dict(zip(paths, outs))
    with Run(paths, jobs, client, on_result, progress) as run:
        run.whole(lambda part: Task(picture_of, (part, names[part.path], look)))
        return run.results()


def pyramids(
    scenes: Scenes,
    *,
    resampling: str = "nearest",
    bands: Optional[Sequence[int]] = None,
    jobs: Optional[int] = None,
    client: Any = None,
    on_result: OnResult = None,
    progress: Progress = None,
) -> List[SceneResult]:
    """Builds every scene's pyramid anew; see :meth:`zelto.Raster.build_pyramids`.

    :return: per scene rows and columns of the levels, or the reason

    >>> zelto.copy("L7_ETMs.tif", "copied.tif")
    >>> many.pyramids("copied.tif", jobs=1)[0].value
    ((176, 175), (88, 88), (44, 44))
    """
    chosen = None if bands is None else list(bands)
    with Run(_paths(scenes), jobs, client, on_result, progress) as run:
        run.whole(lambda part: Task(pyramid_of, (part, resampling, chosen)))
        return run.results()
