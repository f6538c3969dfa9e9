"""Training samples and the files of classifications."""

from __future__ import annotations

import os
from dataclasses import asdict, dataclass, field
from typing import Any, Dict, List, Optional, Sequence, Tuple, Union

import numpy as np

from . import _engine
from ._alike import Alike
from ._area import as_area
from ._arguments import AreaLike, PathLike, encoded, whole
from ._arrays import Doubles
from ._looks import Color, as_color
from ._progress import Progress, as_callable
from ._raster import Raster, as_raster
from ._shapes import Shape, shape_of


@dataclass(frozen=True, eq=False)
class SamplePixels(Alike):
    """Pixels under one shape."""

    #: Number of the shape in its area, from 1.
    shape: int
    #: Pixels × bands; None for a shape beside the raster.
    values: Optional[Doubles]

    def to_dict(self) -> Dict[str, Any]:
        return {
            "shape": self.shape,
            "values": None if self.values is None else self.values.tolist(),
        }


def sample_pixels(
    raster: Union[Raster, PathLike], area: AreaLike, *, progress: Progress = None
) -> List[SamplePixels]:
    """The typical pixels under every shape of an area, for a classification.

    A pixel is a sample when its first corner lies in the shape and its value in every band is at
    most two deviations from the band's mean there; no-data of the last band is left out. The
    column and the row that hold the shape's right and lower end are not read.

    >>> corner = zelto.Rectangle(288776, 9120500, 289000, 9120761)
    >>> samples = zelto.sample_pixels("L7_ETMs.tif", corner)
    >>> samples[0].values.shape
    (56, 6)
    """
    scene = as_raster(raster)
    shapes = as_area(area)
    tables = _engine.sample_pixels(scene._native, shapes._native, as_callable(progress))
    return [SamplePixels(number, table) for number, table in enumerate(tables, 1)]


@dataclass(eq=False)
class SampleClass(Alike):
    """A class of a sample file. What the numbers mean is the host's affair; :meth:`of` fills
    them as the command line does."""

    name: str
    #: Three whole numbers: label, number of pixels and 0.
    values: Tuple[int, int, int] = (0, 0, 0)
    #: Per band three numbers: mean, minimum and maximum.
    first: Sequence[float] = ()
    second: Sequence[float] = ()
    third: Sequence[float] = ()
    more_values: Tuple[int, int] = (0, 0)
    #: Bands × bands, the covariance.
    matrix: Any = field(default_factory=lambda: np.zeros((0, 0)))
    shapes: Sequence[Shape] = ()

    @classmethod
    def of(
        cls, name: str, label: int, pixels: Any, shapes: Sequence[Shape] = ()
    ) -> "SampleClass":
        """From pixels × bands.

        >>> zelto.SampleClass.of("water", 1, [[5, 9], [7, 9]]).values
        (1, 2, 0)
        """
        table = np.asarray(pixels, dtype=np.float64)
        if table.ndim != 2 or table.shape[0] == 0:
            raise ValueError("pixels are pixels x bands, at least one")
        return cls(
            name,
            (label, table.shape[0], 0),
            table.mean(axis=0).tolist(),
            table.min(axis=0).tolist(),
            table.max(axis=0).tolist(),
            (0, 0),
            np.cov(table.T, bias=True).reshape(table.shape[1], table.shape[1]),
            tuple(shapes),
        )

    def to_dict(self) -> Dict[str, Any]:
        return {
            "name": self.name,
            "values": list(self.values),
            "first": list(self.first),
            "second": list(self.second),
            "third": list(self.third),
            "more_values": list(self.more_values),
            "matrix": np.asarray(self.matrix).tolist(),
            "shapes": [shape.__geo_interface__ for shape in self.shapes],
        }

    def _engine_form(self) -> Dict[str, Any]:
        bands = len(self.first)
        matrix = np.asarray(self.matrix, dtype=np.float64)
        if len(self.second) != bands or len(self.third) != bands or matrix.size != bands * bands:
            raise ValueError("first, second, third and matrix are of as many bands")
        return {
            "name": _name(self.name),
            "values": [whole("values", value, -(2**31)) for value in self.values],
            "bands": bands,
            "first": [float(number) for number in self.first],
            "second": [float(number) for number in self.second],
            "third": [float(number) for number in self.third],
            "more_values": [whole("values", value, -(2**31)) for value in self.more_values],
            "matrix": matrix.reshape(-1).tolist(),
            "shapes": [shape._engine_form() for shape in self.shapes],
        }


def _name(name: str) -> bytes:
    if not isinstance(name, str):
        raise TypeError("a name is a str")
    if "\0" in name:
        raise ValueError("a name has a null character")
    return os.fsencode(name)


