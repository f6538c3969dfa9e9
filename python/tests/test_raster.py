"""Facts and pixels against rasterio and NumPy."""

import pickle

import affine
import numpy as np
import pytest
import rasterio
import rasterio.enums
import rasterio.windows

import zelto

TYPES = ["uint8", "uint16", "int16", "uint32", "int32", "float32", "float64"]


def values_of(dtype, shape, seed=1):
    random = np.random.default_rng(seed)
    if np.dtype(dtype).kind == "f":
        return random.normal(0, 1000, shape).astype(dtype)
    limits = np.iinfo(dtype)
    return random.integers(limits.min, limits.max, shape, dtype=dtype, endpoint=True)


def test_facts_agree_with_rasterio(scene_path):
    with zelto.open(scene_path) as scene, rasterio.open(scene_path) as other:
        assert (scene.width, scene.height, scene.count) == (other.width, other.height, other.count)
        assert affine.Affine(*scene.transform) == other.transform
        assert scene.geotransform == other.transform.to_gdal()
        assert tuple(scene.bounds) == pytest.approx(tuple(other.bounds), abs=1e-9)
        assert tuple(band.dtype for band in scene.bands) == other.dtypes
        assert scene.bands[0].block == other.block_shapes[0]
        assert rasterio.crs.CRS.from_wkt(scene.crs) == other.crs
        assert scene.driver == other.driver


@pytest.mark.parametrize("dtype", TYPES)
def test_reading_gives_the_files_values(make, dtype):
    values = values_of(dtype, (3, 40, 50))
    path = make("a.tif", values)
    with zelto.open(path) as scene:
        assert scene.dtype == dtype
        read = scene.read()
        assert read.dtype == dtype and np.array_equal(read, values)
        assert np.array_equal(scene.read(2), values[1])
        assert np.array_equal(scene.read([3, 1]), values[[2, 0]])
        assert np.array_equal(scene.read(1, window=(5, 7, 20, 10)), values[0, 7:17, 5:25])


def test_bands_of_different_types_are_read_in_one_that_holds_all(make, tmp_path):
    makings = {"uint32": [[1, 2**32 - 1]], "int16": [[-5, 7]], "uint8": [[3, 255]]}
    bands = "".join(
        f'<VRTRasterBand dataType="{kind}" band="{number}"><SimpleSource><SourceFilename>'
        f'{make(name + ".tif", np.array(values, name))}</SourceFilename></SimpleSource>'
        "</VRTRasterBand>"
        for number, (kind, (name, values)) in enumerate(
            zip(("UInt32", "Int16", "Byte"), makings.items()), 1))
    path = tmp_path / "mixed.vrt"
    path.write_text(f'<VRTDataset rasterXSize="2" rasterYSize="1">{bands}</VRTDataset>')
    with zelto.open(path) as scene:
        assert scene.dtype == "float64"
        assert scene.read()[:, 0].tolist() == [[1, 2**32 - 1], [-5, 7], [3, 255]]
        assert scene.read((2, 3)).dtype == np.int16 and scene.read(1).dtype == np.uint32


@pytest.mark.parametrize("resampling", ["nearest", "bilinear", "average"])
def test_resampled_reading_agrees_with_rasterio(scene_path, resampling):
    with zelto.open(scene_path) as scene, rasterio.open(scene_path) as other:
        expected = other.read(out_shape=(6, 70, 90),
                              resampling=rasterio.enums.Resampling[resampling])
        assert np.array_equal(scene.read(shape=(70, 90), resampling=resampling), expected)


def test_reading_fills_the_callers_memory(scene_path):
    with zelto.open(scene_path) as scene:
        out = np.zeros((6, *scene.shape), np.uint8)
        assert scene.read(out=out) is out
        assert np.array_equal(out, scene.read())
        plane = np.zeros(scene.shape, np.float32)
        assert scene.read(4, out=plane) is plane
        assert np.array_equal(plane, out[3])
        with pytest.raises(ValueError):
            scene.read(1, out=np.zeros((352, 698), np.uint8)[:, ::2])
        with pytest.raises(ValueError):
            locked = np.zeros(scene.shape, np.uint8)
            locked.flags.writeable = False
            scene.read(1, out=locked)


def test_a_rotated_raster_keeps_its_grid(make):
    turned = affine.Affine.translation(500000, 4000000) * affine.Affine.rotation(
        30) * affine.Affine.scale(10, -10)
    values = values_of("uint8", (20, 30))
    path = make("turned.tif", values, transform=turned)
    for warp in (True, False):
        with zelto.open(path, warp=warp) as scene:
            assert affine.Affine(*scene.transform).almost_equals(turned)
            assert np.array_equal(scene.read(1), values)
            x, y = scene.xy(3, 4)
            assert (x, y) == pytest.approx(turned @ (4.5, 3.5) if hasattr(
                turned, "__matmul__") else turned * (4.5, 3.5))
            assert scene.index(x, y) == (3, 4)


def test_positions_agree_with_rasterio(scene_path):
    with zelto.open(scene_path) as scene, rasterio.open(scene_path) as other:
        rows, columns = np.array([0, 3, 351]), np.array([0, 8, 348])
        xs, ys = scene.xy(rows, columns)
        expected = rasterio.transform.xy(other.transform, rows, columns)
        assert np.allclose(xs, expected[0], atol=1e-9) and np.allclose(ys, expected[1], atol=1e-9)
        found = scene.index(xs, ys)
        assert np.array_equal(found[0], rows) and np.array_equal(found[1], columns)
        assert scene.index(scene.bounds.left - 1, scene.bounds.top + 1) == (-1, -1)


