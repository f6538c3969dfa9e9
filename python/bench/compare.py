"""The package against the engine's own calls and against rasterio with NumPy, in one run.

    python3 compare.py CALL_TIMES [FOLDER]

CALL_TIMES is the program zelto_python_call_times; scenes are made in FOLDER, or in a temporary one.
"""

import math
import os
import subprocess
import sys
import tempfile
import time

import numpy as np
import rasterio
import rasterio.features
from rasterio.transform import from_origin

import zelto
from zelto import many

SIDE = 1024

ZELTO_PICTURE = """
import sys, zelto
zelto.open(sys.argv[1]).render(bands=(1, 2, 3), size=(1024, 1024), stretch="stddev")
"""
RASTERIO_PICTURE = """
import sys, numpy as np, rasterio
with rasterio.open(sys.argv[1]) as scene:
    values = scene.read((1, 2, 3), out_shape=(3, 1024, 1024)).astype(np.float64)
low = values.mean(axis=(1, 2), keepdims=True) - 2 * values.std(axis=(1, 2), keepdims=True)
high = values.mean(axis=(1, 2), keepdims=True) + 2 * values.std(axis=(1, 2), keepdims=True)
shown = np.clip((values - low) / (high - low) * 253 + 1, 1, 254).astype(np.uint8)
picture = np.dstack([*shown, np.full(shown.shape[1:], 255, np.uint8)])
"""


def least(repeats, work):
    times = []
    for _ in range(repeats):
        begin = time.perf_counter()
        work()
        times.append(time.perf_counter() - begin)
    return 1000 * min(times)


def make_scene(path, side, bands=3, **options):
    if os.path.exists(path):
        return path
    random = np.random.default_rng(len(path))
    ramp = np.add.outer(np.arange(side), np.arange(side)) % 199
    with rasterio.open(path, "w", driver="GTiff", width=side, height=side, count=bands,
                       dtype="uint8", crs="EPSG:32650", transform=from_origin(0, 10 * side, 10, 10),
                       tiled=True, **options) as made:
        for band in range(1, bands + 1):
            made.write((ramp + random.integers(0, 50, (side, side))).astype(np.uint8), band)
    return path


def star():
    angles = np.arange(100) * 0.06283185307179587
    radii = np.where(np.arange(100) % 2 == 0, 1.0, 0.6)
    return zelto.Polygon(np.stack([radii * np.cos(angles), radii * np.sin(angles)], 1).tolist())


def spread(prime, count):
    return -1.0 + 2.0 * (np.arange(count, dtype=np.uint64) * prime % count) / count


def counties(side, count=100):
    """Polygons of 60 vertices all over a scene."""
    random = np.random.default_rng(5)
    polygons = []
    for x, y in random.uniform(0.1, 0.9, (count, 2)) * 10 * side:
        angles = np.sort(random.uniform(0, 2 * math.pi, 60))
        radii = random.uniform(0.02, 0.06, 60) * 10 * side
        polygons.append([(x + r * math.cos(a), y + r * math.sin(a)) for a, r in zip(angles, radii)])
    return polygons


def rasterio_zones(path, polygons):
    """Count and mean of band 1 under every polygon."""
    found = []
    with rasterio.open(path) as scene:
        for ring in polygons:
            geometry = {"type": "Polygon", "coordinates": [ring + ring[:1]]}
            window = rasterio.features.geometry_window(scene, [geometry])
            values = scene.read(1, window=window)
            mask = rasterio.features.geometry_mask(
                [geometry], values.shape, scene.window_transform(window), invert=True)
            kept = values[mask].astype(np.float64)
            found.append((kept.size, kept.mean(), kept.std(), kept.min(), kept.max()))
    return found


def report(name, found, baseline, limit, unit="ms"):
    ratio = found / baseline
    met = "met" if ratio <= limit else "missed"
    print(f"{name:42} {found:10.2f} {unit}  {baseline:10.2f} {unit}  ratio {ratio:5.2f}"
          f"  limit {limit:4.2f}  {met}")


def main() -> None:
    call_times = sys.argv[1]
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp()
    os.makedirs(folder, exist_ok=True)
    path = make_scene(os.path.join(folder, "scene2048.tif"), 2048)
    native = {}
    for line in subprocess.run([call_times, path], capture_output=True, text=True,
                               check=True).stdout.splitlines():
        name, value = line.split()
        native[name] = float(value)

    scene = zelto.open(path)
    scene.render(size=(SIDE, SIDE))
    report("render 1024 x 1024, to the C++ call",
           least(30, lambda: scene.render(size=(SIDE, SIDE))), native["render"], 1.05)
    window = (0, 0, SIDE, SIDE)
    report("read 1024 x 1024 x 3, to the C++ call",
           least(30, lambda: scene.read((1, 2, 3), window=window)), native["read"], 1.05)
    area = zelto.AreaOfInterest(star())
    x, y = spread(7919, 10**7), spread(104729, 10**7)
    report("contains of 10 million points, to C++", least(3, lambda: area.contains(x, y)),
           native["contains"], 1.2)

    def fresh(script):
        return lambda: subprocess.run([sys.executable, "-c", script, path], check=True)

    report("fresh interpreter: open, render; rasterio", least(7, fresh(ZELTO_PICTURE)),
           least(7, fresh(RASTERIO_PICTURE)), 0.5)

    polygons = counties(2048)
    zones = zelto.AreaOfInterest([zelto.Polygon(ring) for ring in polygons])
    ours = [region.bands[0] for region in zelto.statistics(path, zones, each=True, bands=1)]
    theirs = rasterio_zones(path, polygons)
    assert all(a.count == b[0] and abs(a.mean - b[1]) < 1e-9 for a, b in zip(ours, theirs))
    report("statistics of 100 polygons; rasterio",
           least(5, lambda: zelto.statistics(path, zones, each=True, bands=1)),
           least(5, lambda: rasterio_zones(path, polygons)), 0.5)

    # One thread a worker: two workers are compared with one, not with one that has both processors.
    os.environ["GDAL_NUM_THREADS"] = "1"
    scenes = [make_scene(os.path.join(folder, f"four{n}.tif"), 6000, 4, compress="deflate")
              for n in range(8)]
    report("eight scenes of 6000 x 6000: 2 workers, 1",
           least(1, lambda: many.statistics(scenes, jobs=2)),
           least(1, lambda: many.statistics(scenes, jobs=1)), 1 / 1.7)


if __name__ == "__main__":
    main()
