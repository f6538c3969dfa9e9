"""The package against the engine's own calls and against rasterio with NumPy, in one run.

    python3 compare.py CALL_TIMES [FOLDER [PATTERN]]

CALL_TIMES is the library zelto_python_call_times.so; scenes are made in FOLDER, or in a temporary one.
PATTERN chooses comparisons by their names. Both sides are timed in turn, pair by pair; a ratio is
the median of the pairs' ratios, so that a machine whose speed drifts still gives one that holds.

Bytecode counts: a package in a folder that cannot be written, or PYTHONDONTWRITEBYTECODE, has the
interpreter compile the package's sources at each start.
"""

import ctypes
import math
import os
import statistics
import subprocess
import sys
import tempfile
import time

# Threads that wait for work by spinning would take the processors from the other side.
os.environ["OMP_WAIT_POLICY"] = "passive"

import numpy as np
import rasterio
import rasterio.features
from rasterio.transform import from_origin

import zelto

SIDE = 1024
PATTERN = sys.argv[3] if len(sys.argv) > 3 else ""

ZELTO_PICTURE = """
import sys, zelto
zelto.open(sys.argv[1]).render(bands=(1, 2, 3), size=(1024, 1024), stretch="stddev")
"""
RASTERIO_PICTURE = """
import sys, numpy as np, rasterio
with rasterio.open(sys.argv[1]) as scene:
    values = scene.read((1, 2, 3), out_shape=(3, 1024, 1024)).astype(np.float64)
mean = values.mean(axis=(1, 2), keepdims=True)
spread = 2 * values.std(axis=(1, 2), keepdims=True)
low, high = mean - spread, mean + spread
shown = np.clip((values - low) / (high - low) * 253 + 1, 1, 254).astype(np.uint8)
picture = np.dstack([*shown, np.full(shown.shape[1:], 255, np.uint8)])
"""


class CallTimes:
    """The engine's calls as C++ makes them, in this process."""

    def __init__(self, library, scene):
        self._calls = ctypes.CDLL(library)
        if not self._calls.OpenScene(os.fsencode(scene)):
            raise OSError(f"{scene}: cannot be opened")

    def of(self, name):
        call = self._calls[name]
        call.restype = ctypes.c_double
        return call


def timed(work):
    def measure():
        begin = time.perf_counter()
        work()
        return 1000 * (time.perf_counter() - begin)
    return measure


def compare(name, found, baseline, limit, pairs):
    """Prints medians of two measurements that are made in turn, and of their ratios."""
    if PATTERN not in name:
        return
    times = []
    for pair in range(pairs + 1):
        if pair % 2 == 0:
            times.append((found(), baseline()))
        else:
            times.append((baseline(), found())[::-1])
    # The first pair warms up.
    ours, theirs, ratio = (statistics.median(row) for row in zip(
        *((a, b, a / b) for a, b in times[1:])))
    met = "met" if ratio <= limit else "missed"
    print(f"{name:42} {ours:10.2f} ms  {theirs:10.2f} ms  ratio {ratio:5.2f}"
          f"  limit {limit:4.2f}  {met}", flush=True)


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


def many_scenes(scenes, jobs):
    """A process of its own, with one thread for each worker: two workers are compared with one,
    not with one that has both processors."""
    script = f"import sys; from zelto import many; many.statistics(sys.argv[1:], jobs={jobs})"
    alone = {**os.environ, "GDAL_NUM_THREADS": "1", "OMP_NUM_THREADS": "1"}
    return timed(lambda: subprocess.run([sys.executable, "-c", script, *scenes], check=True,
                                        env=alone))


def main() -> None:
    folder = sys.argv[2] if len(sys.argv) > 2 else tempfile.mkdtemp()
    os.makedirs(folder, exist_ok=True)
    path = make_scene(os.path.join(folder, "scene2048.tif"), 2048)
    native = CallTimes(sys.argv[1], path)
    scene = zelto.open(path)
    compare("render 1024 x 1024, to the C++ call", timed(lambda: scene.render(size=(SIDE, SIDE))),
            native.of("TimeRender"), 1.05, 60)
    window = (0, 0, SIDE, SIDE)
    compare("read 1024 x 1024 x 3, to the C++ call",
            timed(lambda: scene.read((1, 2, 3), window=window)), native.of("TimeRead"), 1.05, 300)
    area = zelto.AreaOfInterest(star())
    x, y = spread(7919, 10**7), spread(104729, 10**7)
    compare("contains of 10 million points, to C++", timed(lambda: area.contains(x, y)),
            native.of("TimeContains"), 1.2, 3)

    def fresh(script):
        return timed(lambda: subprocess.run([sys.executable, "-c", script, path], check=True))

    compare("fresh interpreter: open, render; rasterio", fresh(ZELTO_PICTURE),
            fresh(RASTERIO_PICTURE), 0.5, 15)

    polygons = counties(2048)
    zones = zelto.AreaOfInterest([zelto.Polygon(ring) for ring in polygons])
    ours = [region.bands[0] for region in zelto.statistics(path, zones, each=True, bands=1)]
    theirs = rasterio_zones(path, polygons)
    assert all(a.count == b[0] and abs(a.mean - b[1]) < 1e-9 for a, b in zip(ours, theirs))
    compare("statistics of 100 polygons; rasterio",
            timed(lambda: zelto.statistics(path, zones, each=True, bands=1)),
            timed(lambda: rasterio_zones(path, polygons)), 0.5, 5)

    name = "eight scenes of 6000 x 6000: 2 workers, 1"
    if PATTERN in name:
        scenes = [make_scene(os.path.join(folder, f"four{n}.tif"), 6000, 4, compress="deflate")
                  for n in range(8)]
        compare(name, many_scenes(scenes, 2), many_scenes(scenes, 1), 1 / 1.7, 2)


if __name__ == "__main__":
    main()
