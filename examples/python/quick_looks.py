"""A quick look of every raster in a folder, with as many processes as there are processors.

    python3 quick_looks.py FOLDER OUT
"""

import argparse
from pathlib import Path

from zelto import many


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("folder", type=Path)
    arguments.add_argument("out", type=Path)
    arguments.add_argument("--size", type=int, default=512, help="of the longer side")
    options = arguments.parse_args()

    scenes = sorted(p for p in options.folder.iterdir() if p.suffix.lower() in (".tif", ".img"))
    for result in many.render_all(
        scenes, options.out, size=options.size, stretch="auto", progress=True
    ):
        print(result.path, "->", result.value if result.reason is None else result.reason)


if __name__ == "__main__":
    main()
