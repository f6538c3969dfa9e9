"""Pictures as files."""

from __future__ import annotations

import os
from typing import Optional

import numpy as np

from . import _engine
from ._arguments import Box, PathLike, box_argument, encoded, engine_box, text_argument
from ._arrays import Bytes


def save_picture(
    path: PathLike, picture: Bytes, *, box: Optional[Box] = None, crs: str = ""
) -> None:
    """Writes rows × columns × (red, green, blue, alpha) as .png, .jpg or .tif. The file appears
    when it is complete.

    :param box: left, bottom, right, top of the picture, for .tif

    >>> picture = zelto.open("L7_ETMs.tif").render(bands=4, size=50)
    >>> zelto.save_picture("picture.png", picture)
    >>> zelto.open("picture.png").shape
    (50, 50)
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
    # Takes as long to load as all of this package, for this alone.
    import tempfile

    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "picture.png")
        save_picture(path, picture)
        with open(path, "rb") as file:
            return file.read()
