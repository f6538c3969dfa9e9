"""A worker process: takes tasks from its standard input until that ends."""

from __future__ import annotations

import os
import signal
import sys
from types import FrameType
from typing import Optional

from ._workers import outcome_of, receive, send


def _stop(number: int, frame: Optional[FrameType]) -> None:
    # The engine takes back what is half done, as for Ctrl-C.
    raise KeyboardInterrupt


def main() -> None:
    # Ctrl-C reaches all processes of a terminal; the one that started this decides.
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    signal.signal(signal.SIGTERM, _stop)
    tasks = os.fdopen(os.dup(0), "rb")
    outcomes = os.fdopen(os.dup(1), "wb")
    # What else is printed must not come between.
    os.dup2(2, 1)
    sys.stdout = sys.stderr
    try:
        while True:
            number, task = receive(tasks)
            try:
                outcome = outcome_of(number, task)
            except Exception as error:
                send(outcomes, error)
                continue
            send(outcomes, outcome)
    except (EOFError, BrokenPipeError, KeyboardInterrupt):
        pass
