"""What is drawn and how, from the arguments of render() and its relatives."""

from __future__ import annotations

from collections.abc import Mapping
from typing import Any, Dict, NamedTuple, Optional

from . import _engine
from ._arguments import AreaLike, Bounds, text_argument
from ._facts import RasterFacts
from ._looks import LOOK, as_settings, check_beside_recipe
from ._recipes import as_recipe
from ._views import View, choose_view


class Plan(NamedTuple):
    """A drawing as the engine's module takes it."""

    view: View
    settings: Dict[str, Any]
    crs: bytes
    area: Optional[_engine.Area]
    black_outside: bool


def plan_drawing(raster: RasterFacts, drawing: Mapping[str, Any]) -> Plan:
    """:param drawing: the arguments of render() by their names; what is missing has its default"""
    if drawing.get("recipe") is not None:
        return _plan_by_recipe(raster, drawing)
    settings = as_settings({name: drawing.get(name) for name in LOOK})
    outside = drawing.get("outside", "transparent")
    if outside not in ("transparent", "black"):
        raise ValueError("outside is 'transparent' or 'black'")
    crs = text_argument("crs", drawing.get("crs", ""))
    view = _view(raster, drawing, crs)
    return Plan(view, settings, crs, _shapes(drawing.get("area")), outside == "black")


def _plan_by_recipe(raster: RasterFacts, drawing: Mapping[str, Any]) -> Plan:
    check_beside_recipe(drawing)
    recipe = as_recipe(drawing["recipe"])
    crs = text_argument("crs", recipe.crs)
    view = recipe._view
    if view is None or drawing.get("box") is not None or drawing.get("center") is not None:
        view = _view(raster, drawing, crs)
    elif drawing.get("size") is not None or drawing.get("scale") is not None:
        view = _view(raster, {**drawing, "box": view.box}, crs)
    settings = {"recipe": recipe._native}
    return Plan(view, settings, crs, _shapes(recipe.area), recipe.outside == "black")


def _view(raster: RasterFacts, drawing: Mapping[str, Any], crs: bytes) -> View:
    extent, shape, pixel = raster.bounds, raster.shape, raster.geotransform[1]
    if crs:
        left, top, right, bottom, rows, columns = _engine.shown_extent(raster._native, crs)
        extent, shape = Bounds(left, bottom, right, top), (rows, columns)
        pixel = (right - left) / columns
    box, center, scale, size = map(drawing.get, ("box", "center", "scale", "size"))
    return choose_view(extent, shape, pixel, box, center, scale, size)


def _shapes(area: Optional[AreaLike]) -> Optional[_engine.Area]:
    """The engine's form of an area. What makes areas is only loaded for one."""
    if area is None:
        return None
    from ._area import as_area

    return as_area(area)._native
