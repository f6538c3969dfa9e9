"""Samples, classes, polygons."""

import numpy as np
import pytest
import rasterio
import rasterio.features

import zelto


def test_polygons_are_those_of_rasterio(make, tmp_path):
    values = np.random.default_rng(4).integers(0, 4, (40, 50)).astype(np.uint8)
    path = make("p.tif", values)
    for eight in (False, True):
        out = tmp_path / f"p{eight}.gpkg"
        count = zelto.polygonize(path, out, eight=eight)
        expected = list(rasterio.features.shapes(values, connectivity=8 if eight else 4))
        assert count == len(expected)
    with pytest.raises(ValueError, match="extension"):
        zelto.polygonize(path, tmp_path / "p.unknown")


def test_samples_are_the_typical_pixels(make):
    values = np.random.default_rng(6).normal(100, 10, (2, 60, 60)).astype(np.float32)
    path = make("s.tif", values)
    shape = zelto.Rectangle(500103, 3999604, 500407, 3999902)
    (found,) = zelto.sample_pixels(path, shape)
    with zelto.open(path) as scene:
        rows, columns = np.meshgrid(np.arange(60), np.arange(60), indexing="ij")
        inside = shape.contains(*scene.xy(rows, columns, offset="ul"))
    # The window that is read ends before the pixel that holds the shape's last corner.
    inside[39:] = False
    inside[:, 40:] = False
    pixels = values[:, inside].astype(float).T
    typical = (np.abs(pixels - pixels.mean(0)) <= 2 * pixels.std(0)).all(1)
    assert np.array_equal(found.values, pixels[typical])
    beside = zelto.sample_pixels(path, zelto.Rectangle(0, 0, 1, 1))
    assert beside[0].values is None


def test_sample_files_go_round(tmp_path):
    shapes = [zelto.Rectangle(0, 0, 2, 3), zelto.Ellipse(1, 1, 2, 5),
              zelto.Polygon([(0, 0), (4, 0), (2, 3)])]
    pixels = np.random.default_rng(8).normal(0, 5, (20, 3))
    wood = zelto.SampleClass.of("林地", 3, pixels, shapes)
    zelto.SampleFile([wood, zelto.SampleClass("leer")]).write(tmp_path / "a.sam")
    read = zelto.SampleFile.read(tmp_path / "a.sam").classes
    assert [entry.name for entry in read] == ["林地", "leer"]
    assert read[0].values == (3, 20, 0) and read[0].shapes == tuple(shapes)
    assert np.array_equal(read[0].matrix, np.cov(pixels.T, bias=True))
    assert read[0].first == pixels.mean(0).tolist()
    with pytest.raises(ValueError):
        zelto.SampleFile([zelto.SampleClass("x", first=[1.0])]).write(tmp_path / "b.sam")
    with pytest.raises(zelto.Error):
        zelto.SampleFile.read(tmp_path / "none.sam")
    assert not (tmp_path / "b.sam").exists()


def test_a_class_of_one_pixel_has_no_spread():
    for pixels in ([[5, 9]], [[5]]):
        one = zelto.SampleClass.of("pond", 1, pixels)
        assert one.first == one.second == one.third == pixels[0]
        assert np.array_equal(one.matrix, np.zeros((len(pixels[0]), len(pixels[0]))))


def test_class_files_colour_the_raster(make, tmp_path):
    path = make("map.tif", np.uint8([[1, 2]]))
    classes = [zelto.ClassEntry(1, "水体", (0, 0, 255, 255)), zelto.ClassEntry(2, "b", (9, 8, 7, 255))]
    zelto.ClassFile(classes, [(0.5, 1.5, 1, -2)], [["x", "y"], ["", "é"]]).write(tmp_path / "map.acf")
    read = zelto.ClassFile.read(tmp_path / "map.acf")
    assert read.classes == classes
    assert read.entries == [(0.5, 1.5, 1, -2)] and read.matrix == [["x", "y"], ["", "é"]]
    with zelto.open(path) as scene:
        assert [entry.name for entry in scene.classes] == ["水体", "b"]
        assert scene.render(size=(2, 1))[0, :, :3].tolist() == [[0, 0, 255], [9, 8, 7]]
