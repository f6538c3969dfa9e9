"""Many scenes: exact merging, processes, a Dask cluster, lost workers."""

import math
import os
import signal
import subprocess
import sys
import time
from fractions import Fraction

import numpy as np
import pytest

import zelto
from zelto import many
from zelto.many import _tasks, _workers
from zelto.many._exact import BandSums, _root_quotient


@pytest.fixture
def scenes(make):
    random = np.random.default_rng(21)
    paths = []
    for number in range(4):
        values = random.normal(10.0**number, 1, (2, 700, 60)) * 10.0 ** random.integers(
            -9, 9, (2, 700, 60))
        values[0, :7] = np.nan
        paths.append(make(f"s{number}.tif", values.astype(np.float64), tiled=True, blockxsize=16,
                          blockysize=16))
    return paths


def union(scenes, band):
    values = np.concatenate([zelto.open(path).read(band).ravel() for path in scenes])
    return values[np.isfinite(values)]


def bits(found):
    return [tuple(np.float64(v).tobytes() for v in row.values()) for row in found.rows()]


def test_results_are_exact(scenes):
    found = many.statistics(scenes, jobs=1)
    assert found.scenes == tuple(scenes) and found.failures == ()
    for band in found.bands:
        values = [Fraction(value) for value in union(scenes, band.band).tolist()]
        mean = sum(values) / len(values)
        variance = sum((value - mean) ** 2 for value in values) / len(values)
        assert band.count == len(values)
        assert band.mean == float(mean)
        assert band.standard_deviation == pytest.approx(math.sqrt(variance), rel=4e-16)
        assert (band.minimum, band.maximum) == (float(min(values)), float(max(values)))


@pytest.mark.parametrize("dtype", ["uint8", "int16", "uint32", "int32", "float32"])
def test_results_of_every_type_are_exact(make, dtype):
    random = np.random.default_rng(9)
    if dtype == "float32":
        values = (random.normal(0, 1, (300, 40)) * 10.0 ** random.integers(-30, 15, (300, 40)))
    else:
        limits = np.iinfo(dtype)
        values = random.integers(limits.min, limits.max, (300, 40), endpoint=True)
    path = make("t.tif", values.astype(dtype))
    (band,) = many.statistics(path, rows=37, jobs=1).bands
    exact = [Fraction(value) for value in values.astype(dtype).ravel().tolist()]
    mean = sum(exact) / len(exact)
    assert band.mean == float(mean)
    variance = sum((value - mean) ** 2 for value in exact) / len(exact)
    assert band.standard_deviation == pytest.approx(math.sqrt(variance), rel=4e-16)


@pytest.mark.parametrize("rows", [None, 1, 33, 256])
def test_the_cut_and_the_workers_do_not_show(scenes, rows):
    area = zelto.AreaOfInterest(zelto.Ellipse(500010, 3993500, 500550, 3999900))
    expected = many.statistics(scenes, area, jobs=1, rows=10**6)
    expected_matrix = many.covariance(scenes, area, jobs=1, rows=10**6).covariance
    expected_counts = many.histogram(scenes, 2, area, jobs=1, rows=10**6).histogram
    if rows == 1:
        scenes = scenes[:1]
        expected = many.statistics(scenes, area, jobs=1)
        expected_matrix = many.covariance(scenes, area, jobs=1).covariance
        expected_counts = many.histogram(scenes, 2, area, jobs=1).histogram
    for jobs in (1, 2):
        assert bits(many.statistics(scenes, area, jobs=jobs, rows=rows)) == bits(expected)
        matrix = many.covariance(scenes, area, jobs=jobs, rows=rows).covariance
        assert matrix.matrix.tobytes() == expected_matrix.matrix.tobytes()
        counts = many.histogram(scenes, 2, area, jobs=jobs, rows=rows).histogram
        assert np.array_equal(counts.counts, expected_counts.counts)
        assert counts.edges.tobytes() == expected_counts.edges.tobytes()


