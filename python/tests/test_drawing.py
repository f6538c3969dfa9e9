"""Pictures against what their rules say."""

import numpy as np
import pytest
import rasterio
from rasterio.enums import ColorInterp

import zelto


def test_bytes_shown_as_they_are(scene_path, make):
    with zelto.open(scene_path) as scene:
        rows, columns = scene.shape
        # Planes show the value under a pixel's middle.
        planes, inside = scene.render_planes(bands=(4, 3, 2), size=(columns, rows), stretch="none")
        assert inside is None
        assert np.array_equal(planes, scene.read([4, 3, 2]))
    values = np.random.default_rng(1).integers(0, 256, (3, 64, 80)).astype(np.uint8)
    # Pictures show that under its first corner; these corners are whole numbers.
    picture = zelto.open(make("b.tif", values)).render(size=(80, 64), stretch="none")
    assert np.array_equal(picture[..., :3], np.moveaxis(values, 0, -1))
    assert (picture[..., 3] == 255).all()


def test_linear_stretch_of_16_bits(make):
    values = np.random.default_rng(3).integers(100, 5000, (30, 40)).astype(np.uint16)
    scene = zelto.open(make("l.tif", values))
    picture = scene.render(size=(40, 30), stretch="linear")
    low, high = values.min(), values.max()
    expected = (values.astype(float) - low) / (high - low) * 255
    assert np.abs(picture[..., 0] - expected).max() <= 1
    given = scene.render(size=(40, 30), stretch="linear", ranges=(1000, 2000))
    clipped = np.clip((values.astype(float) - 1000) / 1000 * 255, 0, 255)
    assert np.abs(given[..., 0] - clipped).max() <= 1


def test_a_drawing_does_not_depend_on_those_before(scene_path):
    looks = [
        {"stretch": "stddev"},
        {"stretch": "equalize"},
        {"stretch": "autolevels"},
        {"bands": 4, "ramp": "viridis"},
        {"stretch": "wallis", "bands": (3, 2, 1)},
        {"stretch": "zoom", "low": 20, "high": 200},
        {"stretch": "custom-equalize"},
        {"table": np.arange(255, -1, -1)},
        {"bands": 1, "stretch": "none", "classes": [(0, 70, (255, 0, 0)), (70, 256, "#00ff00")]},
        {"hue": 0.2, "saturation": 0.3, "contrast": 0.4, "intensity": -0.2, "transparency": 0.5},
    ]
    alone = [zelto.open(scene_path).render(size=120, **look) for look in looks]
    with zelto.open(scene_path) as scene:
        for order in (range(len(looks)), reversed(range(len(looks)))):
            for number in order:
                assert np.array_equal(scene.render(size=120, **looks[number]), alone[number]), (
                    looks[number])


def test_classes_and_tables_give_their_colours(make, tmp_path):
    path = make("k.tif", np.uint8([[1, 2], [2, 3]]))
    picture = zelto.open(path).render(
        size=(2, 2), classes=[(1, 2, (10, 20, 30)), (2, 3, "#405060", "field")])
    assert picture[0, 0].tolist() == [10, 20, 30, 255]
    assert picture[0, 1].tolist() == picture[1, 0].tolist() == [0x40, 0x50, 0x60, 255]
    assert picture[1, 1, 3] == 0
    with zelto.create(tmp_path / "t.tif", width=2, height=1) as table:
        table.set_colors([(9, 8, 7), (1, 2, 3)])
        table.write(np.uint8([[0, 1]]))
    shown = zelto.open(tmp_path / "t.tif").render(size=(2, 1))
    assert shown[0, :, :3].tolist() == [[9, 8, 7], [1, 2, 3]]


def test_a_mask_leaves_out_what_is_outside(scene_path):
    with zelto.open(scene_path) as scene:
        left, bottom, right, top = scene.bounds
        middle = (left + right) / 2
        west = zelto.Rectangle(left, bottom, middle, top)
        picture = scene.render(size=(349, 352), area=west)
        assert (picture[:, :170, 3] == 255).all() and (picture[:, 180:, 3] == 0).all()
        black = scene.render(size=(349, 352), area=west, outside="black")
        assert (black[:, 180:, :3] == 0).all() and (black[..., 3] == 255).all()
        planes, inside = scene.render_planes(size=(349, 352), area=west)
        assert inside.dtype == bool and inside[:, :170].all() and not inside[:, 180:].any()
        assert (planes[:, ~inside] == 0).all()


