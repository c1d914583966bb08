"""Compares two revisions of a device, pin by pin: compare_revisions.py OLD NEW"""

import sys

import bscan


def main(old_path: str, new_path: str) -> None:
    old, new = bscan.read(old_path), bscan.read(new_path)
    print(f"IDCODE: {old.idcode} -> {new.idcode}")
    for name in sorted(set(old.pins) | set(new.pins)):
        before, after = old.pins.get(name), new.pins.get(name)
        if before is None or after is None:
            print(f"pin {name}: {before or 'nothing'} -> {after or 'nothing'}")
        elif (before.port, before.declared_mode) != (after.port, after.declared_mode):
            print(f"pin {name}: {before.port} ({before.declared_mode}) -> "
                  f"{after.port} ({after.declared_mode})")


if __name__ == "__main__":
    main(*sys.argv[1:])
