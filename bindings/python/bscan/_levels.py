"""Levels that are asked for, and bits."""

from __future__ import annotations

from collections.abc import Sequence
from typing import Union

#: 0, 1, "Z" to release, a number for a vector, or one level for each element from left to right.
LevelRequest = Union[int, str, None, Sequence[Union[int, str]]]

# How levels are passed to the library.
_NUMBERS = {0: 0, 1: 1, "0": 0, "1": 1, "Z": 2, "z": 2, None: 2}


def _one(level: int | str | None) -> int:
    if isinstance(level, (int, str)) or level is None:
        if level in _NUMBERS:
            return _NUMBERS[level]
    raise ValueError(f"{level!r} is no level: 0, 1, or 'Z' to release")


def requested_levels(request: LevelRequest, ports: list[str]) -> list[int]:
    """The level for each of some elements, from left to right, by the names of their ports.

    A number goes to a vector with its most significant bit at the left end, as the file declares
    it; so do the characters of a text and the items of a sequence. Elements of several ports, as
    of ``IO*``, take one level for all of them.
    """
    count = len(ports)
    if isinstance(request, int) and count > 1 and len(set(ports)) == 1:
        if not 0 <= request < 1 << count:
            raise ValueError(f"{request} does not fit into {count} bits")
        return [request >> place & 1 for place in reversed(range(count))]
    if isinstance(request, int) or request is None or request in ("Z", "z"):
        return [_one(request)] * count  # type: ignore[arg-type]
    if len(request) != count:
        raise ValueError(f"{request!r} has {len(request)} levels for {count} pins")
    return [_one(level) for level in request]


class Vector(bytes):
    """A scan vector: cell n is the bit ``0x80 >> n % 8`` of byte n // 8. Cell 0 is next to TDO, so
    its bit goes in first."""

    length: int
    """The number of cells; bits behind the last one are 0."""

    def __new__(cls, data: bytes, length: int) -> Vector:
        vector = super().__new__(cls, data)
        vector.length = length
        return vector

    @property
    def bits(self) -> str:
        """A character 0 or 1 for each cell, cell 0 first."""
        return "".join(f"{byte:08b}" for byte in self)[:self.length]

    def __repr__(self) -> str:
        return f"<Vector of {self.length} cells: {self.bits}>"


#: A captured vector: 0, 1 and x for each cell, cell 0 first, as text or as numbers (None for x);
#: or bytes in the order of ``Vector``.
Capture = Union[str, bytes, Sequence[Union[int, None]]]


def capture_bytes(capture: Capture, length: int) -> bytes:
    """One byte for each cell, cell 0 first: 0, 1, or 2 for unknown."""
    if isinstance(capture, (bytes, bytearray)):
        if len(capture) != (length + 7) // 8:
            raise ValueError(f"a vector of {length} cells has {(length + 7) // 8} bytes, "
                             f"not {len(capture)}")
        text = "".join(f"{byte:08b}" for byte in capture)[:length]
    elif isinstance(capture, str):
        text = "".join(capture.replace("_", " ").split()).lower()
    else:
        text = "".join("x" if bit is None else str(int(bit)) for bit in capture)
    if set(text) - set("01x"):
        raise ValueError("a capture is written with 0, 1 and x, cell 0 first")
    if len(text) != length:
        raise ValueError(f"the boundary register has {length} cells, the capture {len(text)}")
    return text.translate({48: 0, 49: 1, 120: 2}).encode()
