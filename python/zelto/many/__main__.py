"""``python3 -m zelto.many``: many files by one command; ``zelto --cluster`` hands over to it."""

from __future__ import annotations

import argparse
import json
import sys
from typing import Any, List, Sequence

from .._errors import Error
from .._statistics import StatisticsTable, RegionStatistics
from . import SceneResult, pyramids, render_all, statistics


def _numbers(text: str) -> List[float]:
    return [float(part) for part in text.split(",")]


def _bands(text: str) -> List[int]:
    return [int(part) for part in text.split(",")]


def _box(text: str) -> List[float]:
    """The command line's order is left, top, right, bottom."""
    left, top, right, bottom = _numbers(text)
    return [left, bottom, right, top]


def _size(text: str) -> Any:
    sides = [int(side) if side else None for side in text.split("x")]
    return sides[0] if len(sides) == 1 else tuple(sides)


def _parser() -> argparse.ArgumentParser:
    program = argparse.ArgumentParser(prog="zelto", description="many files at once")
    commands = program.add_subparsers(dest="command", required=True)
    stats = commands.add_parser("stats", help="count, range, mean and deviation of all together")
    stats.add_argument("--aoi")
    stats.add_argument("--box", type=_box)
    render = commands.add_parser("render", help="a picture of each")
    render.add_argument("--out", help="folder for the pictures; the last name when not given")
    render.add_argument("--format", choices=("png", "jpg", "tif"), default="png")
    render.add_argument("--size", type=_size)
    render.add_argument("--stretch", default="stddev")
    render.add_argument("--ramp")
    render.add_argument("--srs", default="")
    render.add_argument("--recipe", help="a file of render --save-recipe, which says all of it")
    build = commands.add_parser("pyramids", help="build the pyramid of each anew")
    build.add_argument("--resampling", default="nearest")
    for command in (stats, render, build):
        command.add_argument("files", nargs="+", metavar="FILE")
        command.add_argument("--bands", type=_bands)
        command.add_argument("--jobs", type=int)
        command.add_argument("--cluster", metavar="ADDRESS", help="of a Dask scheduler")
        command.add_argument("--json", action="store_true")
    return program


def _tell_failures(results: Sequence[SceneResult]) -> bool:
    failures = [result for result in results if result.reason is not None]
    for result in failures:
        print(f"zelto: {result.path}: {result.reason}", file=sys.stderr)
    return not failures


def _names(options: argparse.Namespace) -> List[str]:
    """The files, without what the commands for single files have beside them."""
    files: List[str] = list(options.files)
    if options.command == "pyramids" and files[0] == "build":
        del files[0]
    if options.command == "render" and options.out is None:
        options.out = files.pop()
    if not files:
        raise ValueError("no files are given")
    return files


def _run(options: argparse.Namespace) -> bool:
    options.files = _names(options)
    where = {"jobs": options.jobs, "client": options.cluster, "progress": sys.stderr.isatty()}
    if options.command == "stats":
        found = statistics(
            options.files, options.aoi, box=options.box, bands=options.bands, **where
        )
        table = StatisticsTable([RegionStatistics(found.bands)])
        print(json.dumps(found.to_dict()) if options.json else table)
        return _tell_failures(found.failures)
    if options.command == "render":
        look = {
            "bands": options.bands,
            "size": options.size,
            "ramp": options.ramp,
            "recipe": options.recipe,
        }
        results = render_all(
            options.files,
            options.out,
            format=options.format,
            stretch=options.stretch,
            crs=options.srs,
            **{name: value for name, value in look.items() if value is not None},
            **where,
        )
    else:
        results = pyramids(
            options.files, resampling=options.resampling, bands=options.bands, **where
        )
    if options.json:
        print(json.dumps([result.to_dict() for result in results]))
    else:
        for result in results:
            if result.reason is None:
                print(f"{result.path}: {result.value}")
    return _tell_failures(results)


def main() -> int:
    options = _parser().parse_args()
    try:
        return 0 if _run(options) else 1
    except KeyboardInterrupt:
        print("zelto: interrupted", file=sys.stderr)
        return 130
    except (ValueError, TypeError, IndexError) as error:
        print(f"zelto: {error}", file=sys.stderr)
        return 2
    except (Error, OSError, RuntimeError) as error:
        print(f"zelto: {error}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