def test_another_reference_system(scene_path, tmp_path, run_zelto):
    with zelto.open(scene_path) as scene:
        picture = scene.render(crs="EPSG:4326", size=200)
        assert max(picture.shape[:2]) == 200
        warped = zelto.open(scene_path, crs="EPSG:4326")
        assert -36 < warped.bounds.left < -34
        # Of its own grid a warped raster is drawn by its pixels, else by those of the picture.
        assert warped.render(size=200).shape == picture.shape
    assert (picture[..., 3] == 0).any() and (picture[..., 3] == 255).mean() > 0.9
    out = tmp_path / "out.tif"
    run_zelto("render", "--srs", "EPSG:4326", "--size", "x200", scene_path, out)
    assert np.array_equal(np.moveaxis(zelto.open(out).read(), 0, -1), picture)


def test_colours_stand_where_the_file_says(make):
    path = make("bgr.tif", np.uint8([[[30]], [[20]], [[10]]]), photometric="RGB")
    with rasterio.open(path, "r+") as file:
        file.colorinterp = [ColorInterp.blue, ColorInterp.green, ColorInterp.red]
    with zelto.open(path) as scene:
        assert scene.render(size=1, stretch="none").tolist() == [[[10, 20, 30, 255]]]
        assert scene.render(size=1, stretch="none", bands=(1, 2, 3)).tolist() == [
            [[30, 20, 10, 255]]]


def test_a_picture_is_see_through_where_its_file_is(make, tmp_path):
    values = np.uint8([[[10, 40]], [[20, 50]], [[30, 60]], [[255, 128]]])
    alpha = make("rgba.tif", values, photometric="RGB", alpha="YES")
    look = {"size": (2, 1), "stretch": "none"}
    with zelto.open(alpha) as scene:
        assert scene.render(**look).tolist() == [[[10, 20, 30, 255], [40, 50, 60, 128]]]
        faded = scene.render(transparency=0.5, **look)
        assert faded[0, :, 3].tolist() == [128, 64]
        everything = zelto.AreaOfInterest(zelto.Rectangle(*scene.bounds))
        assert scene.render(area=everything, **look)[0, :, 3].tolist() == [255, 128]
    masked = make("masked.tif", values[:3])
    with rasterio.Env(GDAL_TIFF_INTERNAL_MASK=True), rasterio.open(masked, "r+") as file:
        file.write_mask(np.uint8([[0, 255]]))
    with zelto.open(masked) as scene:
        assert scene.render(**look)[0, :, 3].tolist() == [0, 255]
        scene.save_picture(tmp_path / "picture.png", **look)
    assert zelto.open(tmp_path / "picture.png").read(4).tolist() == [[0, 255]]


def test_views(scene_path):
    with zelto.open(scene_path) as scene:
        assert scene.render().shape == (352, 349, 4)
        assert scene.render(size=(100, None)).shape == (101, 100, 4)
        assert scene.render(size=88).shape == (88, 87, 4)
        x, y = scene.xy(100, 100)
        around, _ = scene.render_planes(center=(x, y), size=(11, 11), bands=1, stretch="none")
        assert np.array_equal(around[0], scene.read(1, window=(95, 95, 11, 11)))
        assert scene.render(center=(x, y), scale=57, size=(20, 10)).shape == (10, 20, 4)


def test_pictures_in_files(scene_path, tmp_path):
    with zelto.open(scene_path) as scene:
        picture = scene.render(bands=(3, 2, 1), size=100)
        scene.save_picture(tmp_path / "p.tif", bands=(3, 2, 1), size=100)
        zelto.save_picture(tmp_path / "p.png", picture)
        with rasterio.open(tmp_path / "p.tif") as file:
            assert np.array_equal(np.moveaxis(file.read([1, 2, 3]), 0, -1), picture[..., :3])
            assert tuple(file.bounds) == pytest.approx(tuple(scene.bounds))
            assert file.crs == rasterio.crs.CRS.from_wkt(scene.crs)
        with rasterio.open(tmp_path / "p.png") as file:
            assert np.array_equal(np.moveaxis(file.read([1, 2, 3]), 0, -1), picture[..., :3])
        assert scene._repr_png_().startswith(b"\x89PNG")


def test_compositions(make, scene_path):
    scene = zelto.open(scene_path)
    composed = zelto.compose((scene, 4), (scene_path, 3), (scene_path, 2))
    assert composed.shape == scene.shape and composed.bounds == scene.bounds
    picture = composed.render(size=(349, 352), stretch="none")
    assert np.array_equal(picture, scene.render(bands=(4, 3, 2), size=(349, 352), stretch="none"))
    far = make("far.tif", np.ones((5, 5), np.uint8), origin=(0, 0))
    with pytest.raises(zelto.Error):
        zelto.compose((scene_path, 1), (far, 1), (scene_path, 2))
    with pytest.raises(IndexError):
        zelto.compose((scene_path, 1), (scene_path, 7), (scene_path, 2))
