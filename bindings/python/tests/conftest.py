"""What the tests share: the example devices and a board that is simulated."""

import os
import pathlib
import shutil
import subprocess
import time

import pytest

import bscan

ROOT = pathlib.Path(os.environ["BSCAN_ROOT"])
DEVICES = ROOT / "examples" / "devices"
TOOL = os.environ["BSCAN_TOOL"]


@pytest.fixture
def hub():
    return bscan.read(DEVICES / "link_hub.bsd")


@pytest.fixture
def bus():
    return bscan.read(DEVICES / "nibble_bus.bsd")


@pytest.fixture
def chain(hub, bus):
    return bscan.Chain([("U1", bus), ("X", 5), ("U2", hub)])


class Board:
    """A simulated chain and the OpenOCD that reaches it."""

    def __init__(self, port, log):
        self.port, self.log = port, log

    def driven(self, pin, last="nothing"):
        """What a pin drove, once it has come to its last level."""
        end = time.monotonic() + 30
        while True:
            words = [line.split() for line in self.log.read_text().splitlines()]
            history = [word[3] for word in words if word[1:3] == [pin, "drives"]]
            if history[-1:] == [last] or time.monotonic() > end:
                return history
            time.sleep(0.05)


@pytest.fixture
def board(tmp_path):
    if shutil.which("openocd") is None:
        pytest.skip("openocd is not there")
    members = [f"U1={DEVICES / 'nibble_bus.bsd'}", "X=ir:5", f"U2={DEVICES / 'link_hub.bsd'}"]
    adapter, config, log = (tmp_path / name for name in ("adapter.cfg", "chain.cfg", "pins.log"))
    subprocess.run([TOOL, "openocd", *members, "-o", config], check=True, timeout=60)
    with subprocess.Popen(
            [TOOL, "simulate", *members, "--log", log, "--adapter-file", adapter,
             "--net", "N1=U1.READY,U2.RST_N", "--level", "U2.TEST_EN=1", "--level", "U1.SENSE=1"],
            stdout=subprocess.PIPE, text=True) as simulation:
        simulation.stdout.readline()
        # The system chooses a free port; the next line of output tells it.
        with subprocess.Popen(
                ["openocd", "-f", adapter, "-f", config, "-c",
                 "telnet_port disabled; gdb_port disabled; tcl_port 0; init"],
                stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True) as openocd:
            port = next(int(line.split()[4]) for line in openocd.stderr
                        if "for tcl connections" in line)
            yield Board(port, log)
            openocd.terminate()
            openocd.communicate(timeout=30)
        simulation.terminate()
