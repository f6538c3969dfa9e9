"""Reference systems against GDAL's answers, grids against least squares."""

import pickle

import numpy as np
import pytest
import rasterio.warp
from rasterio.crs import CRS

import zelto


def test_transformations_agree_with_gdal():
    random = np.random.default_rng(1)
    lon, lat = random.uniform(114, 120, 1000), random.uniform(20, 50, 1000)
    forth = zelto.CoordinateTransformation("EPSG:4326", "EPSG:32650")
    x, y = forth(lon, lat)
    expected = rasterio.warp.transform("EPSG:4326", "EPSG:32650", lon, lat)
    assert np.array_equal(x, expected[0]) and np.array_equal(y, expected[1])
    back = zelto.CoordinateTransformation("EPSG:32650", "EPSG:4326")(x, y)
    assert np.allclose(back, (lon, lat), atol=1e-9)
    assert pickle.loads(pickle.dumps(forth))(117.0, 30.0) == forth(117.0, 30.0)
    assert lon.flags.writeable and lon[0] != x[0]


def test_points_without_an_answer_become_infinite():
    to_mercator = zelto.CoordinateTransformation("EPSG:4326", "EPSG:3857")
    x, y = to_mercator([10.0, 10.0, np.nan], [50.0, 95.0, 0.0])
    assert np.isfinite([x[0], y[0]]).all() and not np.isfinite(y[1])
    assert to_mercator([], [])[0].shape == (0,)


def test_heights_take_part_in_a_shift():
    shifted = zelto.CoordinateTransformation(
        "EPSG:4326", "EPSG:4490", target_shift=(100, 0, 0, 0, 0, 0, 0))
    x, y, z = shifted(90.0, 0.0, [0.0, 1e6])
    # A hundred metres along the axis through the meridian, seen from the earth's middle.
    radius = 6378137.0 + np.array([0.0, 1e6])
    assert np.allclose(x - 90.0, np.degrees(np.arctan2(100.0, radius)), rtol=1e-6)
    assert np.allclose(y, 0.0, atol=1e-9) and z.shape == (2,)


def test_gauss_kruger():
    wkt = zelto.gauss_kruger("EPSG:4490", zone=20, width=6)
    x, y = zelto.CoordinateTransformation("EPSG:4490", wkt)(117.0, 30.0)
    assert x == pytest.approx(500000.0, abs=1e-6)
    assert CRS.from_wkt(wkt).is_projected
    with pytest.raises(ValueError):
        zelto.gauss_kruger("EPSG:4490", zone=61, width=6)
    with pytest.raises(zelto.Error):
        zelto.gauss_kruger("no system", zone=1, width=6)


def test_descriptions():
    found = zelto.describe_crs("EPSG:32650")
    assert found.kind == "projected" and found.authority == "EPSG:32650"
    assert found.facts["central_meridian"] == 117.0
    assert found.to_dict()["facts"]["Linear Unit"] == ("metre", 1.0)
    assert not zelto.is_same_crs("EPSG:4326", "EPSG:4490")


@pytest.mark.parametrize("order", [1, 2, 3])
def test_grids_are_least_squares(order):
    random = np.random.default_rng(order)
    x, y = random.uniform(0, 100, 200), random.uniform(0, 100, 200)
    columns = 3 * x - y + 0.01 * x * y + random.normal(0, 1, 200)
    rows = 900 - 2 * y + random.normal(0, 1, 200)
    grid = zelto.GeoGrid(order).fit(x, y, columns, rows)
    terms = np.array([x**i * y**j for i in range(order + 1) for j in range(order + 1 - i)]).T
    for given, fitted in zip((columns, rows), grid.transform(x, y)):
        expected = terms @ np.linalg.lstsq(terms, given, rcond=None)[0]
        assert np.allclose(fitted, expected, atol=1e-6)
    residuals = grid.residuals(x, y, columns, rows)
    assert 0.5 < residuals.rms[1] < 1.5 and residuals.largest[0] >= residuals.rms[0]
    again = pickle.loads(pickle.dumps(grid))
    assert again.residuals(x, y, columns, rows) == residuals
    assert repr(again) == f"<zelto.GeoGrid of order {order}, fitted to 200 points>"
    assert pickle.loads(pickle.dumps(zelto.GeoGrid(order))).coefficients is None
    with pytest.raises(ValueError):
        zelto.GeoGrid(order).fit([0, 0, 0], [0, 0, 0], [1, 1, 1], [1, 1, 1])
    with pytest.raises(ValueError):
        zelto.GeoGrid(order).transform(0, 0)
