"""Areas of interest against NumPy, Shapely and rasterio."""

import json
import pickle

import numpy as np
import pytest
import rasterio
import rasterio.features
import rasterio.warp
import shapely.geometry

import zelto

RING = [(0.0, 0.0), (9.0, 1.0), (7.5, 8.0), (2.0, 6.5), (0.0, 0.0)]
HOLE = [(3.0, 2.0), (5.0, 2.5), (4.0, 4.0), (3.0, 2.0)]


def random_points(count=20000, seed=5):
    random = np.random.default_rng(seed)
    return random.uniform(-1, 10, count), random.uniform(-1, 10, count)


def plain_contains(rings, x, y):
    inside = np.zeros(x.shape, bool)
    for ring in rings:
        for (x0, y0), (x1, y1) in zip(ring, ring[1:]):
            if y0 == y1:
                continue
            crosses = (y0 > y) != (y1 > y)
            inside ^= crosses & (x < x0 + (y - y0) * (x1 - x0) / (y1 - y0))
    return inside


def test_points_in_polygons_with_holes():
    x, y = random_points()
    area = zelto.AreaOfInterest({"type": "Polygon", "coordinates": [RING, HOLE]})
    assert len(area) == 1
    assert np.array_equal(area.contains(x, y), plain_contains([RING, HOLE], x, y))
    assert area.contains(1.0, 0.5) is True
    assert area.contains(np.zeros((2, 3)), 4.0).shape == (2, 3)
    assert area.contains([], []).shape == (0,)


def test_shapes_by_themselves():
    x, y = random_points()
    ellipse = zelto.Ellipse(1, 2, 7, 6)
    assert np.array_equal(ellipse.contains(x, y), ((x - 4) / 3) ** 2 + ((y - 4) / 2) ** 2 <= 1)
    box = zelto.Rectangle(1, 2, 7, 6)
    assert np.array_equal(box.contains(x, y), (x >= 1) & (x <= 7) & (y >= 2) & (y <= 6))
    assert zelto.Point(3, 4).contains(3.2, 3.9, tolerance=0.25) is True
    assert zelto.Line([(0, 0), (10, 10)]).contains([5, 5], [5.1, 7], tolerance=0.2).tolist() == [
        True, False]
    area = zelto.AreaOfInterest([ellipse, zelto.Rectangle(8, 8, 9, 9)])
    assert np.array_equal(area.contains(x, y),
                          ellipse.contains(x, y) | ((x >= 8) & (x <= 9) & (y >= 8) & (y <= 9)))


def test_what_has_a_geo_interface_goes_there_and_back():
    polygon = shapely.geometry.Polygon(RING, [HOLE])
    area = zelto.AreaOfInterest([polygon, shapely.geometry.box(20, 20, 21, 22)])
    back = shapely.geometry.shape(area.__geo_interface__["features"][0]["geometry"])
    assert back.equals(polygon)
    again = zelto.AreaOfInterest(json.loads(json.dumps(area.to_dict())))
    assert again.shapes == area.shapes
    assert zelto.AreaOfInterest(shapely.geometry.MultiPolygon([polygon])).shapes == area.shapes[:1]
    travelled = pickle.loads(pickle.dumps(area))
    assert travelled.shapes == area.shapes and travelled.crs == area.crs


@pytest.mark.parametrize("holes", [False, True])
def test_masks_are_those_of_rasterio(make, holes):
    values = np.zeros((80, 90), np.uint8)
    path = make("m.tif", values, pixel=0.125, origin=(-0.51, 9.93))
    rings = [RING, HOLE] if holes else [RING]
    geometry = {"type": "Polygon", "coordinates": rings}
    with rasterio.open(path) as other:
        expected = rasterio.features.geometry_mask([geometry], values.shape, other.transform,
                                                   invert=True)
    found = zelto.AreaOfInterest(geometry).mask(path)
    assert found.dtype == bool and np.array_equal(found, expected)


def test_files_of_areas(tmp_path):
    area = zelto.AreaOfInterest([zelto.Rectangle(0, 0, 3, 2), zelto.Ellipse(5, 5, 6, 7),
                                 zelto.Polygon(RING[:-1])], crs="EPSG:32650")
    area.save(tmp_path / "区域.aif")
    read = zelto.AreaOfInterest(tmp_path / "区域.aif")
    assert read.shapes == area.shapes
    assert zelto.is_same_crs(read.crs, "EPSG:32650")
    ring = {}
    for tolerance in (0.0, 0.1):
        area.save(tmp_path / "a.gpkg", tolerance)
        ring[tolerance] = zelto.AreaOfInterest(tmp_path / "a.gpkg").shapes[1].vertices
    assert 4 < len(ring[0.1]) < len(ring[0.0])
    for tolerance in (-1.0, np.nan):
        with pytest.raises(ValueError):
            area.save(tmp_path / "b.gpkg", tolerance)
    area.save(tmp_path / "a.shp")
    assert len(zelto.AreaOfInterest(tmp_path / "a.shp")) == 3
    with pytest.raises(ValueError):
        area.save(tmp_path / "a.txt")


def test_real_vector_files(data):
    area = zelto.AreaOfInterest(data / "vector" / "roi_over_l7.geojson")
    document = json.loads((data / "vector" / "roi_over_l7.geojson").read_text())
    rings = [np.array(ring) for feature in document["features"]
             for ring in (feature["geometry"]["coordinates"]
                          if feature["geometry"]["type"] == "Polygon" else
                          [r for p in feature["geometry"]["coordinates"] for r in p])]
    assert len(area) == len(rings)
    assert area.bounds.left == min(ring[:, 0].min() for ring in rings)


def test_areas_in_another_system(make):
    path = make("w.tif", np.ones((50, 60), np.uint8), pixel=100.0)
    with zelto.open(path) as scene:
        left, bottom, right, top = scene.bounds
        corners = [(left + 1000, bottom + 1000), (right - 1500, bottom + 1200),
                   (right - 1200, top - 900), (left + 800, top - 1300)]
        inside = zelto.AreaOfInterest(zelto.Polygon(corners), crs=scene.crs)
        lon, lat = rasterio.warp.transform("EPSG:32650", "EPSG:4326", *zip(*corners))
        degrees = zelto.AreaOfInterest(zelto.Polygon(list(zip(lon, lat))), crs="EPSG:4326")
        assert np.array_equal(inside.mask(scene), degrees.mask(scene))
        moved = degrees.to_crs("EPSG:32650")
        assert np.allclose(moved.shapes[0].vertices, corners, atol=1e-3)


@pytest.mark.parametrize("source", [
    {"type": "Point", "coordinates": (0, 0)}, {"type": "Nonsense"}, {}, 5, None, "missing.aif",
    [zelto.Point(0, 0)], {"type": "Polygon", "coordinates": [[(0, 0), (1, 1)]]},
    {"type": "Polygon", "coordinates": [[(0, 0), (1, float("nan")), (2, 2)]]},
    {"type": "Polygon"}, {"type": "Polygon", "coordinates": 5},
])
def test_what_is_no_area_is_refused(source):
    with pytest.raises((ValueError, TypeError, KeyError, zelto.Error)):
        zelto.AreaOfInterest(source)