@dataclass
class SampleFile:
    """The training samples of a classification: classes with numbers and shapes.

    >>> shape = zelto.Rectangle(0, 0, 2, 2)
    >>> water = zelto.SampleClass.of("water", 1, [[5, 9], [7, 9]], [shape])
    >>> zelto.SampleFile([water]).write("classes.sam")
    >>> zelto.SampleFile.read("classes.sam").classes[0].first
    [6.0, 9.0]
    """

    classes: List[SampleClass] = field(default_factory=list)

    @classmethod
    def read(cls, path: PathLike) -> "SampleFile":
        """Reads a file of :meth:`write`.

        >>> zelto.SampleFile([zelto.SampleClass.of("water", 1, [[5, 9]])]).write("water.sam")
        >>> zelto.SampleFile.read("water.sam").classes[0].name
        'water'
        """
        return cls([_sample_class(found) for found in _engine.read_sample_file(encoded(path))])

    def write(self, path: PathLike) -> None:
        """The file appears when it is complete.

        >>> zelto.SampleFile([zelto.SampleClass.of("water", 1, [[5, 9]])]).write("water.sam")
        >>> zelto.SampleFile.read("water.sam").classes[0].name
        'water'
        """
        _engine.write_sample_file(encoded(path), [entry._engine_form() for entry in self.classes])

    def to_dict(self) -> Dict[str, Any]:
        return {"classes": [entry.to_dict() for entry in self.classes]}


def _sample_class(found: Dict[str, Any]) -> SampleClass:
    bands = max(found["bands"], 0)
    matrix = np.zeros((bands, bands))
    matrix.reshape(-1)[: len(found["matrix"])] = found["matrix"]
    return SampleClass(
        found["name"],
        (found["values"][0], found["values"][1], found["values"][2]),
        found["first"],
        found["second"],
        found["third"],
        (found["more_values"][0], found["more_values"][1]),
        matrix,
        tuple(shape_of(kind, numbers) for kind, numbers in found["shapes"]),
    )


@dataclass(frozen=True)
class ClassEntry:
    """A class of a classified raster."""

    value: int
    name: str
    color: Color

    def to_dict(self) -> Dict[str, Any]:
        return asdict(self)


@dataclass
class ClassFile:
    """Values, colours and names of a classified raster's classes: the file of the raster's name
    with the extension .acf, which the engine reads when the raster is drawn.

    >>> zelto.ClassFile([zelto.ClassEntry(1, "water", (0, 0, 255, 255))]).write("map.acf")
    >>> zelto.ClassFile.read("map.acf").classes
    [ClassEntry(value=1, name='water', color=(0, 0, 255, 255))]
    """

    classes: List[ClassEntry] = field(default_factory=list)
    #: Two numbers and two whole numbers each; what they mean is the host's affair.
    entries: List[Tuple[float, float, int, int]] = field(default_factory=list)
    #: Rows of texts; what they mean is the host's affair.
    matrix: List[List[str]] = field(default_factory=list)

    @classmethod
    def read(cls, path: PathLike) -> "ClassFile":
        """Reads a file of :meth:`write`.

        >>> zelto.ClassFile([zelto.ClassEntry(2, "wood", (0, 99, 0, 255))]).write("wood.acf")
        >>> zelto.ClassFile.read("wood.acf").classes[0].name
        'wood'
        """
        found = _engine.read_class_file(encoded(path))
        return cls(
            [ClassEntry(value, name, color) for value, color, name in found["classes"]],
            [(a, b, c, d) for a, b, c, d in found["entries"]],
            [list(row) for row in found["matrix"]],
        )

    def write(self, path: PathLike) -> None:
        """The file appears when it is complete.

        >>> zelto.ClassFile([zelto.ClassEntry(2, "wood", (0, 99, 0, 255))]).write("wood.acf")
        >>> zelto.ClassFile.read("wood.acf").classes[0].name
        'wood'
        """
        _engine.write_class_file(
            encoded(path),
            [
                (whole("a value", entry.value, -(2**31)), as_color(entry.color), _name(entry.name))
                for entry in self.classes
            ],
            [
                (float(a), float(b), whole("an entry", c, -(2**31)), whole("an entry", d, -(2**31)))
                for a, b, c, d in self.entries
            ],
            [[_name(text) for text in row] for row in self.matrix],
        )

    def to_dict(self) -> Dict[str, Any]:
        return {
            "classes": [entry.to_dict() for entry in self.classes],
            "entries": [list(entry) for entry in self.entries],
            "matrix": self.matrix,
        }
