"""Pictures of rasters."""

from __future__ import annotations

from typing import Any, Optional, Sequence, Tuple, Union

import numpy as np

from . import _engine
from ._arguments import AreaLike, Bounds, Box, PathLike, engine_box, text_argument
from ._arrays import Bytes, Mask
from ._facts import RasterFacts
from ._looks import as_settings, check_look
from ._pictures import png_bytes, save_picture
from ._progress import Progress, as_callable
from ._views import Size, choose_view


def _shapes(area: Optional[AreaLike]) -> Optional[_engine.Area]:
    """The engine's form of an area. What makes areas is only loaded for one."""
    if area is None:
        return None
    from ._area import as_area

    return as_area(area)._native


class RasterDrawing(RasterFacts):
    """Drawing under a choice of stretches and colours."""

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
        shapes = _shapes(area)
        picture = np.empty((view.height, view.width, 4), dtype=np.uint8)
        _engine.render(
            self._native,
            picture,
            engine_box(view.box),
            settings,
            system,
            shapes,
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
    ) -> Tuple[Bytes, Optional[Mask]]:
        """A picture as planes, 3 × rows × columns of uint8, and which pixels lie in the area
        (None without one). A pixel takes the value under its middle; in :meth:`render`, that
        under its first corner.

        :param look: as :meth:`render`

        >>> planes, inside = zelto.open("L7_ETMs.tif").render_planes(size=(200, 100))
        >>> planes.shape, inside
        ((3, 100, 200), None)
        """
        check_look(look)
        system = text_argument("crs", crs)
        view = self._view(box, center, scale, size, system)
        shapes = _shapes(area)
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
            shapes,
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
