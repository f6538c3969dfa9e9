"""Statistics of every polygon of a vector file (counties, fields), as CSV.

    python3 zonal_statistics.py SCENE.tif COUNTIES.shp OUT.csv
"""

import argparse
import csv

import zelto


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("scene")
    arguments.add_argument("zones")
    arguments.add_argument("out")
    options = arguments.parse_args()

    table = zelto.statistics(options.scene, options.zones, each=True, percentiles=(5, 95))
    rows = table.rows()
    with open(options.out, "w", newline="", encoding="utf-8") as file:
        writer = csv.DictWriter(file, fieldnames=list(rows[0]))
        writer.writeheader()
        writer.writerows(rows)
    print(f"{len(table)} zones, {len(rows)} lines")


if __name__ == "__main__":
    main()
