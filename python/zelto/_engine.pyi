"""The compiled half of the package."""

from typing import Any, Dict, List, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from ._progress import ProgressCallable

Bytes = npt.NDArray[np.uint8]
Doubles = npt.NDArray[np.float64]
Box = Tuple[float, float, float, float]
ShapeTuple = Tuple[str, List[float]]

class Raster:
    @property
    def closed(self) -> bool: ...
    @property
    def writable(self) -> bool: ...
    def describe(self) -> Dict[str, Any]: ...
    def sampled(self, band: int) -> List[float]: ...
    def reopen(self) -> None: ...
    def close(self) -> None: ...
    def discard(self) -> None: ...

class Area:
    def __init__(self, path: bytes = ...) -> None: ...
    wkt: Any
    @property
    def count(self) -> int: ...
    def add(self, shapes: Sequence[Tuple[str, Sequence[float]]]) -> None: ...
    def shapes(self) -> List[ShapeTuple]: ...
    def extent(self) -> List[float]: ...
    def contains(self, xs: Doubles, ys: Doubles) -> npt.NDArray[np.bool_]: ...
    def save(self, path: bytes, tolerance: float) -> None: ...
    def transform(self, srs: bytes) -> None: ...

class Recipe:
    def __init__(self, json: bytes) -> None: ...
    @staticmethod
    def read(path: bytes) -> Recipe: ...
    def write(self, path: bytes) -> None: ...
    def json(self) -> str: ...
    def view(self) -> Optional[Tuple[float, float, float, float, int, int, str]]: ...
    def mask(self) -> Optional[Tuple[str, bool]]: ...
    def without_place(self) -> Recipe: ...

class Composition:
    def __init__(self, colors: Sequence[Tuple[bytes, int]]) -> None: ...
    def describe(self) -> Dict[str, Any]: ...
    def render(
        self,
        out: Bytes,
        box: Box,
        settings: Dict[str, Any],
        progress: Optional[ProgressCallable],
    ) -> None: ...

class Transformation:
    def __init__(
        self,
        source: bytes,
        target: bytes,
        source_shift: Optional[Sequence[float]],
        target_shift: Optional[Sequence[float]],
    ) -> None: ...
    def transform(self, x: Doubles, y: Doubles, z: Optional[Doubles]) -> None: ...

class Grid:
    def __init__(self, order: int) -> None: ...
    def fit(self, x: Doubles, y: Doubles, columns: Doubles, rows: Doubles) -> None: ...
    def positions(self, x: Doubles, y: Doubles) -> Tuple[Doubles, Doubles]: ...
    def coefficients(
        self,
    ) -> Optional[Tuple[Doubles, Doubles, Tuple[float, float], Tuple[float, float]]]: ...

