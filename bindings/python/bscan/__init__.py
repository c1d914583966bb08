"""Boundary scan (IEEE 1149.1) from Python: what a BSDL file says, and the pins of a board.

>>> device = bscan.read("nibble_bus.bsd")
>>> device.pins["9"]
<Pin B(3): pin 9, inout, cells 12, 11>
>>> device.drive({"A": 0x5, "READY": 1})
>>> device.vector.bits
'0101100000000111000000'

``Chain`` puts devices into a scan chain, and ``OpenOcd`` reads and drives its pins on a board.
"""

from ._bscan import version as __version__
from ._chain import Chain, ChainDevice, Operation, Scan, ScanField
from ._device import Device, describe_rule, parse, read
from ._errors import ChainError, DriveError, Error, UnknownNameError
from ._facts import (Attribute, Cell, Code, Compliance, Finding, Idcode, Instruction, Level, Pair,
                     Pin, Port, PortPin, Register, Tap)
from ._levels import Vector
from ._lookup import Lookup
from ._observation import Observation, PinState
from ._openocd import Failure, OpenOcd

__all__ = [
    "Attribute", "Cell", "Chain", "ChainDevice", "ChainError", "Code", "Compliance", "Device",
    "DriveError", "Error", "Failure", "Finding", "Idcode", "Instruction", "Level", "Lookup",
    "Observation", "OpenOcd", "Operation", "Pair", "Pin", "PinState", "Port", "PortPin",
    "Register", "Scan", "ScanField", "Tap", "UnknownNameError", "Vector", "__version__",
    "describe_rule", "parse", "read",
]
