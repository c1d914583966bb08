"""Tells where the elements of a bus are on the package: find_bus_pins.py FILE PORT"""

import sys

import bscan


def main(path: str, port: str) -> None:
    device = bscan.read(path)
    for pin in device.find(port):
        cells = ", ".join(str(device.cells[cell]) for cell in pin.cells)
        print(f"{pin.port:12} pin {pin.pin or '-':6} {pin.declared_mode:8} {cells}")


if __name__ == "__main__":
    main(*sys.argv[1:])
