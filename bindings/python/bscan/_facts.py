"""What a file says, as small objects. Their fields are those of the JSON of ``bscan show``."""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import asdict, dataclass
from typing import Any, Union

#: The numbers 0 and 1, or a word of the language: "X" for unknown or any, "Z" for high impedance,
#: "PULL0", "PULL1", "WEAK0" and "WEAK1" for a pin whose driver is off.
Level = Union[int, str]


def level_of(word: str) -> Level:
    return int(word) if word in ("0", "1") else word


@dataclass(frozen=True)
class Pin:
    """A port element and the package pin that it is bonded to."""

    port: str
    """Its name as people write it, such as ``TDI`` or ``D(3)``."""
    name: str
    """The name of its port."""
    index: int | None
    """Its index in a vector, as the file declares it; None for a single bit."""
    pin: str | None
    """Designator of the package pin, such as ``B3``; None without one."""
    number: int | None
    """Number of the package pin, from 1; None without one."""
    mode: str
    """in, out, inout, buffer, or linkage for whatever carries no signal of the test logic."""
    declared_mode: str
    """The mode as declared, with those that came in 2013, such as ``power_pos``."""
    cells: tuple[int, ...]
    """Numbers of the boundary cells that serve it."""
    leg: str | None
    """positive or negative, of a differential pair."""

    def __str__(self) -> str:
        return self.port

    def __repr__(self) -> str:
        where = f"pin {self.pin}" if self.pin else "no pin"
        cells = f", cells {', '.join(map(str, self.cells))}" if self.cells else ""
        return f"<Pin {self.port}: {where}, {self.declared_mode}{cells}>"

    def to_dict(self) -> dict[str, Any]:
        return {**self.__dict__, "cells": list(self.cells)}


@dataclass(frozen=True)
class Port:
    """A declared port; ``port[3]`` is its element of the declared index 3."""

    name: str
    mode: str
    """As declared, in lower case."""
    range: tuple[int, int] | None
    """Left and right index as declared: (7, 4) for ``7 downto 4``; None for a single bit."""
    pins: tuple[Pin, ...]
    """Its elements from left to right."""

    def __len__(self) -> int:
        return len(self.pins)

    def __iter__(self) -> Iterator[Pin]:
        return iter(self.pins)

    def __getitem__(self, index: int) -> Pin:
        left, right = self.range if self.range else (0, 0)
        place = index - left if left <= right else left - index
        if min(left, right) <= index <= max(left, right) and place < len(self.pins):
            return self.pins[place]
        raise IndexError(f"{self.name} has no index {index}: it goes from {left} to {right}")

    def __str__(self) -> str:
        return self.name

    def __repr__(self) -> str:
        left, right = self.range if self.range else (0, 0)
        way = "to" if left <= right else "downto"
        span = f"({left} {way} {right})" if self.range else ""
        return f"<Port {self.name}{span}: {self.mode}>"

    def to_dict(self) -> dict[str, Any]:
        return {"name": self.name, "mode": self.mode, "range": self.range,
                "pins": [pin.port for pin in self.pins]}


@dataclass(frozen=True)
class Cell:
    """A cell of the boundary register."""

    cell: int
    """Its number; cell 0 is the one next to TDO."""
    type: str
    """Such as ``BC_1``; unknown for a type of the file's own."""
    type_name: str
    """The same, with a type of the file's own by its name."""
    port: str | None
    """The port element that it serves; None for none."""
    function: str
    safe: Level
    control: int | None
    """Number of the cell that turns its driver on and off."""
    disable: Level | None
    """Value of the control cell that turns the driver off."""
    result: Level | None
    """What the pin shows then."""
    remark: str | None
    """The comment behind the entry, without blanks and dashes."""

    @property
    def number(self) -> int:
        """The same as ``cell``."""
        return self.cell

    def __repr__(self) -> str:
        port = f" of {self.port}" if self.port else ""
        control = f", control cell {self.control}" if self.control is not None else ""
        return f"<Cell {self.cell}: {self.type_name} {self.function}{port}{control}>"

    def to_dict(self) -> dict[str, Any]:
        def word(level: Level | None) -> str | None:
            return None if level is None else str(level)

        return {**self.__dict__, "safe": word(self.safe), "disable": word(self.disable),
                "result": word(self.result)}


@dataclass(frozen=True)
class Instruction:
    """An instruction and the register that it puts between TDI and TDO."""

    instruction: str
    opcodes: tuple[str, ...]
    """Leftmost bit next to TDI; several are alternatives."""
    register: str | None
    """By REGISTER_ACCESS or, for instructions of the standard, by the standard."""
    register_length: int | None
    """In bits."""
    register_told_by: str | None
    """file or standard."""
    captures: str | None
    """What the register captures, leftmost bit next to TDI."""
    private: bool
    """Whether users must not load it."""

    @property
    def name(self) -> str:
        """The same as ``instruction``."""
        return self.instruction

    def __repr__(self) -> str:
        register = f", selects {self.register}" if self.register else ""
        private = ", private" if self.private else ""
        opcodes = " or ".join(self.opcodes)
        return f"<Instruction {self.instruction}: {opcodes}{register}{private}>"

    def to_dict(self) -> dict[str, Any]:
        return {**self.__dict__, "opcodes": list(self.opcodes)}


