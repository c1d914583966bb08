"""Pins of a board, through a running OpenOCD."""

from __future__ import annotations

import time
from collections.abc import Iterator, Mapping
from dataclasses import dataclass
from types import TracebackType

from . import _bscan
from ._chain import Chain
from ._device import Device
from ._errors import ChainError
from ._facts import Level
from ._levels import LevelRequest
from ._observation import Observation, PinState


@dataclass(frozen=True)
class Failure:
    """A level that steps wanted otherwise."""

    line: int
    """Of the steps, from 1; 0 for an IDCODE."""
    port: str
    wanted: Level
    seen: Level


class OpenOcd:
    """A connection to the Tcl port of OpenOCD::

        with bscan.OpenOcd("localhost", 6666, chain) as board:
            board.drive({"U1.LED": 1})
            print(board.read("U1.BUTTON"))

    Behind the block the chain is reset, so that every pin is the device's own again; the same
    happens when the hardware fails and when the object goes. OpenOCD has to know the chain, as the
    configuration that ``bscan openocd`` writes tells it. Other threads of Python run while one
    waits for the hardware.
    """

    def __init__(self, host: str = "localhost", port: int = _bscan.default_port,
                 chain: Chain | Device | None = None, *, timeout: float = 10.0) -> None:
        """Connects, and attaches the chain (a device is a chain of its own).

        ``timeout`` is how many seconds each call may wait. Raises ``bscan.Error`` (code -24) when
        no OpenOCD answers.
        """
        self._chain: Chain | None = None
        self._link = _bscan.Link(host, port, timeout)
        if chain is not None:
            self.attach(chain)

    def attach(self, chain: Chain | Device) -> OpenOcd:
        """Takes the chain over from OpenOCD's own TAPs, and compares the IDCODEs; another one that
        was attached is released. What was asked of the chain's pins before is forgotten. Returns
        the object itself."""
        chain = Chain([chain]) if isinstance(chain, Device) else chain
        self._chain = None
        self._link.attach(chain._native)
        self._chain = chain
        return self

    @property
    def chain(self) -> Chain:
        """The chain that is attached."""
        if self._chain is None:
            raise ChainError(_NO_CHAIN, "no chain is attached: see OpenOcd.attach")
        return self._chain

    def read(self, *pins: str) -> Observation:
        """What pins show, without disturbing them: under SAMPLE or, while pins are driven, under
        EXTEST. Without names, all pins that carry a signal."""
        return self._read(self.chain._pins(pins))

    def _read(self, pins: list[tuple[int, int]]) -> Observation:
        return Observation([PinState(**row) for row in self._link.read(pins)])

    def drive(self, levels: Mapping[str, LevelRequest]) -> None:
        """Drives and releases pins, as ``Device.drive``; others keep what they do. The first call
        preloads the boundary registers, in which drivers that nobody asked for are off, and enters
        EXTEST. A request that cannot be done raises ``DriveError`` and changes nothing."""
        self._link.drive(self.chain._requests(levels))

    def release(self) -> None:
        """Resets the chain: every pin is the device's own again, and what was asked of it is
        forgotten."""
        self._link.release()

    def watch(self, *pins: str, every: float = 0.1, count: int | None = None
              ) -> Iterator[Observation]:
        """Looks again and again, ``every`` so many seconds, and yields each look; its ``time`` and
        ``changed`` tell when, and which pins are otherwise than before (at first, all). Ends after
        ``count`` looks, or never."""
        places = self.chain._pins(pins)
        begin = time.monotonic()
        last: Observation | None = None
        looks = 0
        while count is None or looks < count:
            if looks:
                time.sleep(max(0.0, begin + looks * every - time.monotonic()))
            seen = self._read(places)
            looks += 1
            seen.time = time.monotonic() - begin
            seen.changed = [name for name, state in seen.items()
                            if last is None or last[name] != state]
            last = seen
            yield seen

    def run(self, steps: str, check_idcodes: bool = True) -> list[Failure]:
        """Plays steps, as ``Chain.svf`` takes them, from reset to reset, and tells which levels were
        otherwise than they wanted. Pins that were driven before are given back."""
        rows = self._link.play(steps.encode(), check_idcodes)
        return [Failure(**row) for row in rows]

    def command(self, tcl: str) -> str:
        """Runs a Tcl command of OpenOCD and gives its answer; ``bscan.Error`` (code -26) has the
        message of one that it refuses."""
        return self._link.run(tcl.encode())

    def close(self) -> None:
        """Frees the pins and closes the connection; OpenOCD goes on."""
        self._link.close()
        self._chain = None

    def __enter__(self) -> OpenOcd:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "open" if self._link.is_open() else "closed"
        return f"<OpenOcd {state}: {self._chain}>"


_NO_CHAIN = 12  # ChainCode::kEmpty
