"""Numbers over regions against NumPy."""

import numpy as np
import pytest

import zelto


@pytest.fixture
def random_raster(make):
    random = np.random.default_rng(11)
    values = random.normal(500, 120, (3, 70, 80)).astype(np.float32)
    values[0, 5:9, 5:20] = -99
    values[1, 30, 30] = np.nan
    values[2, 31, 31] = np.inf
    return values, make("r.tif", values, nodata=-99)


def counted(values):
    kept = values[np.isfinite(values) & (np.abs(values.astype(float) + 99) >= 1e-8)]
    return kept.astype(float)


def test_the_whole_raster(random_raster):
    values, path = random_raster
    table = zelto.statistics(path, percentiles=(2, 98))
    for plane, band in zip(values, table[0].bands):
        kept = counted(plane)
        assert band.count == kept.size
        assert (band.minimum, band.maximum) == (kept.min(), kept.max())
        assert band.mean == pytest.approx(kept.mean(), rel=1e-12)
        assert band.standard_deviation == pytest.approx(kept.std(), rel=1e-12)
        assert band.low_percentile == pytest.approx(np.percentile(kept, 2), rel=1e-12)
        assert band.high_percentile == pytest.approx(np.percentile(kept, 98), rel=1e-12)


def test_every_shape_of_an_area(random_raster):
    values, path = random_raster
    shapes = [zelto.Rectangle(500000 + 100 * i, 4000000 - 600, 500000 + 100 * i + 155, 4000000 - 33)
              for i in range(6)]
    area = zelto.AreaOfInterest(shapes)
    table = zelto.statistics(path, area, each=True, bands=2)
    assert [region.shape for region in table] == [1, 2, 3, 4, 5, 6]
    for shape, region in zip(shapes, table):
        kept = counted(values[1][zelto.AreaOfInterest(shape).mask(path)])
        assert region.bands[0].count == kept.size
        assert region.bands[0].mean == pytest.approx(kept.mean(), rel=1e-12)
    together = zelto.statistics(path, area, bands=2)[0].bands[0]
    assert together.count == counted(values[1][area.mask(path)]).size
    assert set(table.rows()[0]) == {"shape", "band", "count", "minimum", "maximum", "mean",
                                    "standard_deviation"}
    assert table.to_dict()["regions"][2]["shape"] == 3


def test_covariance_and_correlation(random_raster):
    values, path = random_raster
    complete = np.all([np.isfinite(p) & (p != -99) for p in values], axis=0)
    pixels = np.array([plane[complete] for plane in values], float)
    found = zelto.covariance(path)
    assert found.count == complete.sum()
    assert np.allclose(found.matrix, np.cov(pixels, bias=True), rtol=1e-12, atol=1e-12)
    assert np.allclose(found.correlation, np.corrcoef(pixels), rtol=1e-10)
    pair = zelto.covariance(path, bands=(3, 1), box=(500000, 3999500, 500300, 4000000))
    assert pair.bands == (3, 1) and pair.matrix.shape == (2, 2)


def test_results_with_arrays_can_be_compared(random_raster):
    _, path = random_raster
    assert zelto.covariance(path) == zelto.covariance(path)
    assert zelto.covariance(path) != zelto.covariance(path, bands=(3, 1))
    assert zelto.histogram(path, 1) == zelto.histogram(path, 1) != zelto.histogram(path, 2)
    assert zelto.histogram(path, 1) != zelto.covariance(path)
    (region,) = zelto.statistics(path, covariance=True)
    assert region == zelto.statistics(path, covariance=True)[0]


def test_histograms(random_raster, make):
    values, path = random_raster
    found = zelto.histogram(path, 1, bins=20, range=(300, 700))
    width = (700 - 300) * (1 + 1e-9) / 20
    kept = counted(values[0])
    expected = np.bincount(np.floor((kept[(kept >= 300) & (kept < 300 + 20 * width)] - 300)
                                    / width).astype(int), minlength=20)
    assert np.array_equal(found.counts, expected)
    assert zelto.histogram(path, 1, bins=20).counts.sum() == kept.size
    whole = make("h.tif", np.random.default_rng(2).integers(-40, 90, (50, 60)).astype(np.int16))
    read = zelto.open(whole).read(1)
    found = zelto.histogram(whole, bins=1000)
    assert np.array_equal(found.counts, np.histogram(read, found.edges)[0])
    assert (found.edges[1:] - found.edges[:-1] == 1).all()


def test_a_region_without_values(random_raster):
    _, path = random_raster
    (band,) = zelto.statistics(path, box=(0, 0, 1, 1), bands=1)[0].bands
    assert band.count == 0 and np.isnan(band.mean) and np.isnan(band.minimum)
    with pytest.raises(ValueError):
        zelto.histogram(path, 1, box=(0, 0, 1, 1))


def test_the_peers_numbers_agree_on_real_scenes(scene_path, data):
    import rasterio
    import rasterio.mask

    area = zelto.AreaOfInterest(data / "vector" / "roi_over_l7.geojson")
    with rasterio.open(scene_path) as other:
        geometries = [shape.__geo_interface__ for shape in area.to_crs(
            zelto.open(scene_path).crs).shapes]
        values, _ = rasterio.mask.mask(other, geometries, filled=False)
    for plane, band in zip(values, zelto.statistics(scene_path, area)[0].bands):
        assert band.count == plane.count()
        assert band.mean == pytest.approx(plane.mean(dtype=float), rel=1e-12)
        assert band.standard_deviation == pytest.approx(plane.std(dtype=float), rel=1e-9)


def test_zones_in_one_pass(random_raster):
    values, path = random_raster
    ring = [(500055, 3999950), (500700, 3999900), (500610, 3999400), (500055, 3999950)]
    hole = [(500400, 3999800), (500500, 3999780), (500480, 3999700), (500400, 3999800)]
    polygon = {"type": "Polygon", "coordinates": [ring, hole]}
    multi = {"type": "MultiPolygon", "coordinates": [
        [ring], [[(500100, 3999500), (500200, 3999500), (500150, 3999400), (500100, 3999500)]]]}
    found = zelto.zonal_statistics(path, [polygon, multi], quantiles=(0.5,))
    for geometry, zone in zip((polygon, multi), found):
        inside = zelto.AreaOfInterest(geometry).mask(path)
        for plane, band in zip(values, zone):
            kept = counted(plane[inside])
            assert band.count == kept.size == band.weight
            assert band.mean == pytest.approx(kept.mean(), rel=1e-12)
            assert band.quantiles[0] == pytest.approx(np.median(kept), rel=1e-12)
    box = zelto.Rectangle(500005, 3999970, 500025, 4000000)
    (zone,) = zelto.zonal_statistics(path, box, bands=2, weights="coverage")
    weights = np.array([0.5, 1.0, 0.5])
    assert zone[0].weight == pytest.approx(6.0)
    assert zone[0].mean == pytest.approx((values[1, :3, :3] * weights).sum() / 6.0)
    with pytest.raises(ValueError):
        zelto.zonal_statistics(path, {"type": "Point", "coordinates": (0, 0)})