@dataclass(frozen=True)
class Register:
    """A register of REGISTER_ACCESS."""

    name: str
    length: int | None
    """In bits, when the file tells."""
    instructions: tuple[str, ...]

    def __repr__(self) -> str:
        length = f" of {self.length} bits" if self.length else ""
        return f"<Register {self.name}{length}: {', '.join(self.instructions)}>"

    def to_dict(self) -> dict[str, Any]:
        length = f"[{self.length}]" if self.length is not None else ""
        return {"register": self.name + length, "instructions": list(self.instructions)}


@dataclass(frozen=True)
class Pair:
    """A differential pair: ports in upper case, and the cells of its legs."""

    positive: str
    negative: str
    positive_cell: int | None
    negative_cell: int | None

    def to_dict(self) -> dict[str, Any]:
        return dict(self.__dict__)


@dataclass(frozen=True)
class Code:
    """A code of 32 bits, such as an IDCODE."""

    bits: str
    """Leftmost bit next to TDI; X for a bit that may be either."""

    @property
    def hex(self) -> str | None:
        """Such as ``0x20030FFD``, with X for four bits that may be any; None when only some of
        four are known, and for another length."""
        digits = []
        for place in range(0, len(self.bits), 4):
            four = self.bits[place:place + 4]
            if set(four) <= set("01"):
                digits.append(f"{int(four, 2):X}")
            elif "0" in four or "1" in four:
                return None
            else:
                digits.append("X")
        return "0x" + "".join(digits) if len(self.bits) == 32 else None

    @property
    def value(self) -> int | None:
        """The code as a number; None when a bit may be either."""
        return self._field(0, len(self.bits))

    def _field(self, first: int, count: int) -> int | None:
        bits = self.bits[first:first + count]
        return int(bits, 2) if bits and set(bits) <= set("01") else None

    def matches(self, value: int) -> bool:
        """Whether a code that was read from a device is this one."""
        bits = f"{value:0{len(self.bits)}b}"
        return len(bits) == len(self.bits) and all(
            mine in (read, "X", "x") for mine, read in zip(self.bits, bits))

    def __str__(self) -> str:
        return self.hex or "0b" + self.bits

    def to_dict(self) -> dict[str, Any]:
        return {"bits": self.bits, "hex": self.hex}


class Idcode(Code):
    """An IDCODE and its fields; a field is None where its bits may be either."""

    def _part_of_whole(self, first: int, count: int) -> int | None:
        return self._field(first, count) if len(self.bits) == 32 else None

    @property
    def version(self) -> int | None:
        return self._part_of_whole(0, 4)

    @property
    def part(self) -> int | None:
        return self._part_of_whole(4, 16)

    @property
    def manufacturer(self) -> int | None:
        """As 1149.1 numbers makers: the bank of JEP106 and seven bits of its code."""
        return self._part_of_whole(20, 11)

    def __repr__(self) -> str:
        return (f"<Idcode {self}: version {self.version}, part {self.part}, "
                f"manufacturer {self.manufacturer}>")

    def to_dict(self) -> dict[str, Any]:
        return {**super().to_dict(), "version": self.version, "part": self.part,
                "manufacturer": self.manufacturer}


@dataclass(frozen=True)
class PortPin:
    """A port as a statement names it, and its package pin."""

    port: str
    pin: str | None

    def __str__(self) -> str:
        return f"{self.port} (pin {self.pin})" if self.pin else self.port

    def to_dict(self) -> dict[str, Any]:
        return dict(self.__dict__)


@dataclass(frozen=True)
class Tap:
    """The test access port."""

    tdi: PortPin | None
    tdo: PortPin | None
    tms: PortPin | None
    tck: PortPin | None
    trst: PortPin | None
    max_frequency: float | None
    """Of TCK, in hertz."""
    clock_stop: str | None
    """low, or both levels at which TCK may stop."""

    def to_dict(self) -> dict[str, Any]:
        return asdict(self)


@dataclass(frozen=True)
class Compliance:
    """Ports that must hold one of some patterns for the test logic to work."""

    ports: tuple[PortPin, ...]
    patterns: tuple[str, ...]
    """Leftmost character for the first port: 0, 1 or X."""

    def __bool__(self) -> bool:
        return bool(self.ports)

    @property
    def text(self) -> str:
        """In words, such as ``NRST (pin 7) must be 0``; empty without a pattern."""
        parts = []
        for pattern in self.patterns:
            levels = [f"{port} must be {level}" for port, level in zip(self.ports, pattern)
                      if level in "01"]
            if levels:
                parts.append(", ".join(levels))
        return ("either " if len(parts) > 1 else "") + "; or ".join(parts)

    def to_dict(self) -> dict[str, Any]:
        return {"ports": [port.to_dict() for port in self.ports],
                "patterns": list(self.patterns), "text": self.text}


@dataclass(frozen=True)
class Finding:
    """Something about a file that its user should know."""

    line: int
    """From 1; 0 when it has no place."""
    column: int
    """In bytes, from 1; 0 when it has no place."""
    severity: str
    """error, warning or note."""
    rule: str
    """Its stable name; see ``bscan.describe_rule``."""
    message: str
    remedy: str
    """What to write instead; empty when there is no telling."""

    def __str__(self) -> str:
        return f"{self.line}:{self.column}: {self.severity}: {self.message} [{self.rule}]"

    def to_dict(self) -> dict[str, Any]:
        return dict(self.__dict__)


@dataclass(frozen=True)
class Attribute:
    """An attribute or constant that has no place of its own."""

    name: str | None
    of: str | None
    kind: str | None
    value: str | None

    def to_dict(self) -> dict[str, Any]:
        return dict(self.__dict__)
