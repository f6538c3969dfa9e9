"""How a picture looks: what render() and its relatives take by name."""

from __future__ import annotations

from collections.abc import Mapping, Sequence
from typing import AbstractSet, Any, Dict, NamedTuple, Optional, Tuple, Union

import numpy as np

from ._arguments import finite, numbers, whole

Color = Tuple[int, int, int, int]


class ClassColor(NamedTuple):
    """Values from low up to, but not including, high are shown in a colour."""

    low: float
    high: float
    color: Color
    name: str = ""


ColorLike = Union[str, Sequence[int]]


def as_color(color: ColorLike) -> Color:
    """Red, green, blue and, if given, alpha; or "#rrggbb"."""
    if isinstance(color, str):
        digits = color[1:]
        if color[:1] != "#" or len(digits) not in (6, 8):
            raise ValueError(f"{color!r} is no colour such as '#1f77b4'")
        try:
            parts = list(bytes.fromhex(digits))
        except ValueError:
            raise ValueError(f"{color!r} is no colour such as '#1f77b4'") from None
    else:
        parts = [whole("a colour", part, 0, 255) for part in color]
    if len(parts) == 3:
        parts.append(255)
    if len(parts) != 4:
        raise ValueError("a colour is red, green, blue and, if given, alpha")
    return (parts[0], parts[1], parts[2], parts[3])


def _as_class(entry: Any) -> Tuple[float, float, Color, bytes]:
    low, high, color, *name = entry
    text = str(name[0]) if name else ""
    if "\0" in text:
        raise ValueError("a class name has a null character")
    return (finite("low", low), finite("high", high), as_color(color), text.encode("utf-8"))


def _ranges(ranges: Any) -> Any:
    if ranges is None:
        return None
    rows = [ranges] if np.ndim(ranges) == 1 else list(ranges)
    return [numbers("a range", row, 2) for row in rows]


def _table(table: Any) -> Any:
    if table is None:
        return None
    values = np.asarray(table)
    if values.shape != (256,) or not np.issubdtype(values.dtype, np.integer):
        raise ValueError("table is 256 whole numbers of 0 to 255")
    if values.min() < 0 or values.max() > 255:
        raise ValueError("table is 256 whole numbers of 0 to 255")
    return [int(value) for value in values]


def _histogram(histogram: Any) -> Any:
    if histogram is None:
        return None
    counts = np.asarray(histogram)
    if counts.ndim != 1 or not np.issubdtype(counts.dtype, np.integer):
        raise ValueError("histogram is a row of counts")
    return [whole("a count", count) for count in counts]


def as_settings(look: Mapping[str, Any]) -> Dict[str, Any]:
    """Keyword arguments as the engine's module takes them."""
    settings = {name: value for name, value in look.items() if value is not None}
    for name in ("low", "high", "threshold"):
        if name in settings:
            settings[name] = finite(name, settings[name])
    for name in ("hue", "intensity", "saturation", "contrast", "transparency"):
        settings[name] = finite(name, settings.get(name, 0.0))
    for name in ("stretch", "stretch_to"):
        if name in settings and not isinstance(settings[name], str):
            raise TypeError(f"{name} is a str")
    if "clip" in settings:
        settings["clip"] = numbers("clip", settings["clip"], 2)
    if "gamma" in settings:
        settings["gamma"] = [
            finite("gamma", value) for value in np.atleast_1d(settings["gamma"]).tolist()
        ]
    if "wallis_model" in settings:
        settings["wallis_model"] = whole("wallis_model", settings["wallis_model"], 0, 2)
    settings["ranges"] = _ranges(settings.get("ranges"))
    settings["table"] = _table(settings.get("table"))
    settings["histogram"] = _histogram(settings.get("histogram"))
    ramp: Optional[Any] = settings.get("ramp")
    if ramp is not None and not isinstance(ramp, str):
        settings["ramp"] = [as_color(color) for color in ramp]
    if "bands" in settings:
        bands = settings["bands"]
        settings["bands"] = [
            whole("a band", band)
            for band in (bands if isinstance(bands, (Sequence, np.ndarray)) else [bands])
        ]
    if "classes" in settings:
        settings["classes"] = [_as_class(entry) for entry in settings["classes"]]
    settings["exact"] = bool(settings.get("exact", False))
    return settings


#: The names that as_settings() takes.
LOOK = frozenset(
    "bands stretch clip ranges gamma low high threshold wallis_model table histogram stretch_to "
    "exact hue intensity saturation contrast transparency ramp classes".split()
)

#: What says which part of the ground a picture shows, and in how many pixels.
PLACE = frozenset("box center scale size".split())

#: All that says what is drawn and how.
DRAWING = LOOK | PLACE | frozenset("recipe area outside crs".split())

_DEFAULTS = {
    "stretch": "stddev",
    "stretch_to": "image",
    "exact": False,
    "outside": "transparent",
    "crs": "",
    **dict.fromkeys(("hue", "intensity", "saturation", "contrast", "transparency"), 0.0),
}


def check_names(given: Mapping[str, Any], known: AbstractSet[str]) -> None:
    """TypeError for a name that is none of the known ones."""
    for name in given:
        if name not in known:
            raise TypeError(f"there is no argument {name!r}")


def check_beside_recipe(drawing: Mapping[str, Any]) -> None:
    """TypeError for an argument that says what the recipe beside it says."""
    for name in DRAWING - PLACE - {"recipe"}:
        value = drawing.get(name)
        if value is not None and (name not in _DEFAULTS or value != _DEFAULTS[name]):
            raise TypeError(
                f"{name}: beside a recipe only box, center, scale and size may be given"
            )
