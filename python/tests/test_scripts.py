"""The example scripts and the package's own command line."""

import csv
import json
import os
import shutil
import subprocess
import sys

import numpy as np
import pytest
from conftest import SCENE, SOURCE
from test_many import cluster  # noqa: F401

import zelto

EXAMPLES = SOURCE / "examples" / "python"


def run(*arguments):
    done = subprocess.run([sys.executable, *map(str, arguments)], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return done.stdout


def feature(name, left, bottom, right, top):
    ring = [(left, bottom), (right, bottom), (right, top), (left, top), (left, bottom)]
    return {"type": "Feature", "properties": {"class": name},
            "geometry": {"type": "Polygon", "coordinates": [ring]}}


def squares(scene, count, name="zone"):
    left, bottom, right, top = scene.bounds
    step = (right - left) / count
    return [feature(f"{name}{i % 3}", left + i * step, bottom, left + (i + 0.9) * step, top)
            for i in range(count)]


def test_quick_looks(tmp_path):
    shutil.copy(SCENE, tmp_path / "a.tif")
    shutil.copy(SCENE, tmp_path / "b.tif")
    output = run(EXAMPLES / "quick_looks.py", tmp_path, tmp_path / "out", "--size", "64")
    assert sorted(os.listdir(tmp_path / "out")) == ["a.png", "b.png"] and "a.png" in output


def test_zonal_statistics_of_a_hundred_counties(tmp_path):
    with zelto.open(SCENE) as scene:
        area = zelto.AreaOfInterest(squares(scene, 100), crs=scene.crs)
    area.save(tmp_path / "counties.shp")
    run(EXAMPLES / "zonal_statistics.py", SCENE, tmp_path / "counties.shp", tmp_path / "out.csv")
    with open(tmp_path / "out.csv", encoding="utf-8") as file:
        rows = list(csv.DictReader(file))
    assert len(rows) == 600 and int(rows[0]["count"]) > 0
    assert float(rows[0]["low_percentile"]) <= float(rows[0]["mean"])


def test_training_samples(tmp_path):
    with zelto.open(SCENE) as scene:
        document = {"type": "FeatureCollection", "features": squares(scene, 6, "class")}
    (tmp_path / "t.geojson").write_text(json.dumps(document))
    run(EXAMPLES / "training_samples.py", SCENE, tmp_path / "t.geojson", tmp_path / "s.sam",
        tmp_path / "m.acf")
    classes = zelto.SampleFile.read(tmp_path / "s.sam").classes
    assert [entry.name for entry in classes] == ["class0", "class1", "class2"]
    assert all(entry.values[1] > 0 and len(entry.shapes) == 2 for entry in classes)
    assert len(zelto.ClassFile.read(tmp_path / "m.acf").classes) == 3


def test_a_cluster(cluster):  # noqa: F811
    client, _ = cluster
    output = run(EXAMPLES / "cluster.py", client.scheduler.address, SCENE)
    assert "79.147719" in output and "done" in output


def test_the_command_line_of_many(tmp_path, make):
    path = make("a.tif", np.arange(12, dtype=np.uint8).reshape(3, 4))
    found = json.loads(run("-m", "zelto.many", "stats", "--jobs", "2", "--json", path, path))
    assert found["bands"][0]["count"] == 24 and found["bands"][0]["mean"] == 5.5
    output = run("-m", "zelto.many", "render", "--jobs", "2", "--size", "8", "--out",
                 tmp_path / "o", path)
    assert "a.png" in output and (tmp_path / "o" / "a.png").exists()
    assert "a.tif" in run("-m", "zelto.many", "pyramids", "--jobs", "1", path)
    failed = subprocess.run([sys.executable, "-m", "zelto.many", "stats", "missing.tif", path],
                            capture_output=True, text=True)
    assert failed.returncode == 1
    assert "zelto: missing.tif: No such file or directory" in failed.stderr
    assert "12" in failed.stdout
    assert "1 to" in subprocess.run(
        [sys.executable, "-m", "zelto.many", "stats", "--jobs", "0", path],
        capture_output=True, text=True).stderr
    # Nobody answers there; half a minute of waiting is Dask's own.
    wrong = subprocess.run([sys.executable, "-m", "zelto.many", "stats", "--cluster",
                            "tcp://127.0.0.1:1", path], capture_output=True, text=True,
                           env={**os.environ, "DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT": "2s"})
    assert wrong.returncode == 1 and wrong.stderr.startswith("zelto: ")


def test_the_program_hands_over_to_the_package(cluster, tmp_path, make):  # noqa: F811
    program = os.path.join(os.path.dirname(zelto.__path__[0]), "..", "bin", "zelto")
    if not os.path.exists(program):
        pytest.skip("the command line is not built")
    address = cluster[0].scheduler.address
    path = make("a.tif", np.arange(12, dtype=np.uint8).reshape(3, 4))
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}

    def zelto_command(*arguments):
        return subprocess.run([program, *arguments], capture_output=True, text=True,
                              env=environment)

    done = zelto_command("stats", "--cluster", address, "--json", path, path)
    assert done.returncode == 0, done.stderr
    assert json.loads(done.stdout)["bands"][0]["count"] == 24
    done = zelto_command("render", f"--cluster={address}", path, str(tmp_path / "out"))
    assert (tmp_path / "out" / "a.png").exists(), done.stderr
