"""Things by their names."""

from __future__ import annotations

from collections.abc import Iterator, Mapping
from typing import Generic, TypeVar

from ._errors import UnknownNameError

T = TypeVar("T")


class Lookup(Mapping[str, T], Generic[T]):
    """A mapping in the order of the file, such as that of ports or of package pins.

    Names of the language are found whatever their letter case; designators of package pins are
    not. Of several things of one name the first counts.
    """

    def __init__(self, kind: str, items: list[tuple[str, T]], any_case: bool = True) -> None:
        self._kind = kind
        self._any_case = any_case
        self._items: dict[str, tuple[str, T]] = {}
        for name, item in items:
            self._items.setdefault(self._key(name), (name, item))

    def _key(self, name: str) -> str:
        return name.upper() if self._any_case else name

    def __getitem__(self, name: str) -> T:
        if isinstance(name, str) and self._key(name) in self._items:
            return self._items[self._key(name)][1]
        raise UnknownNameError(f"there is no {self._kind} {name!r}")

    def __iter__(self) -> Iterator[str]:
        return (name for name, _ in self._items.values())

    def __len__(self) -> int:
        return len(self._items)

    def __repr__(self) -> str:
        names = list(self)
        shown = ", ".join(names[:8]) + (", ..." if len(names) > 8 else "")
        return f"<{len(names)} {self._kind}s: {shown}>"
