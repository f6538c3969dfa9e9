"""Threads, interruption, memory."""

import gc
import os
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest

import zelto


@pytest.fixture
def slow_path(make):
    """Takes long enough to be interrupted: deflated noise."""
    random = np.random.default_rng(1)
    return make("slow.tif", random.integers(0, 65535, (3000, 3000)).astype(np.uint16),
                compress="deflate", zlevel=1)


def test_a_raster_serves_one_thread_at_a_time(slow_path):
    with zelto.open(slow_path) as scene:
        begun, refusals = threading.Event(), []

        def watch(fraction):
            begun.set()
            time.sleep(0.02)

        worker = threading.Thread(target=lambda: zelto.statistics(scene, progress=watch))
        worker.start()
        assert begun.wait(30)
        for call in (lambda: scene.read(1, window=(0, 0, 1, 1)), scene.close,
                     lambda: scene.render(size=10)):
            with pytest.raises(RuntimeError, match="one thread at a time"):
                call()
            refusals.append(call)
        worker.join()
        assert scene.read(1, window=(0, 0, 2, 2)).shape == (2, 2)


def test_a_progress_callable_cannot_use_what_is_being_used(slow_path):
    with zelto.open(slow_path) as scene:
        with pytest.raises(RuntimeError, match="in use"):
            zelto.statistics(scene, progress=lambda fraction: scene.close())
        assert zelto.statistics(scene, box=(500000, 3999000, 501000, 4000000))[0].bands[0].count


def test_the_lock_is_given_up(slow_path):
    counted = 0
    stop = threading.Event()

    def count():
        nonlocal counted
        while not stop.is_set():
            counted += 1
            time.sleep(0)

    thread = threading.Thread(target=count)
    with zelto.open(slow_path) as scene:
        thread.start()
        most = 0
        for _ in range(10):  # another process may have the processors in between
            before = counted
            scene.read(1)
            most = max(most, counted - before)
        stop.set()
        thread.join()
    assert most > 10


def test_many_threads_with_rasters_of_their_own(scene_path):
    failures = []
    with zelto.open(scene_path) as scene:
        expected = scene.render(size=100, stretch="percent"), zelto.statistics(scene).rows()

    def work():
        try:
            for _ in range(10):
                with zelto.open(scene_path) as scene:
                    assert np.array_equal(scene.render(size=100, stretch="percent"), expected[0])
                    assert zelto.statistics(scene).rows() == expected[1]
        except BaseException as error:
            failures.append(error)

    threads = [threading.Thread(target=work) for _ in range(6)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []


def test_what_a_progress_callable_raises_ends_the_work(slow_path, tmp_path):
    class Stop(Exception):
        pass

    def stop(fraction):
        raise Stop(fraction)

    with zelto.open(slow_path) as scene:
        for call in (
            lambda: zelto.statistics(scene, progress=stop),
            lambda: zelto.histogram(scene, range=(0, 9), progress=stop),
            lambda: scene.read(progress=stop),
            lambda: scene.build_pyramids(progress=stop),
            lambda: zelto.polygonize(scene, tmp_path / "p.gpkg", progress=stop),
            lambda: zelto.copy(scene, tmp_path / "c.tif", progress=stop),
            lambda: scene.render(stretch="percent", stretch_to="view", exact=True, progress=stop),
        ):
            with pytest.raises(Stop):
                call()
    assert sorted(os.listdir(tmp_path)) == ["slow.tif"]


@pytest.mark.parametrize("work", [
    "zelto.statistics(path, percentiles=(2, 98))",
    "zelto.open(path).build_pyramids()",
    "zelto.polygonize(path, folder + '/p.gpkg')",
    "[zelto.copy(path, folder + '/c.tif') for _ in range(100)]",
    "zelto.open(path).read(dtype='float64', shape=(9000, 9000), resampling='cubic')",
])
def test_ctrl_c_ends_the_work_and_leaves_nothing(slow_path, tmp_path, work):
    script = (f"import zelto, sys\npath, folder = sys.argv[1:]\nprint('go', flush=True)\n"
              f"try:\n    {work}\nexcept KeyboardInterrupt:\n    sys.exit(7)\n")
    process = subprocess.Popen([sys.executable, "-c", script, slow_path, str(tmp_path)],
                               stdout=subprocess.PIPE)
    process.stdout.readline()
    time.sleep(0.3)
    process.send_signal(signal.SIGINT)
    # The work may be done before the signal comes, which then meets the interpreter at its end.
    assert process.wait(30) in (0, 7, -signal.SIGINT)
    left = set(os.listdir(tmp_path)) - {"slow.tif"}
    if process.returncode == 7:
        assert left <= {"c.tif", "c.tfw"}, left


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def test_a_thousand_openings_leave_memory_flat(scene_path):
    def once():
        with zelto.open(scene_path) as scene:
            scene.read(1)
            scene.render(size=50)
        zelto.AreaOfInterest(zelto.Rectangle(0, 0, 1, 1)).contains(0, 0)
        with pytest.raises(zelto.Error):
            zelto.open("/nonexistent.tif")

    for _ in range(100):
        once()
    gc.collect()
    before = resident()
    for _ in range(1000):
        once()
    gc.collect()
    assert resident() - before < 8 * 2**20


def test_objects_keep_what_they_borrow(scene_path):
    composed = zelto.compose((scene_path, 1), (scene_path, 2), (scene_path, 3))
    area = zelto.AreaOfInterest(zelto.Rectangle(0, 0, 1, 1))
    shapes = area.shapes
    values = zelto.open(scene_path).read(1)
    count = sys.getrefcount(values)
    del area
    gc.collect()
    assert composed.render(size=10).shape == (10, 10, 4)
    assert shapes[0].contains(0.5, 0.5) and values.sum() > 0
    zelto.open(scene_path).read(1, out=values)
    assert sys.getrefcount(values) == count
