"""No argument crashes the process; every failure is an exception that says what is wrong."""

import os
import pickle
import warnings

import hypothesis.strategies as st
import numpy as np
import pytest
import rasterio
from conftest import SCENE
from hypothesis import HealthCheck, given, settings

import zelto

ACCEPTED = (ValueError, TypeError, IndexError, OverflowError, MemoryError, zelto.Error)
QUICK = settings(max_examples=40, deadline=None,
                 suppress_health_check=[HealthCheck.function_scoped_fixture])

numbers = st.one_of(st.integers(-5, 400), st.integers(), st.floats(), st.none(),
                    st.text(max_size=3), st.booleans())
tuples = st.lists(numbers, max_size=5)


def allowed(call):
    """Calls; what may be raised is swallowed."""
    try:
        return call()
    except ACCEPTED:
        return None


@pytest.fixture(scope="module")
def scene():
    with zelto.open(SCENE) as opened:
        yield opened


@QUICK
@given(bands=st.one_of(numbers, tuples), window=st.one_of(st.none(), numbers, tuples),
       shape=st.one_of(st.none(), st.lists(st.integers(-2, 90), max_size=3), tuples),
       dtype=st.one_of(st.none(), st.sampled_from(["uint8", "float64", "complex64", "S3", ">i2",
                                                   "bool", "int64", "nonsense"])))
def test_reading_with_any_arguments(scene, bands, window, shape, dtype):
    if isinstance(shape, list) and any(isinstance(s, int) and s > 2000 for s in shape):
        return
    found = allowed(lambda: scene.read(bands, window, shape, dtype))
    assert found is None or isinstance(found, np.ndarray)


@QUICK
@given(box=st.one_of(st.none(), numbers, tuples), center=st.one_of(st.none(), tuples),
       scale=numbers, size=st.one_of(st.none(), st.integers(-1, 60),
                                     st.lists(st.integers(-1, 60), max_size=3)),
       stretch=st.one_of(st.text(max_size=4), st.sampled_from(
           ["none", "linear", "percent", "zoom", "custom-equalize", "auto"])),
       bands=st.one_of(st.none(), numbers, tuples), low=numbers, high=numbers, hue=numbers,
       clip=st.one_of(st.none(), tuples), gamma=st.one_of(st.none(), numbers, tuples),
       ranges=st.one_of(st.none(), tuples), ramp=st.one_of(st.none(), st.text(max_size=5), tuples),
       table=st.one_of(st.none(), tuples), classes=st.one_of(st.none(), st.lists(tuples, max_size=2)))
def test_drawing_with_any_arguments(scene, **arguments):
    found = allowed(lambda: scene.render(**arguments))
    assert found is None or found.shape[2] == 4


def test_positions_far_away_are_no_surprise(scene):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert not np.isfinite(scene.xy(np.inf, 1e308)).any()
        for x in (1e308, -1.7e308):
            with pytest.raises(ValueError, match="too far away"):
                scene.index(x, x)


@QUICK
@given(first=numbers, second=numbers)
def test_positions_of_anything(scene, first, second):
    allowed(lambda: scene.xy(first, second))
    allowed(lambda: scene.index(first, second))
    allowed(lambda: scene.value_at(first, second))


@QUICK
@given(st.recursive(numbers, lambda inner: st.one_of(
    st.lists(inner, max_size=4), st.fixed_dictionaries({
        "type": st.sampled_from(["Polygon", "MultiPolygon", "Feature", "FeatureCollection", "x"]),
        "coordinates": inner, "geometry": inner, "features": inner}))))
def test_areas_of_anything(source):
    if isinstance(source, str):
        return
    try:
        allowed(lambda: zelto.AreaOfInterest(source).contains(0.0, 0.0))
    except (KeyError, AttributeError, RecursionError):
        pass


@QUICK
@given(percentiles=st.one_of(st.none(), tuples), box=st.one_of(st.none(), tuples),
       bands=st.one_of(st.none(), numbers, tuples), bins=numbers, limits=st.one_of(st.none(), tuples))
