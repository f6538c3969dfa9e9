"""Rasters: opening, facts, pixels, drawing."""

from __future__ import annotations

import math
import os
import warnings
from dataclasses import asdict, dataclass
from pathlib import Path
from types import TracebackType
from typing import Any, Dict, List, NamedTuple, Optional, Sequence, Tuple, Type, Union

import numpy as np
import numpy.typing as npt

from . import _engine
from ._area import AreaLike, as_area
from ._arguments import (
    Bounds,
    Box,
    PathLike,
    Window,
    band_numbers,
    box_argument,
    coordinates,
    encoded,
    engine_box,
    numbers,
    text_argument,
    whole,
)
from ._looks import ClassColor, Color, as_color, as_settings
from ._progress import Progress, as_callable
from ._views import Size, choose_view

Array = npt.NDArray[Any]
Bytes = npt.NDArray[np.uint8]

_DTYPES = ("uint8", "uint16", "int16", "uint32", "int32", "float32", "float64")


class Affine(NamedTuple):
    """A geotransform in the order of the package affine: x = a·column + b·row + c, y = d·column
    + e·row + f. ``affine.Affine(*scene.transform)`` makes one of that package's."""

    a: float
    b: float
    c: float
    d: float
    e: float
    f: float


class Sampled(NamedTuple):
    """What a display takes from a sample of a band, the same for every call."""

    minimum: float
    maximum: float
    mean: float
    standard_deviation: float
    #: Bounds of the standard-deviation stretch.
    low: float
    high: float


class Subdataset(NamedTuple):
    #: Opens as a raster.
    name: str
    description: str


@dataclass(frozen=True)
class Band:
    """Facts of a band."""

    number: int
    #: NumPy's name of the type; float64 where the file's own is none of the seven.
    dtype: str
    #: GDAL's name of the file's own type.
    type_name: str
    #: Rows and columns that the file stores together.
    block: Tuple[int, int]
    nodata: Optional[float]
    #: Red, green, blue, alpha of every entry of the colour table.
    colors: Tuple[Color, ...]
    #: Rows and columns of every level of the pyramid.
    overviews: Tuple[Tuple[int, int], ...]

    def to_dict(self) -> Dict[str, Any]:
        return asdict(self)


def _storable(values: Array, dtype: str) -> Array:
    """Values in one of the seven types: their own, or that of the file where none is lost."""
    if values.dtype.name in _DTYPES and values.dtype.isnative:
        return values
    if values.dtype.kind not in "biuf":
        raise TypeError(f"pixels are numbers, not {values.dtype}")
    stored = values.astype(dtype)
    if not np.array_equal(stored, values):
        raise ValueError(f"the values do not fit into {dtype}")
    return stored


def _numpy_dtype(dtype: npt.DTypeLike) -> "np.dtype[Any]":
    found = np.dtype(dtype)
    if found.name not in _DTYPES or not found.isnative:
        raise TypeError(f"dtype is one of {', '.join(_DTYPES)}, not {found}")
    return found