def test_values_under_points(make):
    values = values_of("float32", (2, 10, 12))
    path = make("v.tif", values)
    with zelto.open(path) as scene:
        rows, columns = np.meshgrid(np.arange(10), np.arange(12), indexing="ij")
        found = scene.value_at(*scene.xy(rows, columns))
        assert found.shape == (10, 12, 2)
        assert np.array_equal(found, np.moveaxis(values, 0, -1).astype(float))
        assert np.isnan(scene.value_at(0, 0)).all()
        assert np.isnan(scene.value_at(np.nan, 3.0)).all()
        assert scene.value_at([], []).shape == (0, 2)


@pytest.mark.parametrize("dtype", TYPES)
def test_what_is_written_is_what_others_read(tmp_path, dtype):
    values = values_of(dtype, (2, 33, 21))
    place = (500000.0, 30.0, 0.0, 4000000.0, 0.0, -30.0)
    path = tmp_path / "new.tif"
    with zelto.create(path, width=21, height=33, bands=2, dtype=dtype, geotransform=place,
                      crs="EPSG:32650", nodata=7) as new:
        new.write(values[:, :10], window=(0, 0, 21, 10))
        new.write(values[0, 10:], bands=1, window=(0, 10, 21, 23))
        new.write(values[1, 10:], bands=2, window=(0, 10, 21, 23))
        assert not path.exists()
    with rasterio.open(path) as other:
        assert np.array_equal(other.read(), values)
        assert other.transform.to_gdal() == place
        assert other.crs.to_epsg() == 32650
        assert other.nodatavals == (7.0, 7.0)


def test_an_unfinished_raster_leaves_nothing(tmp_path):
    path = tmp_path / "new.tif"
    with pytest.raises(KeyError):
        with zelto.create(path, width=5, height=5) as new:
            new.write(np.ones((5, 5), np.uint8))
            raise KeyError
    assert list(tmp_path.iterdir()) == []
    with pytest.warns(RuntimeWarning, match="never closed"):
        forgotten = zelto.create(path, width=5, height=5)
        del forgotten
    assert list(tmp_path.iterdir()) == []


def test_changes_in_place(make):
    path = make("p.tif", np.zeros((4, 5), np.int16))
    with zelto.open(path, "r+") as scene:
        scene.write(np.full((2, 2), 9, np.int16), window=(1, 1, 2, 2))
        scene.set_nodata(-5)
        scene.set_georeference((1, 2, 0, 3, 0, -2), "EPSG:32633")
        assert scene.nodata == -5 and scene.bounds.left == 1
    with rasterio.open(path) as other:
        assert other.read(1).sum() == 36
        assert other.nodata == -5
        assert other.transform.to_gdal() == (1, 2, 0, 3, 0, -2)
        assert other.crs.to_epsg() == 32633
    with zelto.open(path, "r+") as scene:
        scene.set_nodata(None)
    with rasterio.open(path) as other:
        assert other.nodata is None


def test_copies_keep_place_nodata_and_colours(make, tmp_path):
    values = values_of("int16", (3, 60, 50))
    path = make("o.tif", values, nodata=-9, tiled=True, blockxsize=16, blockysize=16)
    told = []
    zelto.copy(path, tmp_path / "c.tif", window=(4, 6, 30, 40), bands=(3, 1), progress=told.append)
    with rasterio.open(tmp_path / "c.tif") as other, rasterio.open(path) as origin:
        assert np.array_equal(other.read(), values[[2, 0], 6:46, 4:34])
        assert other.nodata == -9
        window = rasterio.windows.Window(4, 6, 30, 40)
        assert other.transform == rasterio.windows.transform(window, origin.transform)
    assert told[-1] == 1.0
    with zelto.create(tmp_path / "t.tif", width=2, height=2) as table:
        table.set_colors(["#ff0000", (0, 255, 0), (0, 0, 255, 128)])
    zelto.copy(tmp_path / "t.tif", tmp_path / "u.tif")
    assert zelto.open(tmp_path / "u.tif").bands[0].colors[:2] == ((255, 0, 0, 255), (0, 255, 0, 255))


def test_pyramids_are_seen_at_once(make):
    path = make("big.tif", values_of("uint8", (1200, 1300)))
    with zelto.open(path) as scene:
        assert scene.bands[0].overviews == ()
        told = []
        scene.build_pyramids("average", progress=told.append)
        assert scene.bands[0].overviews[0] == (600, 650)
        assert told and told[-1] == 1.0
        with rasterio.open(path) as other:
            assert other.overviews(1)[0] == 2


def test_names_in_any_script(make, tmp_path):
    path = make("遥感 影像.tif", np.ones((3, 3), np.uint8))
    assert zelto.open(path).path == path
    odd = tmp_path / "caf\udce9.tif"
    zelto.copy(path, odd)
    assert zelto.open(odd).shape == (3, 3)


def test_sampled_statistics(make):
    values = np.arange(200, dtype=np.uint8).reshape(10, 20)
    sampled = zelto.open(make("s.tif", values)).sampled(1)
    assert sampled.minimum == 0 and sampled.maximum == 199
    assert sampled.mean == pytest.approx(values.mean())
    assert sampled.high == min(sampled.mean + 2 * sampled.standard_deviation, 199)


def test_real_containers_and_classes(data):
    nested = zelto.open(next((data / "raster" / "sci").glob("*.nc")))
    assert nested.count >= 1
    for subdataset in nested.subdatasets:
        assert zelto.open(subdataset.name).count >= 1


def test_an_open_raster_does_not_travel(scene_path):
    with pytest.raises(TypeError, match="path"):
        pickle.dumps(zelto.open(scene_path))
