"""Progress of long work."""

from __future__ import annotations

import sys
import time
from typing import Callable, Optional, TextIO, Union

ProgressCallable = Callable[[float], object]
#: A callable that takes a fraction of 1; True for a bar; None or False for nothing.
Progress = Union[None, bool, ProgressCallable]


class Bar:
    """A bar with the time left, on a terminal or in a notebook's output."""

    WIDTH = 30

    def __init__(self, label: str = "", stream: Optional[TextIO] = None) -> None:
        self._label = label
        self._stream = stream if stream is not None else sys.stderr
        self._begin = time.monotonic()
        self._shown = ""
        self._last = 0.0

    def __call__(self, fraction: float) -> None:
        if fraction < self._last:  # the next stage of the work
            self._begin = time.monotonic()
        self._last = fraction
        done = int(fraction * self.WIDTH)
        line = f"{self._label}[{'#' * done}{'.' * (self.WIDTH - done)}] {fraction:4.0%}{self._left(fraction)}"
        if line == self._shown:
            return
        self._stream.write("\r" + line.ljust(len(self._shown)))
        if fraction >= 1.0:
            self._stream.write("\n")
        self._stream.flush()
        self._shown = line

    def _left(self, fraction: float) -> str:
        spent = time.monotonic() - self._begin
        if not 0.0 < fraction < 1.0 or spent < 1.0:
            return ""
        seconds = round(spent * (1.0 - fraction) / fraction)
        return f" {seconds // 60}:{seconds % 60:02d} left"


def as_callable(progress: Progress, label: str = "") -> Optional[ProgressCallable]:
    if progress is None or progress is False:
        return None
    if progress is True:
        return Bar(label)
    if not callable(progress):
        raise TypeError("progress is a callable, True or None")
    return progress
