"""One device: what its file says, its pins, and the vector that drives them."""

from __future__ import annotations

import os
from collections.abc import Mapping, Sequence
from functools import cached_property
from typing import Any, Union

from . import _bscan, _html
from ._errors import UnknownNameError
from ._facts import (Attribute, Cell, Code, Compliance, Finding, Idcode, Instruction, Pair, Pin,
                     Port, PortPin, Register, Tap, level_of)
from ._levels import Capture, LevelRequest, Vector, capture_bytes, requested_levels
from ._lookup import Lookup
from ._observation import Observation, PinState
from ._registers import instructions_with_registers

#: How a pin is named: as ``Device.find`` takes it, or by itself.
PinName = Union[str, Pin, Port]


class Device:
    """A device as its BSDL file describes it; see ``bscan.read`` and ``bscan.parse``.

    What the file says never changes. Driving changes the vector, which begins with every driver
    off that can be turned off. Lists and mappings are made when they are first asked for.
    """

    def __init__(self, native: _bscan.Device, file: str) -> None:
        self._native = native
        self.file = file
        """The path or name that was given."""

    @cached_property
    def _facts(self) -> dict[str, Any]:
        return self._native.facts()

    # What the file tells once.

    @property
    def component(self) -> str | None:
        """The name of the entity."""
        text: str | None = self._facts["component"]
        return text

    @property
    def package(self) -> str | None:
        """The package that the pins are those of, in lower case."""
        text: str | None = self._facts["package"]
        return text

    @property
    def packages(self) -> list[str]:
        """All packages of the file, as written."""
        return list(self._facts["packages"])

    @property
    def conformance(self) -> str | None:
        """The edition of the standard that the file names, such as ``STD_1149_1_2001``."""
        text: str | None = self._facts["conformance"]
        return text

    @property
    def design_warning(self) -> str | None:
        """What the maker warns of, on one line."""
        text: str | None = self._facts["design_warning"]
        return text

    @property
    def instruction_length(self) -> int | None:
        """Bits of the instruction register."""
        number: int | None = self._facts["instruction_length"]
        return number

    @property
    def instruction_capture(self) -> str | None:
        """What the instruction register captures, leftmost bit next to TDI."""
        text: str | None = self._facts["instruction_capture"]
        return text

    @property
    def private_instructions(self) -> list[str]:
        return list(self._facts["private_instructions"])

    @cached_property
    def idcodes(self) -> list[Idcode]:
        """The IDCODE and its alternatives."""
        return [Idcode(bits) for bits in self._facts["idcodes"]]

    @property
    def idcode(self) -> Idcode | None:
        """The first IDCODE; None when the file has none."""
        return self.idcodes[0] if self.idcodes else None

    @cached_property
    def usercodes(self) -> list[Code]:
        return [Code(bits) for bits in self._facts["usercodes"]]

    @cached_property
    def tap(self) -> Tap:
        """The test access port: its ports, the limit of its clock in hertz."""
        return Tap(**{key: self._port_pin(value) if key in ("tdi", "tdo", "tms", "tck", "trst")
                      else value for key, value in self._facts["tap"].items()})

    @cached_property
    def compliance(self) -> Compliance:
        """The levels that some ports must have for the test logic to work."""
        ports = [self._port_pin(name) for name in self._facts["compliance_ports"]]
        return Compliance(tuple(port for port in ports if port is not None),
                          tuple(self._facts["compliance_patterns"]))

    @cached_property
    def findings(self) -> list[Finding]:
        """What is wrong with the file, in its order."""
        return [Finding(**row) for row in self._native.findings()]

    @cached_property
    def attributes(self) -> list[Attribute]:
        """Attributes and constants that have no place of their own."""
        return [Attribute(**row) for row in self._native.attributes()]

    def line(self, number: int) -> str:
        """A line of the file, from 1; empty when there is none."""
        return self._native.line(number)

    # Ports, pins and cells.

    @cached_property
    def _elements(self) -> list[Pin]:
        rows = self._native.pins()
        for row in rows:
            row["cells"] = tuple(row["cells"])
        return [Pin(**row) for row in rows]

    @cached_property
    def _by_label(self) -> Lookup[Pin]:
        return Lookup("port", [(pin.port, pin) for pin in self._elements])

    def _port_pin(self, name: str | None) -> PortPin | None:
        if name is None:
            return None
        found = self._by_label.get(name)
        if found is None:
            found = next(iter(self.ports.get(name, ())), None)
        return PortPin(name, found.pin if found else None)

    @cached_property
    def ports(self) -> Lookup[Port]:
        """The declared ports by name, letter case ignored: ``device.ports["D"][3]``."""
        return Lookup("port", [
            (row["name"], Port(row["name"], row["mode"], row["range"],
                               tuple(self._elements[row["first"]:row["first"] + row["count"]])))
            for row in self._native.ports()])

    @cached_property
    def pins(self) -> Lookup[Pin]:
        """The package pins by designator, letter case included: ``device.pins["A1"]``."""
        return Lookup("pin", [(pin.pin, pin) for pin in self._elements if pin.pin], any_case=False)

    @property
    def elements(self) -> list[Pin]:
        """All port elements in the order of declaration, with and without package pin."""
        return list(self._elements)

    @cached_property
    def cells(self) -> Sequence[Cell]:
        """The boundary register, from cell 0, the one next to TDO."""
        rows = self._native.cells()
        for row in rows:
            for field in ("safe", "disable", "result"):
                row[field] = row[field] and level_of(row[field])
        return tuple(Cell(**row) for row in rows)

    @property
    def boundary_length(self) -> int:
        """Cells of the boundary register."""
        return self._native.length()

    @cached_property
    def _instruction_list(self) -> list[Instruction]:
        return instructions_with_registers(
            self._native.instructions(), self._native.registers(), self.private_instructions,
            self.boundary_length)

    @cached_property
    def instructions(self) -> Lookup[Instruction]:
        """The instructions by name, letter case ignored."""
        return Lookup("instruction", [(one.name, one) for one in self._instruction_list])

    @cached_property
    def _register_list(self) -> list[Register]:
        return [Register(row["name"], row["length"], tuple(row["instructions"]))
                for row in self._native.registers()]

    @cached_property
    def registers(self) -> Lookup[Register]:
        """The registers of REGISTER_ACCESS by name, letter case ignored."""
        return Lookup("register", [(one.name, one) for one in self._register_list])

    @cached_property
    def pairs(self) -> list[Pair]:
        """Differential pairs."""
        return [Pair(**row) for row in self._native.pairs()]

    def find(self, name: PinName) -> list[Pin]:
        """The elements that a name means: a designator (``B3``), a port (``D``, ``D(3)``,
        ``D(3..0)``, ``IO*``), or the number of a package pin; ``pin:``, ``port:`` or ``number:``
        in front asks for one of these alone. Raises ``UnknownNameError`` when there is none."""
        return [self._elements[place] for place in self._places(name)]

    def _places(self, name: PinName) -> list[int]:
        if isinstance(name, str):
            places = self._native.find(name.encode())
        else:
            pins = name.pins if isinstance(name, Port) else (name,)
            places = [place for pin in pins for place in self._native.find(
                b"port:" + pin.port.encode())]
        if not places:
            raise UnknownNameError(f"{self.component} has no pin or port {name}")
        return places

    # Driving and observing.

    def drive(self, levels: Mapping[PinName, LevelRequest] | Mapping[str, LevelRequest]) -> None:
        """Drives pins and releases others: ``device.drive({"A1": 1, "D": 0x5A, "B": "Z"})``.

        A number for a vector has its most significant bit at the left end, as declared. All of it
        is done, or none: ``DriveError`` tells why a pin cannot be driven, ``UnknownNameError`` that
        there is no such pin, and ``ValueError`` that a level is none.
        """
        requests: list[tuple[int, int]] = []
        for name, level in levels.items():
            places = self._places(name)
            ports = [self._elements[place].name for place in places]
            requests += zip(places, requested_levels(level, ports))
        self._native.drive(requests)

    def release(self, *names: PinName) -> None:
        """Turns off the drivers of pins; without names, all, and forgets what was asked for."""
        if names:
            self._native.drive([(place, 2) for name in names for place in self._places(name)])
        else:
            self._native.preset(b"")

    def start_from(self, capture: Capture) -> None:
        """Forgets what was asked for, and lets outputs go on as in a capture under SAMPLE."""
        self._native.preset(capture_bytes(capture, self.boundary_length))

    @property
    def vector(self) -> Vector:
        """The vector to shift in now: bytes, and ``.bits`` as text with cell 0 first."""
        return Vector(self._native.vector(), self.boundary_length)

    @property
    def also_driven(self) -> list[Pin]:
        """Pins that nobody asked for and that share a control cell with one that drives."""
        return [self._elements[place] for place in self._native.also_driven()]

    @property
    def no_longer_driven(self) -> list[Pin]:
        """Pins that were asked to drive and whose shared control cell was turned off later."""
        return [self._elements[place] for place in self._native.no_longer_driven()]

    def observe(self, capture: Capture) -> Observation:
        """What the pins show in a captured vector: text or numbers, cell 0 first, or bytes in the
        order of ``vector``."""
        rows = self._native.observe(capture_bytes(capture, self.boundary_length))
        states = []
        for place, direction, level in rows:
            pin = self._elements[place]
            states.append(PinState(pin.port, pin.pin, pin.mode, direction, level))
        return Observation(states)

    # As others want it.

    def to_dict(self) -> dict[str, Any]:
        """All of it, in the shape of ``bscan show --json``: lists of rows, ready for a DataFrame."""
        facts = self._facts
        return {
            "file": self.file,
            "component": self.component,
            "package": self.package,
            "pins": self._native.pins(),
            "cells": self._native.cells(),
            "instruction_length": self.instruction_length,
            "instruction_capture": self.instruction_capture,
            "instructions": [one.to_dict() for one in self._instruction_list],
            "registers": [one.to_dict() for one in self._register_list],
            "pairs": self._native.pairs(),
            "packages": self.packages,
            "conformance": self.conformance,
            "idcodes": [code.to_dict() for code in self.idcodes],
            "usercodes": [code.to_dict() for code in self.usercodes],
            "tap": self.tap.to_dict(),
            "compliance": self.compliance.to_dict() if self.compliance else None,
            "private_instructions": self.private_instructions,
            "runbist": facts["runbist"],
            "intest": facts["intest"],
            "design_warning": self.design_warning,
        }

    def _repr_svg_(self) -> str:
        """The package from above."""
        return self._native.draw()

    def _repr_html_(self) -> str:
        return _html.device_html(self, self._native.draw())

    def __repr__(self) -> str:
        package = f" in {self.package}" if self.package else ""
        return (f"<Device {self.component}{package}: {len(self.pins)} pins, "
                f"{self.boundary_length} cells, {len(self.findings)} findings>")


def read(path: str | bytes | os.PathLike[str] | os.PathLike[bytes],
         package: str | None = None) -> Device:
    """Reads a BSDL file.

    A fault in the file raises nothing: ``device.findings`` tells. Raises ``bscan.Error`` when
    there is nothing to read: the file cannot be opened (code -10) or read (-3), is too long (-18),
    has no entity (-21) or no such package (-23). Other threads run meanwhile.
    """
    data = os.fsencode(path)
    if b"\0" in data:
        raise ValueError("a path has no null byte")
    return Device(_bscan.read(data, (package or "").encode()), os.fsdecode(data))


def parse(text: str | bytes, name: str = "", package: str | None = None) -> Device:
    """Reads BSDL text; ``name`` is what it is called where a file has its path. As ``read``."""
    data = text.encode("utf-8", "surrogateescape") if isinstance(text, str) else bytes(text)
    return Device(_bscan.parse(data, name.encode(), (package or "").encode()), name)


def describe_rule(rule: str) -> str | None:
    """What a rule of a finding is about, in a sentence; None when no rule has that name."""
    return _bscan.describe_rule(rule)
