"""What the package raises."""

from __future__ import annotations


class Error(Exception):
    """Something that could not be done.

    ``code`` is a number of the library: for reading and for OpenOCD one of ``bscan::ResultCode``,
    such as -10 for a file that cannot be opened. ``str()`` gives the reason in a sentence.
    """

    code: int

    def __init__(self, code: int, sentence: str) -> None:
        super().__init__(code, sentence)
        self.code = code

    def __str__(self) -> str:
        return str(self.args[1])


class DriveError(Error):
    """A pin that cannot be driven or released as was asked; ``code`` is a ``bscan::DriveCode``."""


class ChainError(Error):
    """What a scan chain refuses, or hardware does not do; ``code`` is a ``bscan::ChainCode``."""


class UnknownNameError(Error, KeyError):
    """No pin, port, instruction or device has the name. Also a ``KeyError``."""

    def __init__(self, sentence: str) -> None:
        super().__init__(0, sentence)
