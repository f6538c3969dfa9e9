"""Types of arrays, made here because NumPy's module of types takes a while to load."""

from typing import Any, Union

import numpy as np

Array = np.ndarray[Any, np.dtype[Any]]
Bytes = np.ndarray[Any, np.dtype[np.uint8]]
Counts = np.ndarray[Any, np.dtype[np.int64]]
Doubles = np.ndarray[Any, np.dtype[np.float64]]
Mask = np.ndarray[Any, np.dtype[np.bool_]]
DTypeLike = Union[str, type, "np.dtype[Any]"]
