"""Chains: their scans, steps, and a board behind OpenOCD."""

import gc
import subprocess
import threading
import time

import pytest

import bscan
from conftest import DEVICES, TOOL

STEPS = "drive U1.READY=0\nexpect U2.RST_N=0\ndrive U1.READY=1\nexpect U2.RST_N=1\n"


def test_scans(chain, bus):
    assert [device.name for device in chain.devices] == ["U1", "X", "U2"] and len(chain) == 3
    assert len(chain.data_scan) == 3 and chain.max_frequency == 20e6
    chain.select({"U1": "extest", "U2": "SAMPLE"})
    assert [(field.device, field.register, field.first) for field in chain.data_scan.fields] == [
        ("U2", "BOUNDARY", 0), ("X", "BYPASS", 32), ("U1", "BOUNDARY", 33)]
    # The device next to TDO comes first: SAMPLE, all ones, EXTEST.
    assert chain.instruction_scan.bits == "100000" + "11111" + "0000"
    assert chain.instruction_scan.hex == "07C1"
    chain.drive({"U1.A": 0b0101})
    assert chain.data_scan.bits[33:] == "0101100000000100000000"[:22]
    assert bus.vector.bits[:5] == "00000"
    seen = chain.observe("1" * 55, "U1.SENSE", "U2.E1")
    assert seen.levels == {"U1.SENSE": 1, "U2.D(0)": 1} and seen["U2.E1"].direction == "out"


def test_steps(chain):
    svf = chain.svf(STEPS, frequency=1e5)
    arguments = [f"U1={DEVICES / 'nibble_bus.bsd'}", "X=ir:5", f"U2={DEVICES / 'link_hub.bsd'}"]
    wanted = subprocess.run([TOOL, "svf", *arguments, "--steps", "-", "--frequency", "100000"],
                            input=STEPS, capture_output=True, text=True, check=True, timeout=60)
    assert svf == wanted.stdout
    kinds = [operation.kind for operation in chain.scans("wait 5 ms\n" + STEPS)]
    assert {"reset", "instruction", "data", "wait", "comment"} == set(kinds)
    assert len(chain.data_scan) == 3  # steps leave no trace
    with pytest.raises(bscan.ChainError, match="(?s)line 1: .*U9.*line 3: "):
        chain.svf("drive U9.A(0)=1\nnote fine\nfly")


def test_what_a_chain_refuses(chain, bus, hub):
    before = chain.data_scan
    cases = [
        (lambda: bscan.Chain([("A", bus), ("A", hub)]), bscan.ChainError, "A"),
        (lambda: bscan.Chain([0]), bscan.ChainError, ""),
        (lambda: bscan.Chain(["no device"]), TypeError, ""),
        (lambda: chain.select({"U3": "EXTEST"}), KeyError, "U3"),
        (lambda: chain.select({"U2": "FACTORY"}), bscan.ChainError, "private|reserve"),
        (lambda: chain.select({"X": "EXTEST"}), bscan.ChainError, "X"),
        (lambda: chain.drive({"U1.A(0)": 1, "U2.TDI": 1}), bscan.DriveError, "TDI"),
        (lambda: chain.drive({"A(0)": 1}), bscan.ChainError, "A"),
        (lambda: chain.observe("01"), ValueError, "3 bits"),
        (lambda: chain.observe("abc"), ValueError, "0 and 1"),
    ]
    for action, kind, reason in cases:
        with pytest.raises(kind, match=reason):
            action()
    assert chain.data_scan == before
    chain.select({"U1": "EXTEST"})
    assert "1" not in chain.data_scan.bits[:5]


def test_a_chain_keeps_what_it_needs(bus):
    chain = bscan.Chain([bus, bus])
    pins = bus.ports["A"].pins
    del bus
    gc.collect()
    chain.select({"U1": "EXTEST"})
    chain.drive({"U1.A": 15})
    assert chain.data_scan.bits[1:6] == "11111" and [pin.pin for pin in pins] == list("3456")


def test_board(board, chain, hub):
    with bscan.OpenOcd("127.0.0.1", board.port, chain) as live:
        assert live.read("U1.SENSE").levels == {"U1.SENSE": 1}
        live.drive({"U1.READY": 0})
        assert live.read()["U2.RST_N"].level == 0
        seen = []
        for look in live.watch("U2.RST_N", every=0.01, count=3):
            seen.append((look["U2.RST_N"].level, look.changed))
            live.drive({"U1.READY": 1})
        assert seen == [(0, ["U2.RST_N"]), (1, ["U2.RST_N"]), (1, [])]
        with pytest.raises(bscan.DriveError, match="CLK"):
            live.drive({"U1.READY": 0, "U1.CLK": 1})
        live.drive({"U1.A(0)": "Z"})  # what was refused with CLK is not done later
        live.release()
        assert board.driven("U1.READY") == ["0", "1", "nothing"]
        live.drive({"U1.A(1)": 0})
        assert board.driven("U1.A(1)", last="0") == ["0"]
        assert board.driven("U1.READY") == ["0", "1", "nothing"]  # a released pin stays free
        assert live.run(STEPS) == []
        failures = live.run("drive U1.READY=1\nexpect U2.RST_N=0")
        assert [(fail.line, fail.port, fail.wanted, fail.seen) for fail in failures] == [
            (2, "U2.RST_N", 0, 1)]
        with pytest.raises(bscan.ChainError):
            live.run("fly")
        assert "U1.tap" in live.command("jtag names")
        with pytest.raises(bscan.Error) as caught:
            live.command("no_such_command")
        assert caught.value.code == -26
        live.drive({"U1.READY": 1})
        with pytest.raises(bscan.ChainError, match="IDCODE"):
            live.attach(bscan.Chain([hub, 5, hub]))
    assert board.driven("U1.READY")[-2:] == ["1", "nothing"]
    for action in (live.read, live.release, lambda: live.drive({})):
        with pytest.raises(bscan.Error):
            action()
    live.close()


def test_pins_are_free_when_nobody_looks(board, chain):
    live = bscan.OpenOcd("127.0.0.1", board.port).attach(chain)
    live.drive({"U1.READY": 1})
    watch = live.watch("U1.READY", every=0)
    next(watch)
    del live, chain
    gc.collect()
    assert next(watch)["U1.READY"].level == 1  # the generator keeps the connection
    del watch
    gc.collect()
    assert board.driven("U1.READY") == ["1", "nothing"]
    with pytest.raises(RuntimeError), bscan.OpenOcd("127.0.0.1", board.port) as live:
        live.attach(bscan.Chain([bscan.read(DEVICES / "nibble_bus.bsd"), 5,
                                 bscan.read(DEVICES / "link_hub.bsd")]))
        live.drive({"U1.READY": 0})
        raise RuntimeError
    assert board.driven("U1.READY")[-2:] == ["0", "nothing"]


def test_no_openocd(bus):
    with pytest.raises(bscan.Error) as caught:
        bscan.OpenOcd("127.0.0.1", 1)
    assert caught.value.code == -24 and "no OpenOCD listens" in str(caught.value)


def test_threads_share_a_board(board, chain):
    problems = []
    with bscan.OpenOcd("127.0.0.1", board.port, chain) as live:
        def work(level):
            try:
                for _ in range(5):
                    live.drive({"U1.READY": level})
                    chain.svf(STEPS)
                    assert len(live.read("U2.RST_N")) == 1
                    assert repr(chain)
            except Exception as error:  # told by the thread that waits
                problems.append(error)

        threads = [threading.Thread(target=work, args=(n % 2,)) for n in range(3)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert not problems
