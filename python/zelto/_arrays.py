"""Types of arrays. Only checkers read this: NumPy's own types take a while to load."""

from typing import Any

import numpy as np
import numpy.typing as npt
from numpy.typing import DTypeLike

Array = npt.NDArray[Any]
Bytes = npt.NDArray[np.uint8]
Counts = npt.NDArray[np.int64]
Doubles = npt.NDArray[np.float64]
Mask = npt.NDArray[np.bool_]

__all__ = ["Array", "Bytes", "Counts", "DTypeLike", "Doubles", "Mask"]