def open_raster(path: bytes, update: bool, warp: bool, srs: bytes) -> Raster: ...
def subdatasets(path: bytes) -> List[Tuple[str, str]]: ...
def whole(name: str, value: Any, least: int = 0, most: int = 2**31 - 1) -> int: ...
def band_numbers(bands: Union[None, int, Sequence[int]], count: int) -> List[int]: ...
def window_within(
    window: Optional[Sequence[int]], width: int, height: int
) -> Tuple[int, int, int, int]: ...
def sample_dtype(dtype: npt.DTypeLike) -> np.dtype[Any]: ...
def common_dtype(names: Sequence[Optional[str]]) -> np.dtype[Any]: ...
def read(
    raster: Raster,
    bands: Union[None, int, Sequence[int]],
    window: Optional[Sequence[int]],
    shape: Optional[Tuple[int, int]],
    dtype: Optional[npt.DTypeLike],
    resampling: str,
    out: Optional[npt.NDArray[Any]],
    progress: Optional[ProgressCallable],
) -> npt.NDArray[Any]: ...
def write(
    raster: Raster,
    samples: npt.NDArray[Any],
    bands: Sequence[int],
    window: Tuple[int, int, int, int],
) -> None: ...
def values_at(raster: Raster, xs: Doubles, ys: Doubles) -> Doubles: ...
def render(
    raster: Raster,
    out: Bytes,
    box: Box,
    settings: Dict[str, Any],
    srs: bytes,
    area: Optional[Area],
    black_outside: bool,
    progress: Optional[ProgressCallable],
) -> None: ...
def render_planes(
    raster: Raster,
    planes: Bytes,
    inside: Optional[Bytes],
    box: Box,
    settings: Dict[str, Any],
    srs: bytes,
    area: Optional[Area],
    progress: Optional[ProgressCallable],
) -> None: ...
def take_recipe(
    raster: Raster,
    box: Box,
    size: Tuple[int, int],
    settings: Dict[str, Any],
    srs: bytes,
    area: Optional[Area],
    mask: Optional[Tuple[bytes, bool]],
    progress: Optional[ProgressCallable],
) -> Recipe: ...
def shown_extent(
    raster: Raster, srs: bytes
) -> Tuple[float, float, float, float, int, int]: ...
def create(
    path: bytes,
    width: int,
    height: int,
    bands: int,
    dtype: str,
    geotransform: Optional[Sequence[float]],
    wkt: bytes,
    format: bytes,
    options: Sequence[bytes],
) -> Raster: ...
def set_nodata(raster: Raster, value: Optional[float]) -> None: ...
def set_colors(raster: Raster, band: int, colors: Sequence[Sequence[int]]) -> None: ...
def set_place(
    raster: Raster, geotransform: Optional[Sequence[float]], wkt: Optional[bytes]
) -> None: ...
def build_pyramid(
    path: bytes, resampling: bytes, bands: Sequence[int], progress: Optional[ProgressCallable]
) -> None: ...
def save_picture(path: bytes, pixels: Bytes, box: Optional[Box], wkt: bytes) -> None: ...
def shape_contains(
    kind: str, numbers: Sequence[float], xs: Doubles, ys: Doubles, tolerance: float
) -> npt.NDArray[np.bool_]: ...
def statistics(
    raster: Raster,
    area: Optional[Area],
    bands: Sequence[int],
    each: bool,
    approx: bool,
    percentiles: Optional[Sequence[float]],
    covariance: bool,
    progress: Optional[ProgressCallable],
) -> List[Dict[str, Any]]: ...
def sums(
    raster: Raster,
    area: Optional[Area],
    bands: Sequence[int],
    first_row: int,
    row_count: int,
    progress: Optional[ProgressCallable],
) -> List[Tuple[int, int, float, float, bytes, bytes]]: ...
def products(
    raster: Raster,
    area: Optional[Area],
    bands: Sequence[int],
    first_row: int,
    row_count: int,
    progress: Optional[ProgressCallable],
) -> Tuple[int, List[bytes], List[bytes]]: ...
def histogram(
    raster: Raster,
    area: Optional[Area],
    band: int,
    low: float,
    width: float,
    buckets: int,
    first_row: int,
    row_count: int,
    progress: Optional[ProgressCallable],
) -> npt.NDArray[np.int64]: ...
def mask(raster: Raster, area: Optional[Area], out: npt.NDArray[np.bool_]) -> None: ...
def sample_pixels(
    raster: Raster, area: Area, progress: Optional[ProgressCallable]
) -> List[Optional[Doubles]]: ...
def polygonize(
    raster: Raster,
    out: bytes,
    band: int,
    mask: int,
    keep_nodata: bool,
    field: bytes,
    eight: bool,
    progress: Optional[ProgressCallable],
) -> int: ...
def zonal_statistics(
    raster: Raster,
    zones: Sequence[bytes],
    bands: Sequence[int],
    coverage: bool,
    quantiles: Sequence[float],
    progress: Optional[ProgressCallable],
) -> List[List[Tuple[Any, ...]]]: ...
def read_class_file(path: bytes) -> Dict[str, Any]: ...
def write_class_file(
    path: bytes,
    classes: Sequence[Tuple[int, Sequence[int], bytes]],
    entries: Sequence[Tuple[float, float, int, int]],
    matrix: Sequence[Sequence[bytes]],
) -> None: ...
def read_sample_file(path: bytes) -> List[Dict[str, Any]]: ...
def write_sample_file(path: bytes, classes: Sequence[Dict[str, Any]]) -> None: ...
def describe_crs(srs: bytes) -> Tuple[str, str, List[Tuple[str, str, Optional[float]]]]: ...
def crs_as_wkt(srs: bytes) -> str: ...
def is_same_crs(a: bytes, b: bytes) -> bool: ...
def gauss_kruger(srs: bytes, zone: int, width: int) -> str: ...
