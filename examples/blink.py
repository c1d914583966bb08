"""Blinks a pin through a running OpenOCD that knows the device: blink.py FILE PIN [HOST:PORT]

`bscan openocd FILE` writes the configuration by which OpenOCD knows it. Ctrl-C ends, and the pin is
the device's own again.
"""

import sys
import time

import bscan


def main(path: str, pin: str, address: str = "localhost:6666") -> None:
    host, _, port = address.partition(":")
    device = bscan.read(path)
    if device.compliance:
        print(device.compliance.text)
    with bscan.OpenOcd(host, int(port or 6666), device) as board:
        try:
            while True:
                for level in (1, 0):
                    board.drive({pin: level})
                    print(pin, board.read(pin).levels)
                    time.sleep(0.5)
        except KeyboardInterrupt:
            pass


if __name__ == "__main__":
    main(*sys.argv[1:])
