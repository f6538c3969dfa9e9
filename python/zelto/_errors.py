"""What goes wrong."""

from __future__ import annotations

from typing import Optional, Tuple


class Error(OSError):
    """The engine could not do what it was asked: which file, and why.

    >>> import zelto
    >>> try:
    ...     zelto.open("missing.tif")
    ... except zelto.Error as error:
    ...     print(error.filename, "-", error.reason)
    missing.tif - No such file or directory
    """

    #: Why, in one line.
    reason: str

    def __init__(self, filename: Optional[str], reason: str) -> None:
        super().__init__(reason if filename is None else f"{filename}: {reason}")
        self.filename = filename
        self.reason = reason

    def __str__(self) -> str:
        return self.reason if self.filename is None else f"{self.filename}: {self.reason}"

    def __reduce__(self) -> Tuple[type, Tuple[Optional[str], str]]:
        return (type(self), (self.filename, self.reason))
