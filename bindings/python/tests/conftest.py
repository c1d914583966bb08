"""What the tests share: the example devices and a board that is simulated."""

import os
import pathlib
import re
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
def board(tmp_path, request):
    if shutil.which("openocd") is None:
        pytest.skip("openocd is not there")
    members = [f"U1={DEVICES / 'nibble_bus.bsd'}", "X=ir:5", f"U2={DEVICES / 'link_hub.bsd'}"]
    adapter, config, log = (tmp_path / name for name in ("adapter.cfg", "chain.cfg", "pins.log"))
    subprocess.run([TOOL, "openocd", *members, "-o", config], check=True, timeout=60)
    simulation = subprocess.Popen(
        [TOOL, "simulate", *members, "--log", log, "--adapter-file", adapter,
         "--net", "N1=U1.READY,U2.RST_N", "--level", "U2.TEST_EN=1", "--level", "U1.SENSE=1"],
        stdout=subprocess.PIPE, text=True)
    request.addfinalizer(lambda: end(simulation))
    simulation.stdout.readline()
    openocd = subprocess.Popen(
        ["openocd", "-f", adapter, "-f", config, "-c",
         "telnet_port disabled; gdb_port disabled; tcl_port 0; init"],
        stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True)
    request.addfinalizer(lambda: end(openocd))
    # The system chooses a free port, and OpenOCD tells it.
    for line in openocd.stderr:
        if found := re.search(r"port (\d+) for tcl connections", line):
            return Board(int(found[1]), log)
    pytest.fail("OpenOCD ended")


def end(process):
    process.terminate()
    process.communicate(timeout=30)