def test_measuring_with_any_arguments(scene, percentiles, box, bands, bins, limits):
    allowed(lambda: zelto.statistics(scene, box=box, bands=bands, percentiles=percentiles))
    if not (isinstance(bins, int) and bins > 100000):
        allowed(lambda: zelto.histogram(scene, 1, box=box, bins=bins, range=limits))


def test_a_closed_raster_says_so(scene_path):
    scene = zelto.open(scene_path)
    scene.close()
    scene.close()
    for call in (scene.read, scene.render, lambda: scene.value_at(0, 0),
                 lambda: zelto.statistics(scene), lambda: scene.sampled(1),
                 lambda: zelto.AreaOfInterest(zelto.Rectangle(0, 0, 1, 1)).mask(scene)):
        with pytest.raises(ValueError, match="closed"):
            call()
    assert "closed" in repr(scene) and scene.width == 349


def test_errors_name_file_and_reason(tmp_path):
    text = tmp_path / "text.tif"
    text.write_text("no picture")
    with pytest.raises(zelto.Error) as caught:
        zelto.open(text)
    error = caught.value
    assert isinstance(error, OSError)
    assert error.filename == str(text) and "not recognized" in error.reason
    again = pickle.loads(pickle.dumps(error))
    assert (again.filename, again.reason, str(again)) == (error.filename, error.reason, str(error))
    for path in ("", "a\0b", 5, b"x", None):
        with pytest.raises((ValueError, TypeError)):
            zelto.open(path)
    with pytest.raises(zelto.Error):
        zelto.open(tmp_path)
    pipe = tmp_path / "pipe.tif"
    os.mkfifo(pipe)
    with pytest.raises(zelto.Error):
        zelto.open(pipe)


def test_writing_is_checked(scene_path, tmp_path):
    with zelto.open(scene_path) as scene:
        for call in (lambda: scene.write(np.zeros(scene.shape, np.uint8), 1),
                     lambda: scene.set_nodata(1), lambda: scene.set_georeference((0, 1, 0, 0, 0, 1))):
            with pytest.raises(ValueError):
                call()
    with zelto.create(tmp_path / "n.tif", width=4, height=3) as new:
        for values in (np.zeros((3, 5), np.uint8), np.zeros((2, 3, 4), np.uint8), 5, "x"):
            with pytest.raises((ValueError, TypeError)):
                new.write(values)
        with pytest.raises(TypeError):
            new.write(np.zeros((3, 4), np.complex64))
    for arguments in ({"width": 0, "height": 3}, {"width": 3, "height": 2**40},
                      {"width": 3, "height": 3, "dtype": "int64"},
                      {"width": 3, "height": 3, "bands": 0},
                      {"width": 3, "height": 3, "format": "nonsense"},
                      {"width": 3, "height": 3, "crs": "nonsense"},
                      {"width": 3, "height": 3, "options": ["x"]}):
        with pytest.raises(ACCEPTED):
            zelto.create(tmp_path / "bad.tif", **arguments)
    assert not (tmp_path / "bad.tif").exists()
    with pytest.raises(zelto.Error):
        zelto.create(tmp_path / "no" / "folder.tif", width=3, height=3)


def test_a_file_whose_blocks_would_fill_the_memory_is_refused(tmp_path):
    path = tmp_path / "blocks.tif"
    with rasterio.open(path, "w", driver="GTiff", width=2**16, height=2**15, count=1, dtype="uint8",
                       tiled=True, blockxsize=2**16, blockysize=2**15, sparse_ok=True):
        pass
    with zelto.open(path) as scene, pytest.raises(zelto.Error, match="blocks"):
        scene.read(1, shape=(10, 10))


def test_damaged_files_are_refused(data):
    for path in sorted((data / "raster" / "corrupt").iterdir()):
        if path.is_file():
            allowed(lambda: zelto.open(path).read(1, shape=(10, 10)))
            allowed(lambda: zelto.open(path).render(size=20))
            allowed(lambda: zelto.AreaOfInterest(path))
