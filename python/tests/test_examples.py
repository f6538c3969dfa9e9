"""The examples in the docstrings and the pages, and the types."""

import doctest
import importlib
import inspect
import os
import pkgutil
import re
import shutil
import subprocess
import sys
import typing

import numpy as np
import pytest
from conftest import SCENE, SOURCE

import zelto
import zelto.many

FLAGS = doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE


def modules():
    found = pkgutil.walk_packages(zelto.__path__, "zelto.")
    return ["zelto"] + [module.name for module in found if "_engine" not in module.name]


@pytest.fixture
def beside_the_scene(tmp_path, monkeypatch):
    shutil.copy(SCENE, tmp_path / "L7_ETMs.tif")
    monkeypatch.chdir(tmp_path)
    return tmp_path


@pytest.mark.parametrize("name", modules())
def test_docstrings(name, beside_the_scene):
    names = {"zelto": zelto, "many": zelto.many, "np": np}
    failed, _ = doctest.testmod(importlib.import_module(name), extraglobs=names, optionflags=FLAGS)
    assert failed == 0


def test_everything_public_has_a_docstring():
    for name in zelto.__all__:
        thing = getattr(zelto, name)
        if callable(thing) and name not in ("Point",):
            assert thing.__doc__, name
            examined = thing.__dict__ if isinstance(thing, type) else {}
            for member, value in examined.items():
                if callable(value) and not member.startswith("_") and not isinstance(value, type):
                    assert value.__doc__ or member == "to_dict", f"{name}.{member}"


def functions_and_methods():
    for module in (zelto, zelto.many):
        for name in module.__all__:
            thing = getattr(module, name)
            if inspect.isfunction(thing):
                yield f"{module.__name__}.{name}", thing
            for member, value in vars(thing).items() if inspect.isclass(thing) else ():
                method = getattr(value, "__func__", value)
                if inspect.isfunction(method) and not member.startswith("_"):
                    yield f"{module.__name__}.{name}.{member}", method
    for base in zelto.Raster.__mro__[:-1]:
        for member, value in vars(base).items():
            if inspect.isfunction(value) and not member.startswith("_"):
                yield f"Raster.{member}", value


def test_every_function_and_method_has_an_example():
    found = dict(functions_and_methods())
    assert len(found) > 60
    without = [name for name, function in found.items()
               if ">>> " not in (function.__doc__ or "") and not name.endswith(".to_dict")]
    assert without == []


def test_every_annotation_can_be_read_while_running():
    for module in (zelto, zelto.many):
        for name in module.__all__:
            subject = getattr(module, name)
            parts = [subject] if callable(subject) else []
            if inspect.isclass(subject):
                methods = [part.fget if isinstance(part, property) else part
                           for part in vars(subject).values()]
                parts += [method for method in methods if inspect.isfunction(method)]
            for part in parts:
                typing.get_type_hints(part)


def test_types():
    pytest.importorskip("mypy")
    package = SOURCE / "python" / "zelto"
    run = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", os.devnull,
                          "-p", "zelto"], cwd=package.parent, capture_output=True, text=True,
                         env={**os.environ, "MYPYPATH": str(package.parent)})
    assert run.returncode == 0, run.stdout + run.stderr


def test_the_stubs_name_what_the_module_has():
    stubs = (SOURCE / "python" / "zelto" / "_engine.pyi").read_text()
    named = set(re.findall(r"^(?:def|class) (\w+)", stubs, re.M))
    from zelto import _engine

    assert named == {name for name in dir(_engine) if not name.startswith("_")}
