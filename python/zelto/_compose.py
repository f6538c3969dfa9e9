"""Bands of three rasters as one picture."""

from __future__ import annotations

from typing import Any, Optional, Sequence, Tuple, Union

import numpy as np

from . import _engine
from ._arguments import Box, PathLike, encoded, engine_box, whole
from ._arrays import Bytes
from ._facts import Grid
from ._looks import LOOK, as_settings, check_names
from ._progress import Progress, as_callable
from ._raster import Raster
from ._views import Size, choose_view

Colour = Tuple[Union[Raster, PathLike], int]


class Composition(Grid):
    """Three bands of up to three rasters, which may differ in grid and resolution but lie in one
    reference system. It covers the ground that they have in common; see :func:`compose`."""

    def __init__(self, red: Colour, green: Colour, blue: Colour) -> None:
        self._native = _engine.Composition([_color(color) for color in (red, green, blue)])
        self._facts = self._native.describe()

    def __repr__(self) -> str:
        return f"<zelto.Composition {self.width}x{self.height}>"

    def render(
        self,
        *,
        box: Optional[Box] = None,
        center: Optional[Sequence[float]] = None,
        scale: Optional[float] = None,
        size: Optional[Size] = None,
        progress: Progress = None,
        **look: Any,
    ) -> Bytes:
        """Rows × columns × (red, green, blue, alpha) of uint8.

        :param look: the stretches of :meth:`zelto.Raster.render`, which every band has by itself;
            all but wallis

        >>> composed = zelto.compose(*(("L7_ETMs.tif", band) for band in (5, 4, 3)))
        >>> composed.render(size=(80, 60), stretch="percent").shape
        (60, 80, 4)
        """
        check_names(look, LOOK)
        for name in ("bands", "ramp", "classes"):
            if look.get(name) is not None:
                raise TypeError(f"a composition has no {name}")
        pixel = (self.bounds.right - self.bounds.left) / self.shape[1]
        view = choose_view(self.bounds, self.shape, pixel, box, center, scale, size)
        picture = np.empty((view.height, view.width, 4), dtype=np.uint8)
        self._native.render(
            picture, engine_box(view.box), as_settings(look), as_callable(progress)
        )
        return picture


def _color(color: Colour) -> Tuple[bytes, int]:
    source, band = color
    path = source.path if isinstance(source, Raster) else source
    return (encoded(path) if not isinstance(path, bytes) else path, whole("a band", band, 1))


def compose(red: Colour, green: Colour, blue: Colour) -> Composition:
    """Bands of three rasters as one picture, without writing a file.

    :param red: a raster or its path, and the number of the band; so are the others

    >>> scene = "L7_ETMs.tif"
    >>> zelto.compose((scene, 4), (scene, 3), (scene, 2)).render(size=(200, 100)).shape
    (100, 200, 4)
    """
    return Composition(red, green, blue)
