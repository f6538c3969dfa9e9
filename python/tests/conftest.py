"""What the tests share: the sample scene, rasters made for a test, data that may be missing."""

import os
import shutil
import subprocess
from pathlib import Path

import numpy as np
import pytest
import rasterio
from rasterio.transform import from_origin

import zelto

SOURCE = Path(os.environ.get("ZELTO_SOURCE", Path(__file__).parents[2]))
SCENE = SOURCE / "samples" / "L7_ETMs.tif"


@pytest.fixture
def scene_path(tmp_path):
    """A copy of the sample scene, so that nothing is written beside the original."""
    return shutil.copy(SCENE, tmp_path / "L7_ETMs.tif")


@pytest.fixture
def make(tmp_path):
    """Makes a raster of bands × rows × columns without the engine."""

    def write(name, values, *, nodata=None, crs="EPSG:32650", pixel=10.0, origin=(500000, 4000000),
              transform=None, **options):
        values = np.asarray(values)
        if values.ndim == 2:
            values = values[np.newaxis]
        path = tmp_path / name
        place = transform or from_origin(*origin, pixel, pixel)
        with rasterio.open(path, "w", driver="GTiff", count=values.shape[0],
                           height=values.shape[1], width=values.shape[2], dtype=values.dtype,
                           nodata=nodata, crs=crs, transform=place, **options) as made:
            made.write(values)
        return str(path)

    return write


@pytest.fixture
def data():
    """The folder of real data."""
    folder = os.environ.get("ZELTO_TEST_DATA")
    if not folder:
        pytest.skip("ZELTO_TEST_DATA is not set")
    return Path(folder)


@pytest.fixture
def run_zelto():
    """Runs the command line of the same build."""
    program = Path(zelto.__file__).parents[2] / "bin" / "zelto"
    if not program.exists():
        pytest.skip("the command line is not beside the package")

    def run(*words):
        subprocess.run([program, "--quiet", *words], check=True)

    return run
