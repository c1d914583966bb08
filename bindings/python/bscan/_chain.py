"""Scan chains: their pins, their scans, and steps in words."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from dataclasses import dataclass
from typing import Any, Union

from . import _bscan
from ._device import Device
from ._errors import UnknownNameError
from ._levels import LevelRequest, requested_levels
from ._observation import Observation, PinState

#: A device with or without a name, or the length of an instruction register that alone is known.
ChainMember = Union[Device, int, tuple[str, Union[Device, int]]]


@dataclass(frozen=True)
class ScanField:
    """The part of a scan that goes through one device."""

    device: str
    register: str
    """INSTRUCTION, BOUNDARY, BYPASS, DEVICE_ID or the file's own."""
    first: int
    """Number of the bit of its cell 0."""
    count: int


@dataclass(frozen=True)
class Scan:
    """The bits of one scan."""

    bits: str
    """A character 0 or 1 for each bit, in the order of shifting: bit 0 goes into TDI first."""
    fields: tuple[ScanField, ...]
    """Whose bits they are, the device next to TDO first."""

    def __len__(self) -> int:
        return len(self.bits)

    @property
    def hex(self) -> str:
        """As SVF and OpenOCD write it: bit 0 is the lowest bit of the last digit."""
        digits = (len(self.bits) + 3) // 4
        return f"{int(self.bits[::-1], 2):0{digits}X}" if self.bits else ""


@dataclass(frozen=True)
class Operation:
    """What a player has to do for steps, one after the other."""

    kind: str
    """comment, reset, instruction or data (a scan), or wait."""
    text: str
    """Of a comment."""
    out: str
    """Into TDI, bit 0 first."""
    wanted: str
    """Out of TDO; empty when nothing is compared."""
    mask: str
    """1 where a bit is compared."""
    wait: tuple[int, str] | None
    """Count, and tck, us or ms."""


@dataclass(frozen=True)
class ChainDevice:
    """A device of a chain."""

    name: str
    component: str | None
    package: str | None
    instruction_length: int
    instruction: str
    """The instruction that is selected for it."""


class Chain:
    """The devices of a scan chain from TDI to TDO: ``Chain([("U1", device), 5, other])``.

    A number is the length of an instruction register of which nothing else is known. Devices
    without a name are called U1, U2 and so on by their place. The chain has models of its own:
    driving here changes nothing in the ``Device``. Pins are named ``U1.D(3)``, or without the
    device's name where only one has pins. Any number of threads may use one chain.
    """

    def __init__(self, devices: Iterable[ChainMember]) -> None:
        self._native = _bscan.Chain()
        for place, member in enumerate(devices, start=1):
            name, device = member if isinstance(member, tuple) else (f"U{place}", member)
            if isinstance(device, Device):
                self._native.add_device(name.encode(), device._native)
            else:
                self._native.add_length(name.encode(), device)

    @property
    def devices(self) -> list[ChainDevice]:
        """The devices, the one next to TDI first."""
        return [ChainDevice(**row) for row in self._native.devices()]

    def __len__(self) -> int:
        return len(self._native.devices())

    @property
    def max_frequency(self) -> float | None:
        """The lowest limit of TCK that a device tells, in hertz."""
        return self._native.max_frequency() or None

    def _requests(self, levels: Mapping[str, LevelRequest]) -> list[tuple[int, int, int]]:
        requests: list[tuple[int, int, int]] = []
        for name, level in levels.items():
            pins = self._native.find(name.encode())
            ports = [label.partition("(")[0] for label in self._native.labels(pins)]
            for (device, element), one in zip(pins, requested_levels(level, ports)):
                requests.append((device, element, one))
        return requests

    def _pins(self, names: Iterable[str]) -> list[tuple[int, int]]:
        """The pins of the names; all that carry a signal without names."""
        pins = [pin for name in names for pin in self._native.find(name.encode())]
        return pins or self._native.signal_pins()

    def drive(self, levels: Mapping[str, LevelRequest]) -> None:
        """Drives and releases pins in the scans to come, all or none; as ``Device.drive``."""
        self._native.drive(self._requests(levels))

    def select(self, instructions: Mapping[str, str]) -> None:
        """Selects instructions by device name, and BYPASS for all other devices. Refuses private
        ones."""
        places = {device.name: place for place, device in enumerate(self.devices)}
        for name in instructions:
            if name not in places:
                raise UnknownNameError(f"the chain has no device {name}")
        self._native.select([(places[name], instruction.encode())
                             for name, instruction in instructions.items()])

    @property
    def instruction_scan(self) -> Scan:
        """The opcodes of the selected instructions."""
        return _scan(*self._native.instruction_scan())

    @property
    def data_scan(self) -> Scan:
        """What to shift through the selected registers: the vectors of devices whose boundary
        register is selected, and 0 for all other bits."""
        return _scan(*self._native.data_scan())

    def observe(self, captured: str, *pins: str) -> Observation:
        """What pins show in what came back from a data scan of the present selection: a character
        0 or 1 for each bit, in the order of shifting. Without names, all pins with a signal."""
        length = len(self.data_scan)
        if len(captured) != length:
            raise ValueError(f"the scan has {length} bits, not {len(captured)}")
        rows = self._native.observe(captured, self._pins(pins))
        return Observation([PinState(**row) for row in rows])

    def svf(self, steps: str, frequency: float = 0, check_idcodes: bool = True) -> str:
        """Steps as text in the Serial Vector Format.

        Steps stand one a line: ``drive PIN=LEVEL ...``, ``expect PIN=LEVEL ...``, ``sample
        PIN=LEVEL ...``, ``wait N tck|us|ms``, ``reset``, ``note TEXT``. They begin from reset,
        whatever was driven before, and change nothing in the chain. ``frequency`` is that of TCK in
        hertz, 0 for 1 MHz. Raises ``ChainError`` with the lines at fault.
        """
        return self._native.svf(steps.encode(), frequency, check_idcodes)

    def scans(self, steps: str, check_idcodes: bool = True) -> list[Operation]:
        """The same steps as operations for a player of one's own."""
        return [Operation(**row) for row in self._native.scans(steps.encode(), check_idcodes)]

    def __repr__(self) -> str:
        names = ", ".join(f"{device.name} {device.component or device.instruction_length}"
                          for device in self.devices)
        return f"<Chain TDI -> {names} -> TDO>"


def _scan(bits: str, fields: list[dict[str, Any]]) -> Scan:
    return Scan(bits, tuple(ScanField(**field) for field in fields))
