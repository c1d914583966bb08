"""What lives how long, and what several threads may do."""

import concurrent.futures
import gc
import sys
import threading
import time
import weakref

import bscan
from conftest import DEVICES

TEXT = (DEVICES / "link_hub.bsd").read_text()


def test_parts_outlive_their_device():
    device = bscan.parse(TEXT)
    gone = weakref.ref(device)
    parts = [device.pins["B6"], device.ports, device.cells, device.instructions["IDCODE"],
             device.tap, device.compliance, device.findings, device.idcode, device.vector,
             device.observe("0" * 32), device._facts, device.pairs]
    texts = list(map(repr, parts))
    drive, find = device.drive, device.find
    del device
    gc.collect()
    assert gone() is not None  # a bound method keeps it
    drive({"INT_N": 0})
    assert find("INT_N")[0].pin == "G6"
    del drive, find
    gc.collect()
    assert gone() is None
    for _ in range(50):
        bscan.parse(TEXT.replace("TX1_N", "OTHER"))  # whoever points into freed memory sees it
    assert list(map(repr, parts)) == texts


def test_nothing_is_left_behind():
    def objects():
        gc.collect()
        return len(gc.get_objects())

    def work():
        device = bscan.parse(TEXT)
        device.to_dict(), device.pins, device.cells
        try:
            device.drive({"TDI": 1})
        except bscan.DriveError:
            pass
        bscan.Chain([device]).svf("drive INT_N=0")

    work()
    before = objects()
    for _ in range(20):
        work()
    assert objects() - before < 20


def test_threads_read_side_by_side():
    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        devices = list(pool.map(lambda _: bscan.parse(TEXT), range(64)))
        facts = list(pool.map(lambda device: device.to_dict(), devices))
        one = devices[0]
        list(pool.map(lambda n: (one.drive({"INT_N": n % 2}), one.vector, one.pins["B6"],
                                 one.observe("01" * 16)), range(64)))
    assert all(fact == facts[0] for fact in facts)


def test_lock_is_free_while_reading():
    # A text that takes a while; this thread counts meanwhile, which it could not with the lock held.
    rows = ", ".join(f"{n} (BC_1, *, internal, X)" for n in range(300_000))
    text = TEXT.replace("end LINK_HUB;", "") + "-- " + rows.replace(", ", "\n-- ") * 3 + \
        "\nend LINK_HUB;"
    interval = sys.getswitchinterval()
    turns, done = 0, threading.Event()
    thread = threading.Thread(target=lambda: (bscan.parse(text), done.set()))
    sys.setswitchinterval(1)  # only a lock that is given up changes hands
    try:
        begin = time.monotonic()
        thread.start()
        while not done.is_set() and time.monotonic() < begin + 30:
            turns += 1
            time.sleep(0)
    finally:
        sys.setswitchinterval(interval)
        thread.join()
    assert turns > 100