def test_one_scene_agrees_with_the_engines_own_numbers(scene_path):
    own = zelto.statistics(scene_path, covariance=True)[0]
    found = many.statistics(scene_path, jobs=1)
    for a, b in zip(own.bands, found.bands):
        assert (a.count, a.minimum, a.maximum, a.mean) == (b.count, b.minimum, b.maximum, b.mean)
        assert a.standard_deviation == pytest.approx(b.standard_deviation, rel=1e-14)
    matrix = many.covariance(scene_path, jobs=1).covariance.matrix
    assert np.allclose(matrix, own.covariance.matrix, rtol=1e-13)
    assert np.array_equal(many.histogram(scene_path, 3, jobs=1).histogram.counts,
                          zelto.histogram(scene_path, 3).counts)


def test_sums_of_nothing():
    assert math.isnan(BandSums().mean()) and math.isnan(BandSums().standard_deviation())
    assert _root_quotient(0, 5) == 0.0
    assert _root_quotient(2, 1) == math.sqrt(2)
    assert _root_quotient(4 * 10**600, 10**300) == 2.0


@pytest.mark.parametrize("jobs", [1, 2])
def test_a_scene_that_cannot_be_read_does_not_end_the_others(scenes, tmp_path, jobs):
    text = tmp_path / "text.tif"
    text.write_text("no picture")
    cut = tmp_path / "cut.tif"
    cut.write_bytes(open(scenes[0], "rb").read()[:200000])
    told = []
    found = many.statistics([scenes[0], text, cut, scenes[1], "missing.tif"], jobs=jobs, rows=100,
                            on_result=told.append)
    assert found.scenes == tuple(scenes[:2])
    assert [os.path.basename(f.path) for f in found.failures] == ["text.tif", "cut.tif",
                                                                  "missing.tif"]
    assert all(f.reason for f in found.failures)
    assert found.failures[2].reason == "No such file or directory"
    assert bits(found) == bits(many.statistics(scenes[:2], jobs=1))
    assert sorted(os.path.basename(r.path) for r in told) == [
        "cut.tif", "missing.tif", "s0.tif", "s1.tif", "text.tif"]


def test_scenes_with_other_bands_are_told(scenes, make):
    single = make("single.tif", np.ones((5, 5)))
    found = many.statistics([scenes[0], single], jobs=1)
    assert found.failures[0].path == single and "1 bands" in found.failures[0].reason


def test_pictures_and_pyramids(scene_path, make, tmp_path):
    other = make("other.tif", np.random.default_rng(1).integers(0, 255, (1100, 1100), np.uint8))
    bad = tmp_path / "bad.tif"
    bad.write_text("x")
    out = tmp_path / "pictures"
    told = []
    found = many.render_all([scene_path, other, bad], out, size=64, stretch="percent", jobs=2,
                            progress=told.append)
    assert [result.reason is None for result in found] == [True, True, False]
    assert sorted(os.listdir(out)) == ["L7_ETMs.png", "other.png"]
    assert told[-1] == 1.0
    built = many.pyramids([other, bad], jobs=2, resampling="average")
    assert built[0].value[0] == (550, 550) and built[1].reason
    with pytest.raises(ValueError, match="same name"):
        many.render_all([scene_path, scene_path], out)
    with pytest.raises(TypeError):
        many.render_all(scene_path, out, nonsense=1)


def test_a_lost_workers_task_runs_again(scene_path, tmp_path):
    part = _tasks.Part(scene_path)
    tasks = [_workers.Task(_tasks.fail_once, (part, str(tmp_path / f"mark{n}"))) for n in range(3)]
    pool = _workers.Pool(2)
    found = list(pool.run(tasks, 3))
    assert sorted(outcome.task for outcome in found) == [0, 1, 2]
    assert all(outcome.result == scene_path for outcome in found)
    hopeless = [_workers.Task(os._exit, (1,)), _workers.Task(_tasks.facts_of, (part,))]
    found = {outcome.task: outcome for outcome in pool.run(hopeless, 2)}
    pool.close()
    assert "lost" in found[0].reason and found[1].result.height == 352


def worker_processes():
    listing = subprocess.run(["ps", "-o", "pid=,args=", "--ppid", str(os.getpid())],
                             capture_output=True, text=True).stdout
    return [int(line.split()[0]) for line in listing.splitlines()
            if "zelto.many._worker" in line]


