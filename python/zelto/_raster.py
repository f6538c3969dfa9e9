"""Rasters: opening and making them."""

from __future__ import annotations

import os
import warnings
from types import TracebackType
from typing import Any, Optional, Sequence, Tuple, Type, Union


from . import _engine
from ._arguments import PathLike, encoded, numbers, text_argument, whole
from ._arrays import DTypeLike
from ._drawing import RasterDrawing
from ._pixels import RasterPixels
from ._places import RasterPlaces


class Raster(RasterPlaces, RasterPixels, RasterDrawing):
    """A raster file. :func:`zelto.open` and :func:`zelto.create` make one; a ``with`` statement
    closes it.

    It serves one thread at a time: a call while another thread's is under way raises
    RuntimeError. Different rasters may be used by different threads at once; the engine works
    without the interpreter's lock.

    >>> with zelto.open("L7_ETMs.tif") as scene:
    ...     scene.shape, scene.count, scene.dtype
    ((352, 349), 6, 'uint8')
    """

    def __enter__(self) -> "Raster":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        if kind is not None:
            self.discard()
        else:
            self.close()

    def __del__(self) -> None:
        if getattr(self, "_new", False) and not self._native.closed:
            warnings.warn(
                f"{self._path}: was never closed and is not written", RuntimeWarning, stacklevel=2
            )

    def __reduce__(self) -> Tuple[Any, ...]:
        raise TypeError("an open raster cannot be pickled; send its path")

    def close(self) -> None:
        """Writes what is in memory and closes the file. A raster that is being made appears
        under its name now, complete.

        >>> scene = zelto.open("L7_ETMs.tif")
        >>> scene.close()
        >>> scene.closed
        True
        """
        self._native.close()

    def discard(self) -> None:
        """Closes; nothing remains of a raster that is being made.

        >>> zelto.create("given up.tif", width=2, height=1).discard()
        >>> zelto.open("given up.tif")
        Traceback (most recent call last):
        zelto._errors.Error: given up.tif: No such file or directory
        """
        self._native.discard()

    def __repr__(self) -> str:
        state = " closed" if self.closed else ""
        return f"<zelto.Raster {self._path!r} {self.width}x{self.height}x{self.count}{state}>"


def open(path: PathLike, mode: str = "r", *, warp: bool = True, crs: str = "") -> Raster:
    """Opens a raster in any format GDAL reads; of a container, the first raster in it.

    :param mode: "r" for reading, "r+" for changing pixels and places
    :param warp: show a raster that only control points place through a north-up view; rotated
        rasters keep their own grid in any case
    :param crs: show it in this reference system, pixels included

    >>> zelto.open("L7_ETMs.tif").shape
    (352, 349)
    """
    if mode not in ("r", "r+"):
        raise ValueError("mode is 'r' or 'r+'; zelto.create() makes new rasters")
    name = encoded(path)
    native = _engine.open_raster(name, mode == "r+", bool(warp), text_argument("crs", crs))
    return Raster(native, os.fsdecode(name))


def create(
    path: PathLike,
    *,
    width: int,
    height: int,
    bands: int = 1,
    dtype: DTypeLike = "uint8",
    geotransform: Optional[Sequence[float]] = None,
    crs: str = "",
    nodata: Optional[float] = None,
    format: str = "",
    options: Sequence[str] = (),
) -> Raster:
    """Begins a new raster. It appears under its name when it is closed, and not at all when a
    ``with`` statement ends by an exception.

    :param geotransform: six numbers in GDAL's order
    :param crs: any form GDAL reads
    :param format: GDAL's name or an extension; "": what the path's extension tells
    :param options: KEY=VALUE for the GeoTIFF writer

    >>> with zelto.create("new.tif", width=3, height=2, dtype="int16") as new:
    ...     new.write([[1, 2, 3], [4, 5, 6]])
    >>> zelto.open("new.tif").read(1).sum()
    21
    """
    name = encoded(path)
    wkt = b""
    if crs:
        wkt = text_argument("crs", _engine.crs_as_wkt(text_argument("crs", crs)))
    native = _engine.create(
        name,
        whole("width", width, 1),
        whole("height", height, 1),
        whole("bands", bands, 1, 65535),
        _engine.sample_dtype(dtype).name,
        None if geotransform is None else numbers("geotransform", geotransform, 6),
        wkt,
        text_argument("format", format),
        [text_argument("options", option) for option in options],
    )
    raster = Raster(native, os.fsdecode(name), new=True)
    if nodata is not None:
        try:
            raster.set_nodata(nodata)
        except BaseException:
            raster.discard()
            raise
    return raster


def as_raster(source: Union[Raster, PathLike]) -> Raster:
    return source if isinstance(source, Raster) else open(source)
