"""The installed package works by itself."""

import os
import subprocess
import sys
from pathlib import Path

import pytest
from conftest import SCENE

import zelto


def test_an_installation_is_complete(tmp_path):
    build = Path(zelto.__path__[0]).parents[1]
    if not (build / "cmake_install.cmake").exists():
        pytest.skip("the package is not in a build folder")
    done = subprocess.run(["cmake", "--install", str(build), "--prefix", str(tmp_path)],
                          capture_output=True, text=True)
    if "cannot find" in done.stderr:
        pytest.skip("not everything is built")
    assert done.returncode == 0, done.stderr
    (package,) = tmp_path.rglob("zelto/__init__.py")
    assert (package.parent / "py.typed").exists() and (package.parent / "many").is_dir()
    script = (f"import zelto\nscene = zelto.open({str(SCENE)!r})\nscene.render(size=10)\n"
              "print([line.split()[-1] for line in open('/proc/self/maps') if 'libzelto' in line][0])")
    environment = {**os.environ, "PYTHONPATH": str(package.parents[1])}
    output = subprocess.run([sys.executable, "-c", script], env=environment, capture_output=True,
                            text=True, check=True).stdout
    assert output.startswith(str(tmp_path))


def test_a_picture_needs_no_more_than_what_draws():
    script = ("import sys, zelto\n"
              f"zelto.open({str(SCENE)!r}).render(size=10)\n"
              "print(*sys.modules)")
    loaded = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                            check=True).stdout.split()
    assert "numpy" in loaded and "zelto._raster" in loaded
    assert not {"numpy.typing", "tempfile", "dataclasses", "zelto._area", "zelto._statistics",
                "zelto.many"} & set(loaded)


def test_names_are_there_before_they_are_loaded():
    assert set(zelto.__all__) <= set(dir(zelto))
    for name in zelto.__all__:
        assert getattr(zelto, name) is getattr(zelto, name)
    script = "import zelto; zelto.many.statistics; from zelto import many; print(many.__name__)"
    assert subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                          check=True).stdout == "zelto.many\n"
    with pytest.raises(AttributeError, match="no attribute 'nonsense'"):
        zelto.nonsense
    everything = {}
    exec("from zelto import *", everything)
    assert set(zelto.__all__) <= set(everything)