class Raster:
    """A raster file. :func:`zelto.open` and :func:`zelto.create` make one; a ``with`` statement
    closes it.

    It serves one thread at a time: a call while another thread's is under way raises
    RuntimeError. Different rasters may be used by different threads at once; the engine works
    without the interpreter's lock.

    >>> with zelto.open("L7_ETMs.tif") as scene:
    ...     scene.shape, scene.count, scene.dtype
    ((352, 349), 6, 'uint8')
    """

    def __init__(self, native: _engine.Raster, path: str, new: bool = False) -> None:
        self._native = native
        self._path = path
        self._new = new
        self._facts: Dict[str, Any] = native.describe()

    # Life.

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
        under its name now, complete."""
        self._native.close()

    def discard(self) -> None:
        """Closes; nothing remains of a raster that is being made."""
        self._native.discard()

    @property
    def closed(self) -> bool:
        return self._native.closed

    @property
    def writable(self) -> bool:
        return self._native.writable

    def __repr__(self) -> str:
        state = " closed" if self.closed else ""
        return f"<zelto.Raster {self._path!r} {self.width}x{self.height}x{self.count}{state}>"

    # Facts.

    @property
    def path(self) -> str:
        return self._path

    @property
    def driver(self) -> str:
        """GDAL's short name of the format."""
        return str(self._facts["driver"])

    @property
    def width(self) -> int:
        return int(self._facts["width"])

    @property
    def height(self) -> int:
        return int(self._facts["height"])

    @property
    def shape(self) -> Tuple[int, int]:
        """Rows and columns."""
        return (self.height, self.width)

    @property
    def count(self) -> int:
        """Number of bands."""
        return len(self._facts["bands"])

    @property
    def bands(self) -> Tuple[Band, ...]:
        """Facts of the bands, which are numbered from 1."""
        return tuple(
            Band(
                number=number,
                dtype=facts["dtype"] or "float64",
                type_name=facts["type_name"],
                block=facts["block"],
                nodata=facts["nodata"],
                colors=tuple(facts["colors"]),
                overviews=tuple(facts["overviews"]),
            )
            for number, facts in enumerate(self._facts["bands"], 1)
        )

    @property
    def dtype(self) -> str:
        """The type that read() gives by default: one that holds all bands' values."""
        return np.result_type(*(band.dtype for band in self.bands)).name

    @property
    def nodata(self) -> Optional[float]:
        """The first band's no-data value."""
        return self.bands[0].nodata

    @property
    def geotransform(self) -> Tuple[float, float, float, float, float, float]:
        """GDAL's order: x, pixel width, row rotation, y, column rotation, pixel height."""
        x, width, row, y, column, height = self._facts["geotransform"]
        return (x, width, row, y, column, height)

    @property
    def transform(self) -> Affine:
        """The geotransform in the order of the package affine, which rasterio uses."""
        x, width, row, y, column, height = self.geotransform
        return Affine(width, row, x, column, height, y)

    @property
    def bounds(self) -> Bounds:
        """Left, bottom, right, top of all pixels."""
        left, top, right, bottom = self._facts["extent"]
        return Bounds(left, bottom, right, top)

    @property
    def crs(self) -> str:
        """The reference system as WKT; empty without one."""
        return str(self._facts["wkt"])

    @property
    def control_points(self) -> int:
        """Number of ground control points of the file."""
        return int(self._facts["control_points"])

    @property
    def classes(self) -> Tuple[ClassColor, ...]:
        """Values, colours and names from the file of classes beside the image."""
        return tuple(ClassColor(*entry) for entry in self._facts["classes"])

    @property
    def subdatasets(self) -> Tuple[Subdataset, ...]:
        """The rasters that the file contains, each to be opened by its name."""
        return tuple(
            Subdataset(name, text) for name, text in _engine.subdatasets(os.fsencode(self._path))
        )

    def sampled(self, band: int = 1) -> Sampled:
        """Statistics of a sample, which displays go by; :func:`zelto.statistics` reads every
        pixel.

        >>> zelto.open("L7_ETMs.tif").sampled(1).maximum
        255.0
        """
        (number,) = band_numbers(band, self.count)
        return Sampled(*self._native.sampled(number))

    def to_dict(self) -> Dict[str, Any]:
        return {
            "path": self.path,
            "driver": self.driver,
            "shape": self.shape,
            "geotransform": self.geotransform,
            "bounds": tuple(self.bounds),
            "crs": self.crs,
            "bands": [band.to_dict() for band in self.bands],
        }

    # Places.

    def xy(self, row: Any, column: Any, offset: str = "center") -> Tuple[Any, Any]:
        """Ground coordinates of pixels, single ones or arrays.

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
        rows = np.floor(r0 + rx * xs + ry * ys)
        columns = np.floor(c0 + cx * xs + cy * ys)
        limit = float(2**62)
        if rows.size and max(np.abs(rows).max(), np.abs(columns).max()) > limit:
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

    # Pixels.

    def _window(self, window: Optional[Window]) -> Tuple[int, int, int, int]:
        if window is None:
            return (0, 0, self.width, self.height)
        if isinstance(window, (str, bytes)) or len(window) != 4:
            raise ValueError("window is column, row, columns, rows")
        column, row, columns, rows = (whole("window", side) for side in window)
        if columns < 1 or rows < 1 or column + columns > self.width or row + rows > self.height:
            raise ValueError(
                f"the window does not lie in the {self.width} columns and {self.height} rows"
            )
        return (column, row, columns, rows)

    def read(
        self,
        bands: Union[None, int, Sequence[int]] = None,
        window: Optional[Window] = None,
        shape: Optional[Tuple[int, int]] = None,
        dtype: Optional[npt.DTypeLike] = None,
        *,
        resampling: str = "nearest",
        out: Optional[Array] = None,
        progress: Progress = None,
    ) -> Array:
        """Pixels as an array, read in one go into its memory.

        :param bands: one number gives rows × columns; several, or None for all, give bands ×
            rows × columns
        :param window: column, row, columns, rows; None: the whole raster
        :param shape: rows and columns of the result, where the pixels are to be resampled
        :param dtype: values that the type cannot hold become its nearest one
        :param resampling: nearest, bilinear, cubic, cubicspline, lanczos, average, mode
        :param out: an array of that shape to fill

        >>> zelto.open("L7_ETMs.tif").read(1, window=(0, 0, 4, 2))
        array([[69, 69, 63, 60],
               [74, 68, 59, 58]], dtype=uint8)
        """
        chosen = band_numbers(bands, self.count)
        single = bands is not None and not isinstance(bands, (Sequence, np.ndarray))
        place = self._window(window)
        if shape is None:
            rows, columns = place[3], place[2]
        else:
            if isinstance(shape, (str, bytes)) or len(shape) != 2:
                raise ValueError("shape is rows, columns")
            rows, columns = (whole("shape", side, 1) for side in shape)
        wanted = (rows, columns) if single else (len(chosen), rows, columns)
        if not isinstance(resampling, str):
            raise TypeError("resampling is a str")
        if out is None:
            default = np.result_type(*(self.bands[band - 1].dtype for band in chosen))
            out = np.empty(wanted, dtype=_numpy_dtype(default if dtype is None else dtype))
        else:
            if not isinstance(out, np.ndarray):
                raise TypeError("out is an array")
            if dtype is not None and np.dtype(dtype) != out.dtype:
                raise ValueError("dtype is that of out")
            _numpy_dtype(out.dtype)
            if out.shape != wanted:
                raise ValueError(f"out has the shape {out.shape}, not {wanted}")
        target = out.reshape(1, rows, columns) if single else out
        if not np.shares_memory(target, out):
            raise ValueError("out is not packed row by row")
        _engine.read(self._native, target, chosen, place, resampling, as_callable(progress))
        return out

    def write(
        self,
        values: Any,
        bands: Union[None, int, Sequence[int]] = None,
        window: Optional[Window] = None,
    ) -> None:
        """Writes pixels of a raster that is being made or is open for writing ("r+").

        :param values: rows × columns for one band, else bands × rows × columns; of one of the
            seven types, whose values the file's type takes as it can, or of another type, whose
            values must then be those of the file's
        """
        chosen = band_numbers(bands, self.count)
        place = self._window(window)
        samples = _storable(np.asarray(values), self.bands[chosen[0] - 1].dtype)
        if samples.ndim == 2:
            samples = samples[np.newaxis]
        if samples.shape != (len(chosen), place[3], place[2]):
            raise ValueError(
                f"values have the shape {np.shape(values)}, not {(len(chosen), place[3], place[2])}"
            )
        _engine.write(self._native, np.ascontiguousarray(samples), chosen, place)

    def set_nodata(self, value: Optional[float]) -> None:
        """Stores the no-data value of all bands; None removes it."""
        number = None if value is None else float(value)
        _engine.set_nodata(self._native, number)
        self._facts = self._native.describe()

    def set_colors(self, colors: Sequence[Any], band: int = 1) -> None:
        """Stores a colour table: the colour of value 0, 1, 2 …"""
        (number,) = band_numbers(band, self.count)
        _engine.set_colors(self._native, number, [as_color(color) for color in colors])
        self._facts = self._native.describe()

    def set_georeference(
        self, geotransform: Optional[Sequence[float]] = None, crs: Optional[str] = None
    ) -> None:
        """Stores where the raster lies.

        :param geotransform: six numbers in GDAL's order; None: as it is
        :param crs: any form GDAL reads; "" removes it, None leaves it
        """
        place = None if geotransform is None else numbers("geotransform", geotransform, 6)
        wkt = None
        if crs is not None:
            wkt = text_argument("crs", _engine.crs_as_wkt(text_argument("crs", crs)) if crs else "")
        _engine.set_place(self._native, place, wkt)
        self._facts = self._native.describe()

    def build_pyramids(
        self,
        resampling: str = "nearest",
        bands: Union[None, int, Sequence[int]] = None,
        progress: Progress = None,
    ) -> None:
        """Builds the levels that make drawing large rasters quick, in place of those there are.
        Their files appear when they are complete.

        :param resampling: GDAL's name: nearest, average, gauss, cubic, mode …
        """
        if self.writable:
            raise ValueError("close the raster first, or open it for reading")
        chosen = [] if bands is None else band_numbers(bands, self.count)
        name = text_argument("resampling", resampling).upper()
        _engine.build_pyramid(os.fsencode(self._path), name, chosen, as_callable(progress))
        self._native.reopen()
        self._facts = self._native.describe()

    # Drawing.

    def _view(
        self,
        box: Optional[Box],
        center: Optional[Sequence[float]],
        scale: Optional[float],
        size: Optional[Size],
        crs: bytes,
    ) -> Any:
        extent, shape, pixel = self.bounds, self.shape, self.geotransform[1]
        if crs:
            left, top, right, bottom, rows, columns, _ = _engine.shown_extent(self._native, crs)
            extent, shape = Bounds(left, bottom, right, top), (rows, columns)
            pixel = (right - left) / columns
        return choose_view(extent, shape, pixel, box, center, scale, size)

    def render(
        self,
        *,
        bands: Union[None, int, Sequence[int]] = None,
        box: Optional[Box] = None,
        center: Optional[Sequence[float]] = None,
        scale: Optional[float] = None,
        size: Optional[Size] = None,
        stretch: str = "stddev",
        clip: Optional[Sequence[float]] = None,
        ranges: Any = None,
        gamma: Any = None,
        low: Optional[float] = None,
        high: Optional[float] = None,
        threshold: Optional[float] = None,
        wallis_model: Optional[int] = None,
        table: Any = None,
        histogram: Any = None,
        stretch_to: str = "image",
        exact: bool = False,
        hue: float = 0.0,
        intensity: float = 0.0,
        saturation: float = 0.0,
        contrast: float = 0.0,
        transparency: float = 0.0,
        ramp: Union[None, str, Sequence[Any]] = None,
        classes: Optional[Sequence[Any]] = None,
        area: Optional[AreaLike] = None,
        outside: str = "transparent",
        crs: str = "",
        progress: Progress = None,
    ) -> Bytes:
        """A picture: rows × columns × (red, green, blue, alpha) of uint8.

        What it shows:

        :param bands: one, or three for red, green and blue; None: as the file suggests
        :param box: left, bottom, right, top on the ground; None: the whole raster
        :param center: x and y of the picture's middle, in place of a box
        :param scale: with center: ground units for a pixel; None: the raster's own
        :param size: (width, height), one of which may be None, or the longer side
        :param area: pixels outside it are left out; see :class:`zelto.AreaOfInterest`
        :param outside: what is outside the area: "transparent" or "black"
        :param crs: reference system to show it in; box and center are then in that

        How values become brightness:

        :param stretch: none, linear, table, percent, stddev, equalize, autolevels,
            custom-equalize, zoom002, zoom, wallis or auto
        :param clip: of percent: percentages that are darkest and brightest, (2, 98)
        :param ranges: values shown darkest and brightest, one pair or one for each band
        :param gamma: exponent of a curve, one or one for each band
        :param low: lower bound of zoom002, zoom and custom-equalize, or of a histogram
        :param high: upper bound of these
        :param threshold: of autolevels: fraction that is cut off at each end, 0.01
        :param wallis_model: colour model of wallis: 0, 1 or 2
        :param table: 256 display values in place of a stretch's curve
        :param histogram: counts from low to high, by which custom-equalize goes
        :param stretch_to: what the stretch goes by: "image", "view" or "area"
        :param exact: every value is read for that, not a sample

        Colours, from -1 to 1 where nothing else is said:

        :param hue: shift of the hue
        :param intensity: brighter or darker
        :param saturation: more or less colour
        :param contrast: more or less contrast
        :param transparency: 0 to 1
        :param ramp: of one band: grey, heat, terrain, spectrum, viridis, or a list of colours
        :param classes: of one band: (low, high, colour, name) of each class

        >>> scene = zelto.open("L7_ETMs.tif")
        >>> scene.render(bands=(4, 3, 2), size=(200, 100)).shape
        (100, 200, 4)
        """
        settings = as_settings(
            {
                "bands": bands,
                "stretch": stretch,
                "clip": clip,
                "ranges": ranges,
                "gamma": gamma,
                "low": low,
                "high": high,
                "threshold": threshold,
                "wallis_model": wallis_model,
                "table": table,
                "histogram": histogram,
                "stretch_to": stretch_to,
                "exact": exact,
                "hue": hue,
                "intensity": intensity,
                "saturation": saturation,
                "contrast": contrast,
                "transparency": transparency,
                "ramp": ramp,
                "classes": classes,
            }
        )
        if outside not in ("transparent", "black"):
            raise ValueError("outside is 'transparent' or 'black'")
        system = text_argument("crs", crs)
        view = self._view(box, center, scale, size, system)
        shapes = None if area is None else as_area(area)
        picture = np.empty((view.height, view.width, 4), dtype=np.uint8)
        _engine.render(
            self._native,
            picture,
            engine_box(view.box),
            settings,
            system,
            None if shapes is None else shapes._native,
            outside == "black",
            as_callable(progress),
        )
        return picture

    def render_planes(
        self,
        *,
        box: Optional[Box] = None,
        center: Optional[Sequence[float]] = None,
        scale: Optional[float] = None,
        size: Optional[Size] = None,
        area: Optional[AreaLike] = None,
        crs: str = "",
        progress: Progress = None,
        **look: Any,
    ) -> Tuple[Bytes, Optional[npt.NDArray[np.bool_]]]:
        """A picture as planes, 3 × rows × columns of uint8, and which pixels lie in the area
        (None without one). A pixel takes the value under its middle; in :meth:`render`, that
        under its first corner.

        :param look: as :meth:`render`

        >>> planes, inside = zelto.open("L7_ETMs.tif").render_planes(size=(200, 100))
        >>> planes.shape, inside
        ((3, 100, 200), None)
        """
        _check_look(look)
        system = text_argument("crs", crs)
        view = self._view(box, center, scale, size, system)
        shapes = None if area is None else as_area(area)
        planes = np.empty((3, view.height, view.width), dtype=np.uint8)
        inside = None
        if shapes is not None:
            inside = np.zeros((view.height, view.width), dtype=np.uint8)
        _engine.render_planes(
            self._native,
            planes,
            inside,
            engine_box(view.box),
            as_settings(look),
            system,
            None if shapes is None else shapes._native,
            as_callable(progress),
        )
        return planes, None if inside is None else inside.view(np.bool_)

    def save_picture(self, path: PathLike, **look: Any) -> None:
        """Draws and writes a picture: .png, .jpg or, with its place, .tif.

        :param look: as :meth:`render`
        """
        place = {name: look.get(name) for name in ("box", "center", "scale", "size")}
        system = text_argument("crs", look.get("crs", ""))
        view = self._view(**place, crs=system)
        wkt = self.crs
        if system:
            wkt = _engine.shown_extent(self._native, system)[6]
        save_picture(path, self.render(**look), box=view.box, crs=wkt)

    def _repr_png_(self) -> bytes:
        """The scene in a notebook."""
        return png_bytes(self.render(size=min(512, max(self.shape)), stretch="auto"))


_LOOK = frozenset(
    "bands stretch clip ranges gamma low high threshold wallis_model table histogram stretch_to "
    "exact hue intensity saturation contrast transparency ramp classes".split()
)


def _check_look(look: Dict[str, Any]) -> None:
    for name in look:
        if name not in _LOOK:
            raise TypeError(f"there is no argument {name!r}")


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
    dtype: npt.DTypeLike = "uint8",
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
        _numpy_dtype(dtype).name,
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


def _strips(raster: Raster, window: Tuple[int, int, int, int], row_bytes: int) -> List[Window]:
    """Parts of a window of a few megabytes that end where the file's blocks do."""
    column, row, columns, rows = window
    block = raster.bands[0].block[0]
    most = max(2**24 // max(row_bytes, 1), 1)
    strips: List[Window] = []
    at = row
    while at < row + rows:
        end = at + most
        if block <= most:
            end -= end % block
        end = min(max(end, at + 1), row + rows)
        strips.append((column, at, columns, end - at))
        at = end
    return strips


def copy(
    source: Union[Raster, PathLike],
    path: PathLike,
    *,
    window: Optional[Window] = None,
    bands: Union[None, int, Sequence[int]] = None,
    dtype: Optional[npt.DTypeLike] = None,
    format: str = "",
    options: Sequence[str] = (),
    progress: Progress = None,
) -> None:
    """Copies pixels into a new raster, with their place, no-data value and colour table. An
    interrupted copy leaves nothing behind.

    >>> zelto.copy("L7_ETMs.tif", "corner.tif", window=(10, 20, 30, 40), bands=(4, 3))
    >>> corner = zelto.open("corner.tif")
    >>> corner.shape, corner.count
    ((40, 30), 2)
    """
    raster = as_raster(source)
    tell = as_callable(progress)
    place = raster._window(window)
    chosen = band_numbers(bands, raster.count)
    kind = _numpy_dtype(
        np.result_type(*(raster.bands[band - 1].dtype for band in chosen))
        if dtype is None
        else dtype
    )
    x, width, row_turn, y, column_turn, height = raster.geotransform
    corner = None
    if raster._facts["placed"]:
        corner = (
            x + place[0] * width + place[1] * row_turn,
            width,
            row_turn,
            y + place[0] * column_turn + place[1] * height,
            column_turn,
            height,
        )
    first = raster.bands[chosen[0] - 1]
    made = create(
        path,
        width=place[2],
        height=place[3],
        bands=len(chosen),
        dtype=kind,
        geotransform=corner,
        crs=raster.crs,
        nodata=first.nodata if _holds(kind, first.nodata) else None,
        format=format,
        options=options,
    )
    with made:
        if first.colors and len(chosen) == 1:
            made.set_colors(first.colors)
        for strip in _strips(raster, place, place[2] * len(chosen) * kind.itemsize):
            values = raster.read(chosen, window=strip, dtype=kind)
            made.write(values, window=(0, strip[1] - place[1], strip[2], strip[3]))
            if tell is not None:
                tell((strip[1] + strip[3] - place[1]) / place[3])


def _holds(kind: "np.dtype[Any]", value: Optional[float]) -> bool:
    """Whether a no-data value survives in a type."""
    if value is None:
        return False
    if kind.kind == "f":
        return math.isnan(value) or math.isinf(value) or float(kind.type(value)) == value
    limits = np.iinfo(kind)
    return math.isfinite(value) and value == int(value) and limits.min <= value <= limits.max


def save_picture(
    path: PathLike, picture: Bytes, *, box: Optional[Box] = None, crs: str = ""
) -> None:
    """Writes rows × columns × (red, green, blue, alpha) as .png, .jpg or .tif. The file appears
    when it is complete.

    :param box: left, bottom, right, top of the picture, for .tif
    """
    pixels = np.asarray(picture)
    if pixels.ndim != 3 or pixels.shape[2] != 4 or pixels.dtype != np.uint8:
        raise ValueError("a picture is rows x columns x 4 of uint8")
    place = None if box is None else engine_box(box_argument("box", box))
    _engine.save_picture(
        encoded(path), np.ascontiguousarray(pixels), place, text_argument("crs", crs)
    )


def png_bytes(picture: Bytes) -> bytes:
    """A picture as the bytes of a PNG file."""
    import tempfile

    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "picture.png")
        save_picture(path, picture)
        return Path(path).read_bytes()