def test_workers_stay_for_all_steps_of_a_call_and_end_with_it(scenes):
    seen = []
    many.histogram(scenes, jobs=2, progress=lambda fraction: seen.extend(worker_processes()))
    assert 1 <= len(set(seen)) <= 2
    assert worker_processes() == []
    with pytest.raises(ZeroDivisionError):
        many.statistics(scenes, jobs=2, on_result=lambda result: 1 / 0)
    assert worker_processes() == []


def test_a_worker_killed_in_the_middle(scenes):
    expected = bits(many.statistics(scenes, jobs=1))
    killed = []

    def kill(fraction):
        if not killed:
            killed.extend(worker_processes()[:1])
            os.kill(killed[0], signal.SIGKILL)

    assert bits(many.statistics(scenes, jobs=2, rows=32, progress=kill)) == expected
    assert killed


def test_interrupted_work_leaves_no_workers_and_no_files(scenes, tmp_path):
    script = ("import sys\nfrom zelto import many\n"
              "try:\n    many.render_all(sys.argv[2:], sys.argv[1], size=6000, jobs=2,"
              " progress=lambda f: print('step', flush=True))\n"
              "except KeyboardInterrupt:\n    sys.exit(7)\n")
    out = tmp_path / "out"
    process = subprocess.Popen([sys.executable, "-c", script, str(out), *scenes],
                               stdout=subprocess.PIPE, start_new_session=True)
    process.stdout.readline()
    os.killpg(process.pid, signal.SIGINT)
    assert process.wait(60) in (0, 7)
    time.sleep(0.2)
    assert subprocess.run(["pgrep", "-g", str(process.pid)], capture_output=True).stdout == b""
    assert not [name for name in os.listdir(out) if name.startswith(".zelto")]


def start(*arguments, **environment):
    return subprocess.Popen([sys.executable, "-m", *arguments], env={**os.environ, **environment},
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)


@pytest.fixture
def cluster(tmp_path):
    """A scheduler and two workers on the loopback address, as processes of their own."""
    pytest.importorskip("distributed")
    from distributed import Client

    file = tmp_path / "scheduler.json"
    processes = [start("distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0",
                       "--no-dashboard", "--scheduler-file", str(file))]
    for _ in range(2):
        processes.append(start("distributed.cli.dask_worker", "--scheduler-file", str(file),
                               "--nthreads", "1", "--no-dashboard", "--no-nanny",
                               "--local-directory", str(tmp_path / "work"), OMP_NUM_THREADS="1"))
    deadline = time.monotonic() + 60
    while not file.exists() and time.monotonic() < deadline:
        time.sleep(0.1)
    client = Client(scheduler_file=str(file), timeout=60)
    client.wait_for_workers(2, timeout=60)
    yield client, processes[1:]
    client.close()
    for process in processes:
        process.kill()
        process.wait()


def test_a_cluster_gives_the_same_numbers(scenes, cluster, tmp_path):
    client, workers = cluster
    expected = many.statistics(scenes, jobs=1)
    found = many.statistics([*scenes, "missing.tif"], client=client, rows=64)
    assert bits(found) == bits(expected)
    assert found.failures[0].reason == "No such file or directory"
    address = client.scheduler.address
    assert bits(many.statistics(scenes, client=address)) == bits(expected)
    # One worker is lost in the middle; its parts run again on the other.
    lost = []

    def kill(fraction):
        if not lost and fraction > 0.1:
            lost.append(workers[0].kill())

    assert bits(many.statistics(scenes, client=client, rows=16, progress=kill)) == bits(expected)
    assert lost
    pictures = many.render_all(scenes, tmp_path / "out", size=20, client=client)
    assert all(os.path.exists(result.value) for result in pictures)


def test_results_travel(scene_path):
    import pickle

    table = zelto.statistics(scene_path, covariance=True)
    again = pickle.loads(pickle.dumps(table))
    assert again.rows() == table.rows()
    assert np.array_equal(again[0].covariance.matrix, table[0].covariance.matrix)
    found = many.histogram(scene_path, jobs=1)
    assert pickle.loads(pickle.dumps(found)) == found


def test_results_of_nothing(scene_path):
    found = many.covariance(["missing.tif"], jobs=1)
    assert found.covariance.matrix.shape == (0, 0) and found.covariance.count == 0
    assert found.failures[0].reason == "No such file or directory"
    assert many.statistics(["missing.tif"], jobs=1).bands == ()
