"""Recipes: what makes a picture, kept and used again."""

import json
import pickle

import numpy as np
import pytest

import zelto
from zelto import many
from zelto.many.__main__ import main as command

LOOKS = [
    {"bands": (4, 3, 2), "stretch": "percent", "clip": (1, 99)},
    {"bands": 4, "ramp": "viridis", "stretch": "stddev", "gamma": 1.4},
    {"stretch": "custom-equalize"},
    {"table": np.arange(255, -1, -1)},
    {"stretch": "wallis", "bands": (3, 2, 1), "wallis_model": 1},
    {"bands": 1, "stretch": "none", "classes": [(0, 70, (255, 0, 0)), (70, 256, "#00ff00", "x")]},
    {"hue": 0.2, "saturation": 0.3, "contrast": 0.4, "intensity": -0.2, "transparency": 0.5},
    {"stretch": "equalize", "stretch_to": "view", "box": (290000, 9112000, 295000, 9118000)},
    {"stretch": "linear", "crs": "EPSG:4326"},
]


@pytest.mark.parametrize("look", LOOKS)
def test_by_a_recipe_the_picture_is_the_same(scene_path, tmp_path, look):
    with zelto.open(scene_path) as scene:
        wanted = scene.render(size=120, **look)
        recipe = scene.recipe(size=120, **look)
        assert np.array_equal(scene.render(recipe=recipe), wanted)
        recipe.save(tmp_path / "look.json")
        before = scene.render(size=50)
    with zelto.open(scene_path) as again:
        assert np.array_equal(again.render(recipe=tmp_path / "look.json"), wanted)
        assert np.array_equal(again.render(recipe=recipe.to_dict()), wanted)
        # What a recipe set does not stay.
        assert np.array_equal(again.render(size=50), before)


def test_the_area_and_what_is_outside_belong_to_it(scene_path, tmp_path):
    area = tmp_path / "area.aif"
    zelto.AreaOfInterest(zelto.Ellipse(290000, 9112000, 296000, 9118000)).save(area)
    with zelto.open(scene_path) as scene:
        wanted = scene.render(size=90, area=area, outside="black", stretch_to="area")
        planes, inside = scene.render_planes(size=90, area=area, stretch_to="area")
        recipe = scene.recipe(size=90, area=area, outside="black", stretch_to="area")
        assert (recipe.area, recipe.outside) == (str(area), "black")
        assert np.array_equal(scene.render(recipe=recipe), wanted)
        found, marks = scene.render_planes(recipe=recipe)
        assert np.array_equal(found, planes) and np.array_equal(marks, inside)
        # The path is kept as it is seen from the recipe's file.
        recipe.save(tmp_path / "look.json")
        assert json.loads((tmp_path / "look.json").read_text())["mask"]["area"] == "area.aif"
        assert zelto.Recipe.load(tmp_path / "look.json").area == str(area)
        with pytest.raises(TypeError, match="save it and give that"):
            scene.recipe(area=zelto.AreaOfInterest(area))


def test_what_it_says(scene_path):
    with zelto.open(scene_path) as scene:
        recipe = scene.recipe(bands=(4, 3, 2), box=(290000, 9112000, 295000, 9117000), size=40)
        assert recipe.bands == (4, 3, 2)
        assert recipe.box == zelto.Bounds(290000, 9112000, 295000, 9117000)
        assert (recipe.size, recipe.crs, recipe.area) == ((40, 40), "", None)
        assert recipe.outside == "transparent"
        assert repr(recipe) == "<zelto.Recipe of bands 4, 3, 2>"
        assert scene.recipe(crs="EPSG:4326").crs == "EPSG:4326"
        assert zelto.open(scene_path, crs="EPSG:4326").recipe(size=9).crs == "EPSG:4326"
        assert recipe.to_dict()["view"]["width"] == 40
        look = recipe.without_place()
        assert (look.box, look.size, look.bands) == (None, None, (4, 3, 2))
        same = pickle.loads(pickle.dumps(recipe))
        assert same == recipe and hash(same) == hash(recipe) and recipe != look
        assert recipe != 3 and zelto.Recipe(recipe.to_json()) == recipe


def test_the_place_may_be_another(scene_path):
    with zelto.open(scene_path) as scene:
        recipe = scene.recipe(stretch="percent", box=(290000, 9112000, 295000, 9117000), size=40)
        assert scene.render(recipe=recipe, size=80).shape == (80, 80, 4)
        assert np.array_equal(
            scene.render(recipe=recipe, box=scene.bounds, size=60),
            scene.render(stretch="percent", size=60),
        )
        assert np.array_equal(
            scene.render(recipe=recipe.without_place(), size=60),
            scene.render(stretch="percent", size=60),
        )
        centre = {"center": (292000, 9115000), "scale": 30, "size": 16}
        assert np.array_equal(
            scene.render(recipe=recipe, **centre), scene.render(stretch="percent", **centre)
        )


@pytest.mark.parametrize("other", [
    {"bands": 1}, {"stretch": "none"}, {"clip": (2, 9)}, {"gamma": 2}, {"ramp": "heat"},
    {"hue": 0.1}, {"exact": True}, {"area": "area.aif"}, {"outside": "black"},
    {"crs": "EPSG:4326"}, {"table": np.arange(256)}, {"transparency": 0.5},
])
def test_beside_it_nothing_says_otherwise(scene_path, other):
    with zelto.open(scene_path) as scene:
        recipe = scene.recipe(size=20)
        for draw in (scene.render, lambda **drawing: scene.save_picture("no.png", **drawing)):
            with pytest.raises(TypeError, match=next(iter(other)) + ": beside a recipe"):
                draw(recipe=recipe, **other)
        with pytest.raises(TypeError, match="beside a recipe"):
            many.render_all([scene_path], "nowhere", recipe=recipe, **other)


