"""How pictures are made, kept in a file."""

from __future__ import annotations

import json
import os
from collections.abc import Mapping
from typing import Any, Dict, Optional, Tuple, Type, Union

from . import _engine
from ._arguments import Bounds, PathLike, encoded
from ._views import View


class Recipe:
    """Everything that makes a picture of a raster: bands, the bounds and tables that their
    stretch was found to have, colours, view and area. :meth:`zelto.Raster.recipe` makes one, and
    ``render(recipe=...)`` draws by it: of the same raster the same bytes, wherever that is, for
    nothing is sampled again.

    The files are those of the command line's ``render --save-recipe`` and ``--recipe``.

    :param content: JSON as :meth:`to_json` gives it, or that as a dictionary

    >>> scene = zelto.open("L7_ETMs.tif")
    >>> scene.recipe(bands=(4, 3, 2), stretch="percent", size=200).save("look.json")
    >>> look = zelto.Recipe.load("look.json")
    >>> look.bands, look.size
    ((4, 3, 2), (198, 200))
    >>> scene.render(recipe=look).shape
    (200, 198, 4)
    """

    _native: _engine.Recipe

    def __init__(self, content: Union[str, Mapping[str, Any]]) -> None:
        if isinstance(content, Mapping):
            content = json.dumps(dict(content), allow_nan=False)
        if not isinstance(content, str):
            raise TypeError("a recipe is made of JSON, as a str or a dictionary")
        self._native = _engine.Recipe(os.fsencode(content))

    @classmethod
    def _of(cls: Type["Recipe"], native: _engine.Recipe) -> "Recipe":
        recipe = cls.__new__(cls)
        recipe._native = native
        return recipe

    @classmethod
    def load(cls, path: PathLike) -> "Recipe":
        """Reads a file. What is no recipe is a :class:`zelto.Error` that names the member.

        >>> zelto.open("L7_ETMs.tif").recipe(bands=4, size=60).save("band 4.json")
        >>> zelto.Recipe.load("band 4.json").bands
        (4,)
        """
        return cls._of(_engine.Recipe.read(encoded(path)))

    def save(self, path: PathLike) -> None:
        """Writes a file, which replaces one of that name when it is complete. The path of the
        area is kept as it is seen from there.

        >>> zelto.open("L7_ETMs.tif").recipe(bands=4, size=60).save("band 4.json")
        >>> zelto.Recipe.load("band 4.json").bands
        (4,)
        """
        self._native.write(encoded(path))

    def to_json(self) -> str:
        """The text of its file, with the area's path as it stands.

        >>> look = zelto.open("L7_ETMs.tif").recipe(size=60)
        >>> zelto.Recipe(look.to_json()) == look
        True
        """
        return self._native.json()

    def to_dict(self) -> Dict[str, Any]:
        """The same as a dictionary; docs/schema/display-recipe.schema.json says what it holds."""
        content: Dict[str, Any] = json.loads(self.to_json())
        return content

    def without_place(self) -> "Recipe":
        """The look alone, without view and area: for other rasters, which show equal values in
        equal colours by it.

        >>> look = zelto.open("L7_ETMs.tif").recipe(size=60).without_place()
        >>> zelto.open("L7_ETMs.tif").render(recipe=look, size=(30, 20)).shape
        (20, 30, 4)
        """
        return Recipe._of(self._native.without_place())

    @property
    def bands(self) -> Tuple[int, ...]:
        """One, or three for red, green and blue."""
        return tuple(int(band["band"]) for band in self.to_dict()["bands"])

    @property
    def box(self) -> Optional[Bounds]:
        """What part of the ground is drawn; None: all of the raster."""
        view = self._view
        return None if view is None else view.box

    @property
    def size(self) -> Optional[Tuple[int, int]]:
        """Width and height of the picture; None: not given."""
        view = self._view
        return None if view is None else (view.width, view.height)

    @property
    def crs(self) -> str:
        """Reference system that the raster is shown in; empty: its own."""
        view = self._native.view()
        return "" if view is None else view[6]

    @property
    def area(self) -> Optional[str]:
        """Path of the area outside which nothing is shown; None: there is none."""
        mask = self._native.mask()
        return None if mask is None else mask[0]

    @property
    def outside(self) -> str:
        """What is outside the area: "transparent" or "black"."""
        mask = self._native.mask()
        return "black" if mask is not None and mask[1] else "transparent"

    @property
    def _view(self) -> Optional[View]:
        view = self._native.view()
        if view is None:
            return None
        left, top, right, bottom, width, height, _ = view
        return View(Bounds(left, bottom, right, top), width, height)

    def __repr__(self) -> str:
        return f"<zelto.Recipe of bands {', '.join(map(str, self.bands))}>"

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Recipe):
            return NotImplemented
        return self.to_json() == other.to_json()

    def __hash__(self) -> int:
        return hash(self.to_json())

    def __reduce__(self) -> Tuple[Any, ...]:
        return (Recipe, (self.to_json(),))


#: A recipe, or what one is made of: a path or a dictionary.
RecipeLike = Union[Recipe, PathLike, Mapping[str, Any]]


def as_recipe(source: RecipeLike) -> Recipe:
    if isinstance(source, Recipe):
        return source
    if isinstance(source, Mapping):
        return Recipe(source)
    return Recipe.load(source)
