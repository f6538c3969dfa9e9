"""From training areas to a sample file and a table of class colours beside a map.

    python3 training_samples.py SCENE.tif TRAINING.geojson SAMPLES.sam MAP.acf

Every feature of the GeoJSON file has its class in the property "class".
"""

import argparse
import json

import numpy as np
import zelto

COLORS = [(31, 119, 180, 255), (44, 160, 44, 255), (214, 39, 40, 255), (188, 189, 34, 255)]


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("scene")
    arguments.add_argument("training")
    arguments.add_argument("samples")
    arguments.add_argument("classes")
    arguments.add_argument("--crs", default="", help="reference system of the training areas")
    options = arguments.parse_args()

    with open(options.training, encoding="utf-8") as file:
        features = json.load(file)["features"]
    areas = {}
    for feature in features:
        areas.setdefault(str(feature["properties"]["class"]), []).append(feature)

    file_of_samples, file_of_classes = zelto.SampleFile(), zelto.ClassFile()
    with zelto.open(options.scene) as scene:
        for label, (name, members) in enumerate(sorted(areas.items()), 1):
            area = zelto.AreaOfInterest(members, crs=options.crs)
            tables = [found.values for found in zelto.sample_pixels(scene, area)]
            pixels = np.concatenate([table for table in tables if table is not None])
            file_of_samples.classes.append(
                zelto.SampleClass.of(name, label, pixels, area.shapes)
            )
            color = COLORS[(label - 1) % len(COLORS)]
            file_of_classes.classes.append(zelto.ClassEntry(label, name, color))
            print(f"{name}: {len(pixels)} pixels, mean {pixels.mean(axis=0).round(1)}")
    file_of_samples.write(options.samples)
    file_of_classes.write(options.classes)


if __name__ == "__main__":
    main()
