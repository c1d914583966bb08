"""What pins show."""

from __future__ import annotations

from collections.abc import Iterator, Mapping, Sequence
from dataclasses import dataclass
from typing import Any

from ._errors import UnknownNameError
from ._facts import Level


@dataclass(frozen=True)
class PinState:
    """A pin in a captured vector."""

    port: str
    """Its name, such as ``D(3)``, or ``U1.D(3)`` in a chain."""
    pin: str | None
    """Designator of its package pin."""
    mode: str
    direction: str | None
    """in or out; None when it cannot be told."""
    level: Level
    """0 or 1; "X" when no cell tells, "Z" while the driver is off and no cell receives."""

    def __repr__(self) -> str:
        pin = f" (pin {self.pin})" if self.pin else ""
        return f"<PinState {self.port}{pin}: {self.direction or '-'} {self.level}>"

    def to_dict(self) -> dict[str, Any]:
        return {**self.__dict__, "level": str(self.level)}


class Observation(Mapping[str, PinState]):
    """The states of pins by their names, in the order in which they were asked for.

    A name is that of the port (letter case ignored), or the designator of the package pin.
    """

    def __init__(self, states: Sequence[PinState], time: float = 0.0,
                 changed: Sequence[str] = ()) -> None:
        self._states = {state.port: state for state in states}
        self._names: dict[str, str] = {}
        for state in states:
            self._names.setdefault(state.port.upper(), state.port)
        for state in states:
            if state.pin:
                # A chain's pins carry their device's name: U1.D(3) is also U1.B3.
                device, dot, _ = state.port.rpartition(".")
                self._names.setdefault(device + dot + state.pin, state.port)
        self.time = time
        """Seconds since the watch began; 0 for a single look."""
        self.changed = list(changed)
        """Names of the pins that were otherwise in the look before."""

    def __getitem__(self, name: str) -> PinState:
        port = self._names.get(name) or self._names.get(str(name).upper())
        if port is None:
            raise UnknownNameError(f"no pin {name!r} was looked at")
        return self._states[port]

    def __iter__(self) -> Iterator[str]:
        return iter(self._states)

    def __len__(self) -> int:
        return len(self._states)

    @property
    def levels(self) -> dict[str, Level]:
        """The levels by name."""
        return {name: state.level for name, state in self._states.items()}

    def value(self, port: str) -> int | None:
        """A vector as a number, the left end as its most significant bit; None when the level of
        an element is neither 0 nor 1."""
        start = port.upper() + "("
        levels = [state.level for name, state in self._states.items()
                  if name.upper().startswith(start) or name.upper() == port.upper()]
        if not levels:
            raise UnknownNameError(f"no port {port!r} was looked at")
        if any(level not in (0, 1) for level in levels):
            return None
        return int("".join(map(str, levels)), 2)

    def to_dict(self) -> dict[str, Any]:
        """In the shape of ``bscan observe --json``."""
        return {"ports": [state.to_dict() for state in self._states.values()]}

    def __repr__(self) -> str:
        shown = ", ".join(f"{name}={state.level}" for name, state in
                          list(self._states.items())[:8])
        return f"<Observation: {shown}{', ...' if len(self) > 8 else ''}>"
