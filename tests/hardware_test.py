"""Plays chains of simulated devices with OpenOCD: hardware_test.py TOOL REPOSITORY [TEST...]"""

import json
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as xml

TOOL, ROOT = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
DEVICES = ROOT / "examples" / "devices"
CHAIN = [f"U1={DEVICES / 'nibble_bus.bsd'}", "X=ir:5", f"U2={DEVICES / 'link_hub.bsd'}"]
# Net by net; TEST_EN holds the compliance pattern of the hub.
BOARD = ["--net", "N0=U1.A(0),U2.D(0)", "--net", "N1=U1.READY,U2.RST_N",
         "--level", "U2.TEST_EN=1", "--level", "U1.SENSE=1"]
TEST_BOARD = ROOT / "examples" / "boards" / "link_board.toml"
TEST_CHAIN = [CHAIN[0], CHAIN[2], CHAIN[0].replace("U1", "U3")]
STEPS = """
drive U1.A(0)=1 U1.READY=0
expect U2.D(0)=1 U2.RST_N=0
drive U1.A(0)=0 U1.READY=1
expect U2.D(0)=0 U2.RST_N=1
"""


def run(*args, **options):
    return subprocess.run(args, text=True, capture_output=True, timeout=60, **options)


class Simulation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.log, self.adapter = self.folder / "pins.log", self.folder / "adapter.cfg"

    def simulate(self, *args, chain=CHAIN):
        process = subprocess.Popen([TOOL, "simulate", *chain, "--log", self.log, "--adapter-file",
                                    self.adapter, *args], stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        self.assertIn("127.0.0.1:", process.stdout.readline())

    def live(self, *args, chain=CHAIN):
        return run(TOOL, "live", "--adapter", self.adapter, *chain, *args)

    def play_svf(self, text):
        """Exit status and output of OpenOCD, playing steps as SVF."""
        steps, svf, chain = (self.folder / name for name in ("steps", "test.svf", "chain.cfg"))
        steps.write_text(text)
        for result in (run(TOOL, "svf", *CHAIN, "--steps", steps, "-o", svf),
                       run(TOOL, "openocd", *CHAIN, "-o", chain)):
            self.assertEqual(result.returncode, 0, result.stderr)
        result = run("openocd", "-f", self.adapter, "-f", chain, "-c",
                     "telnet_port disabled; gdb_port disabled; tcl_port disabled; init; "
                     f"svf {svf}; shutdown")
        return result.returncode, result.stdout + result.stderr

    def driven(self, pin, last="nothing"):
        """What each pin drove, once a pin has come to its last level: the simulation may be behind
        the player."""
        end = time.monotonic() + 30
        while True:
            history = {}
            for line in self.log.read_text().splitlines():
                if found := re.match(r"\d+ (\S+) (drives|pulls) (\S+)$", line):
                    history.setdefault(found[1], []).append(found[3])
            if history.get(pin, [""])[-1] == last or time.monotonic() > end:
                return history
            time.sleep(0.05)


class HardwareTest(Simulation):
    def test_svf_moves_the_pins_that_were_asked(self):
        self.simulate(*BOARD)
        status, output = self.play_svf(STEPS)
        self.assertEqual(status, 0, output)
        history = self.driven("U1.READY")
        # No glitch: each pin has the levels of the steps and goes off at the end.
        self.assertEqual(history["U1.A(0)"], ["1", "0", "nothing"])
        self.assertEqual(history["U1.READY"], ["0", "1", "nothing"])
        self.assertNotIn("U2.D(0)", history)
        self.assertNotIn("contention", self.log.read_text())

    def test_svf_fails_where_a_level_is_wrong(self):
        self.simulate(*BOARD, "--open", "U2.RST_N")
        status, output = self.play_svf(STEPS)
        self.assertNotEqual(status, 0)
        self.assertIn("tdo check error", output)

    def test_live_run_names_what_is_wrong(self):
        steps = self.folder / "steps"
        steps.write_text(STEPS)
        self.simulate(*BOARD)
        self.assertEqual(self.live("run", steps).returncode, 0)
        broken = HardwareTest("setUp")
        broken.setUp()
        self.addCleanup(broken.doCleanups)
        broken.simulate(*BOARD, "--stuck", "N1=0")
        result = broken.live("run", *(word for step in STEPS.splitlines() for word in ("--do", step)))
        self.assertEqual(result.returncode, 1)
        self.assertIn("U2.RST_N (pin C2): wanted 1, seen 0", result.stdout)

    def test_live_read_and_watch_see_what_stands_outside(self):
        self.simulate(*BOARD)
        result = self.live("read", "U1.SENSE", "U2.D(0)", "--format", "csv")
        self.assertEqual(result.stdout.splitlines()[1:],
                         ["U1.SENSE,14,in,in,1", "U2.D(0),E1,inout,in,0"])
        vcd = self.folder / "sense.vcd"
        result = self.live("watch", "U1.SENSE", "--count", "2", "--every", "1", "--vcd", vcd)
        self.assertRegex(result.stdout, r"^\d+\.\d+ U1\.SENSE in 1\n$")
        self.assertIn("$var wire 1 ! U1.SENSE $end", vcd.read_text())
        self.assertNotIn("drives", self.log.read_text())

    def test_live_drive_frees_the_pins(self):
        self.simulate(*BOARD)
        self.assertEqual(self.live("drive", "U1.READY=1", "--hold", "0").returncode, 0)
        self.assertEqual(self.driven("U1.READY")["U1.READY"], ["1", "nothing"])
        process = subprocess.Popen([TOOL, "live", "--adapter", self.adapter, *CHAIN, "drive",
                                    "U1.READY=1", "--hold", "60"], stderr=subprocess.DEVNULL)
        self.driven("U1.READY", last="1")
        process.send_signal(signal.SIGINT)
        process.wait(timeout=30)
        self.assertEqual(self.driven("U1.READY")["U1.READY"], ["1", "nothing"] * 2)

    def test_live_tells_what_it_cannot_reach(self):
        self.simulate(*BOARD)
        hub = f"U1={DEVICES / 'link_hub.bsd'}"
        cases = [
            (["--openocd", "127.0.0.1:1", *CHAIN], "no OpenOCD listens"),
            (["--adapter", self.folder / "none.cfg", *CHAIN], "OpenOCD ended: "),
            (["--adapter", self.adapter, hub, "X=ir:5", hub.replace("U1", "U2")], "IDCODE"),
        ]
        for args, message in cases:
            with self.subTest(message):
                result = run(TOOL, "live", *args, "read")
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertIn(message, result.stderr)

    def test_identify_finds_the_files_of_a_chain(self):
        self.simulate()
        result = run(TOOL, "live", "--adapter", self.adapter, "identify", "--library", DEVICES)
        self.assertRegex(result.stdout, r"0x20030FFD +LINK_HUB .*\n0x10024FFD +NIBBLE_BUS ")

    def test_simulation_refuses_what_it_does_not_know(self):
        for args in (["--net", "N=U1.A(9)"], ["--level", "U1.DIR=2"], ["--short", "U1.DIR"]):
            with self.subTest(args=args):
                result = run(TOOL, "simulate", *CHAIN, *args)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")


class BoardTest(Simulation):
    """The example board, sound and broken."""

    def board(self, *faults, chain=TEST_CHAIN):
        """Exit status and report of a test."""
        nets = []
        for net in json.loads(run(TOOL, "board", TEST_BOARD, "--json").stdout)["nets"]:
            pins = [f"{pin['part']}.{pin['pin']}" for pin in net["pins"]]
            if chain is TEST_CHAIN and net["class"] not in ("tap", "supply", "ground"):
                nets += ["--net", f"{net['name']}={','.join(pins)}"]
        if self.adapter.exists():
            self.adapter.unlink()
        self.simulate(*nets, *(["--pull", "/INT_N=1"] if nets else []), *faults, "--once", chain=chain)
        while not self.adapter.exists():
            time.sleep(0.01)
        result = run(TOOL, "test", TEST_BOARD, "--adapter", self.adapter, "--json",
                     "--save-captures", self.folder / "captures")
        return result.returncode, json.loads(result.stdout)

    def test_sound_board(self):
        status, report = self.board()
        self.assertEqual((status, report["sound"], report["faults"]), (0, True, []))
        self.assertEqual(report["chain"], {"ok": True, "message": None})
        # The held net keeps its level from the first vector to the last.
        self.assertEqual(self.driven("U3.READY")["U3.READY"], ["1", "nothing"])
        self.assertNotIn("contention", self.log.read_text())

    def test_faults_are_named(self):
        pins = ["U1.3", "U2.E1", "U3.3"]
        cases = [
            (["--open", "U2.E1"], "open", ["/D0"], ["U2.E1"], None, None),
            (["--open", "U1.12"], "open", ["/D4"], ["U1.12", "U2.G1"], None, None),
            (["--stuck", "/D0=1"], "stuck", ["/D0"], pins, 1, None),
            (["--short", "/D0,/ADDR1:and"], "short", ["/D0", "/ADDR1"], [], None, "and"),
            (["--short", "/D0,/BUSY1:or"], "short", ["/D0", "/BUSY1"], [], None, "or"),
            (["--short", "/D7,/D0:first"], "short", ["/D0", "/D7"], [], None, "/D7"),
        ]
        for faults, kind, nets, pins, level, winner in cases:
            with self.subTest(faults=faults):
                status, report = self.board(*faults)
                self.assertEqual((status, report["sound"], len(report["faults"])), (1, False, 1))
                self.assertEqual(report["faults"][0], {"kind": kind, "nets": nets, "pins": pins,
                                                       "level": level, "as": winner,
                                                       "one_of": None})
                again = run(TOOL, "test", TEST_BOARD, "--captures", self.folder / "captures",
                            "--json")
                self.assertEqual((again.returncode, json.loads(again.stdout)), (1, report))

    def test_what_looks_the_same_is_given_together(self):
        status, report = self.board("--stuck", "/BUSY1=0")
        self.assertEqual(status, 1)
        self.assertEqual({(fault["kind"], fault["level"]) for fault in report["faults"][0]["one_of"]},
                         {("open", None), ("stuck", 0)})

    def test_a_broken_chain_is_told_before_anything_is_driven(self):
        bus, hub, last = TEST_CHAIN
        cases = [([bus, hub], "missing"), ([bus, last.replace("U3", "U2"), hub.replace("U2", "U3")],
                                           "IDCODE"), ([*TEST_CHAIN, bus.replace("U1", "U4")], "longer")]
        for chain, message in cases:
            with self.subTest(message):
                status, report = self.board(chain=chain)
                self.assertEqual((status, report["sound"], report["faults"]), (2, False, []))
                self.assertFalse(report["chain"]["ok"])
                self.assertIn(message, report["chain"]["message"])
                self.assertNotIn("drives", self.log.read_text())

    def test_junit_and_svf(self):
        self.board("--open", "U2.E1")
        result = run(TOOL, "test", TEST_BOARD, "--captures", self.folder / "captures", "--format",
                     "junit")
        suite = xml.fromstring(result.stdout)
        self.assertEqual((suite.get("tests"), suite.get("failures"), suite.get("skipped")),
                         ("33", "1", "15"))
        self.assertIn("U2.E1 (D(0))", suite.find(".//failure").get("message"))
        svf = run(TOOL, "test", TEST_BOARD, "--svf", "-")
        self.assertEqual(svf.returncode, 0)
        self.assertIn("// Group 3 of 3, vector 10 of 10", svf.stdout)


if __name__ == "__main__":
    if shutil.which("openocd") is None:
        print("openocd is not there: skipped")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