def test_what_is_no_recipe_is_told(scene_path, tmp_path):
    with zelto.open(scene_path) as scene:
        recipe = scene.recipe(size=20)
        with pytest.raises(TypeError, match="no argument 'recipe'"):
            scene.recipe(recipe=recipe)
        with pytest.raises(TypeError, match="no argument 'colour'"):
            scene.recipe(colour="red")
        for wrong in (3, b"{}", ["a"]):
            with pytest.raises(TypeError):
                zelto.Recipe(wrong)
            with pytest.raises(TypeError):
                scene.render(recipe=wrong)
        for wrong in ("", "{", "[]", "{}"):
            with pytest.raises(ValueError):
                zelto.Recipe(wrong)
        content = recipe.to_dict()
        content["view"]["depth"] = 3
        with pytest.raises(ValueError, match="view.depth: a recipe has no such member"):
            zelto.Recipe(content)
        content["view"]["depth"] = float("nan")
        with pytest.raises(ValueError):
            zelto.Recipe(content)
        missing = tmp_path / "missing.json"
        with pytest.raises(zelto.Error) as told:
            scene.render(recipe=missing)
        assert told.value.filename == str(missing)
        (tmp_path / "none.json").write_text("{}")
        with pytest.raises(zelto.Error, match="none.json"):
            zelto.Recipe.load(tmp_path / "none.json")
        with pytest.raises(zelto.Error) as told:
            recipe.save(tmp_path / "no folder" / "look.json")
        assert told.value.filename == str(tmp_path / "no folder" / "look.json")


def test_other_scenes_show_equal_values_in_equal_colours(make):
    dark = np.arange(200, dtype=np.uint16).reshape(10, 20)
    first = zelto.open(make("first.tif", dark))
    second = zelto.open(make("second.tif", dark + 100))
    look = first.recipe(stretch="linear", size=(20, 10)).without_place()
    shown = second.render(recipe=look, size=(20, 10))[..., 0]
    # Values of 0 to 199 are shown as 0 to 255.
    expected = np.minimum((dark + 100) / 199 * 255, 255)
    assert np.abs(shown - expected).max() <= 1
    three = zelto.open(make("three.tif", np.stack([dark] * 3)))
    with pytest.raises(zelto.Error, match="first.tif"):
        first.render(recipe=three.recipe())
    assert np.array_equal(first.render(size=10), zelto.open(first.path).render(size=10))


def test_many_scenes_by_one_recipe(make, tmp_path):
    values = np.arange(200, dtype=np.uint16).reshape(10, 20)
    paths = [make(f"m{i}.tif", values + 50 * i) for i in range(3)]
    look = zelto.open(paths[0]).recipe(stretch="linear").without_place()
    look.save(tmp_path / "look.json")
    made = many.render_all(
        paths, tmp_path / "out", format="tif", recipe=tmp_path / "look.json", jobs=2
    )
    for path, result in zip(paths, made):
        assert np.array_equal(
            zelto.open(result.value).read(1), zelto.open(path).render(recipe=look)[..., 0]
        )


def test_the_command_for_many_takes_one(make, tmp_path, monkeypatch, capsys):
    path = make("m.tif", np.arange(200, dtype=np.uint16).reshape(10, 20))
    look = tmp_path / "look.json"
    zelto.open(path).recipe(stretch="linear", size=(10, 5)).save(look)
    words = ["zelto", "render", "--recipe", str(look), "--jobs", "1", path, str(tmp_path / "out")]
    monkeypatch.setattr("sys.argv", words)
    assert command() == 0
    made = zelto.open(tmp_path / "out" / "m.png").read()
    wanted = zelto.open(path).render(recipe=look)[..., :3]
    assert np.array_equal(np.moveaxis(made[:3], 0, -1), wanted)
    monkeypatch.setattr("sys.argv", [*words, "--ramp", "heat"])
    assert command() == 2
    assert "ramp: beside a recipe" in capsys.readouterr().err


def test_the_command_line_makes_and_takes_the_same(scene_path, tmp_path, run_zelto):
    options = ["--bands", "4,3,2", "--stretch", "percent", "--size", "90x", "--srs", "EPSG:4326"]
    look = tmp_path / "look.json"
    run_zelto("render", scene_path, tmp_path / "a.tif", "--save-recipe", look, *options)
    with zelto.open(scene_path) as scene:
        scene.save_picture(tmp_path / "b.tif", recipe=look)
        assert zelto.Recipe.load(look) == scene.recipe(
            bands=(4, 3, 2), stretch="percent", size=(90, None), crs="EPSG:4326")
        scene.recipe(bands=5, ramp="heat", size=70).save(tmp_path / "heat.json")
        heat = scene.render(recipe=tmp_path / "heat.json")
    assert (tmp_path / "a.tif").read_bytes() == (tmp_path / "b.tif").read_bytes()
    run_zelto("render", scene_path, tmp_path / "c.tif", "--recipe", tmp_path / "heat.json")
    picture = zelto.open(tmp_path / "c.tif").read()
    assert np.array_equal(np.moveaxis(picture[:3], 0, -1), heat[..., :3])
