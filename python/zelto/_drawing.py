"""Pictures of rasters."""

from __future__ import annotations

import os
from typing import Any, Optional, Sequence, Tuple, Union

import numpy as np

from . import _engine
from ._arguments import AreaLike, Box, PathLike, encoded, engine_box
from ._arrays import Bytes, Mask
from ._facts import RasterFacts
from ._looks import DRAWING, check_names
from ._pictures import png_bytes, save_picture
from ._plans import Plan, plan_drawing
from ._progress import Progress, as_callable
from ._recipes import Recipe, RecipeLike
from ._views import Size


class RasterDrawing(RasterFacts):
    """Drawing under a choice of stretches and colours."""

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
        recipe: Optional[RecipeLike] = None,
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

        Or all of it at once:

        :param recipe: what :meth:`recipe` or the command line's --save-recipe made, or the path
            of its file; beside it only the place may be given

        Where the file is see-through, by a mask or an alpha band, the picture is, too.

        >>> scene = zelto.open("L7_ETMs.tif")
        >>> scene.render(bands=(4, 3, 2), size=(200, 100)).shape
        (100, 200, 4)
        """
        plan = plan_drawing(
            self,
            {
                "bands": bands,
                "box": box,
                "center": center,
                "scale": scale,
                "size": size,
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
                "area": area,
                "outside": outside,
                "crs": crs,
                "recipe": recipe,
            },
        )
        return self._draw(plan, progress)

    def _draw(self, plan: Plan, progress: Progress) -> Bytes:
        picture = np.empty((plan.view.height, plan.view.width, 4), dtype=np.uint8)
        _engine.render(
            self._native,
            picture,
            engine_box(plan.view.box),
            plan.settings,
            plan.crs,
            plan.area,
            plan.black_outside,
            as_callable(progress),
        )
        return picture

    def render_planes(
        self, *, progress: Progress = None, **drawing: Any
    ) -> Tuple[Bytes, Optional[Mask]]:
        """A picture as planes, 3 × rows × columns of uint8, and which pixels lie in the area
        (None without one). A pixel takes the value under its middle; in :meth:`render`, that
        under its first corner.

        :param drawing: as :meth:`render`, but what is outside an area is told, not coloured

        >>> planes, inside = zelto.open("L7_ETMs.tif").render_planes(size=(200, 100))
        >>> planes.shape, inside
        ((3, 100, 200), None)
        """
        check_names(drawing, DRAWING - {"outside"})
        plan = plan_drawing(self, drawing)
        planes = np.empty((3, plan.view.height, plan.view.width), dtype=np.uint8)
        inside = None
        if plan.area is not None:
            inside = np.zeros((plan.view.height, plan.view.width), dtype=np.uint8)
        _engine.render_planes(
            self._native,
            planes,
            inside,
            engine_box(plan.view.box),
            plan.settings,
            plan.crs,
            plan.area,
            as_callable(progress),
        )
        return planes, None if inside is None else inside.view(np.bool_)

    def recipe(self, *, progress: Progress = None, **drawing: Any) -> Recipe:
        """How :meth:`render` makes a picture, with the bounds and tables that the stretch is
        found to have; see :class:`zelto.Recipe`.

        :param drawing: as :meth:`render`, but an area is given as the path of its file, which the
            recipe keeps

        >>> scene = zelto.open("L7_ETMs.tif")
        >>> look = scene.recipe(bands=4, ramp="viridis", stretch="percent")
        >>> (scene.render(recipe=look) == scene.render(bands=4, ramp="viridis",
        ...     stretch="percent")).all()
        True
        """
        check_names(drawing, DRAWING - {"recipe"})
        plan = plan_drawing(self, drawing)
        mask = None
        if plan.area is not None:
            area = drawing["area"]
            if not isinstance(area, (str, os.PathLike)):
                raise TypeError("a recipe keeps the path of its area: save it and give that")
            mask = (encoded(area), plan.black_outside)
        native = _engine.take_recipe(
            self._native,
            engine_box(plan.view.box),
            (plan.view.width, plan.view.height),
            plan.settings,
            plan.crs,
            plan.area,
            mask,
            as_callable(progress),
        )
        return Recipe._of(native)

    def save_picture(
        self, path: PathLike, *, progress: Progress = None, **drawing: Any
    ) -> None:
        """Draws and writes a picture: .png, .jpg or, with its place, .tif.

        :param drawing: as :meth:`render`

        >>> zelto.open("L7_ETMs.tif").save_picture("scene.tif", bands=4, ramp="viridis", size=60)
        >>> zelto.open("scene.tif").bounds == zelto.open("L7_ETMs.tif").bounds
        True
        """
        check_names(drawing, DRAWING)
        plan = plan_drawing(self, drawing)
        wkt = _engine.crs_as_wkt(plan.crs) if plan.crs else self.crs
        save_picture(path, self._draw(plan, progress), box=plan.view.box, crs=wkt)

    def _repr_png_(self) -> bytes:
        """The scene in a notebook."""
        return png_bytes(self.render(size=min(512, max(self.shape)), stretch="auto"))
