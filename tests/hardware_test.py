"""Plays chains of simulated devices with OpenOCD: hardware_test.py TOOL REPOSITORY [TEST...]"""

import json
import os
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

    def other_simulation(self, *args):
        """A test case of its own, so that several boards can be there in one test."""
        other = HardwareTest("setUp")
        other.setUp()
        self.addCleanup(other.doCleanups)
        other.simulate(*args)
        return other

    def test_faults_of_the_board_are_seen(self):
        three = ["--net", "N2=U1.BUSY,U2.D(4)"]
        # What U1 drives on N0, N1 and N2; what U2 receives from them.
        rows = [("101", "101", []),
                ("101", "001", ["--short", "N0,N1"]), ("101", "001", ["--short", "N0,N1:and"]),
                ("101", "111", ["--short", "N0,N1:or"]), ("101", "111", ["--short", "N0,N1:first"]),
                ("101", "001", ["--short", "N1,N0:first"]),
                ("101", "111", ["--short", "U2.port:D(0),U2.port:RST_N:or"]),
                # Through a net that two shorts have in common.
                ("001", "111", ["--short", "N0,N1:or", "--short", "N1,N2:or"]),
                ("110", "000", ["--short", "N0,N1", "--short", "N1,N2"]),
                ("111", "011", ["--open", "U2.D(0)"]), ("111", "011", ["--open", "U1.A(0)"]),
                ("010", "110", ["--open", "U2.D(0)", "--float", "1"]),
                ("010", "110", ["--open", "U1.A(0)", "--pull", "N0=1"]),
                ("001", "001", ["--pull", "N0=1"]), ("001", "101", ["--level", "N0=1", "--stuck", "N0=1"]),
                ("011", "111", ["--stuck", "N0=1"]), ("100", "101", ["--stuck", "U2.D(4)=1"])]
        for given, seen, faults in rows:
            with self.subTest(given=given, faults=faults):
                board = self.other_simulation(*BOARD, *three, *faults)
                steps = self.folder / "steps"
                steps.write_text("drive U1.A(0)={} U1.READY={} U1.BUSY={}\n".format(*given) +
                                 "expect U2.D(0)={} U2.RST_N={} U2.D(4)={}\n".format(*seen))
                result = board.live("run", steps)
                self.assertEqual((result.returncode, result.stdout),
                                 (0, "2 steps: all as expected\n"), result.stderr)

    def test_live_read_gives_the_same_in_every_format(self):
        self.simulate(*BOARD)
        rows = json.loads(self.live("read", "--format", "json").stdout)["ports"]
        by_name = {row["port"]: row for row in rows}
        self.assertEqual([by_name["U1.SENSE"][key] for key in ("pin", "mode", "direction", "level")],
                         ["14", "in", "in", "1"])
        lines = self.live("read", "--format", "csv").stdout.splitlines()
        self.assertEqual(lines[0], "port,pin,mode,direction,level")
        self.assertEqual([line.split(",")[0] for line in lines[1:]], [row["port"] for row in rows])
        table = self.live("read", "U1.*", "U2.RST_N").stdout
        self.assertRegex(table, r"U2\.RST_N +C2 +in +in +0\n$")
        self.assertNotIn("drives", self.log.read_text())

    def test_live_refuses_what_cannot_be_done_before_it_drives(self):
        self.simulate(*BOARD)
        rows = [(["read", "U1.NIL"], "no pin or port 'NIL'"), (["read", "X.A"], "has no file"),
                (["drive", "U1.READY=1", "U1.SENSE=1"], "mode in cannot be driven"),
                (["drive", "U1.READY=2"], "PIN=LEVEL|PIN=0"), (["run", "none.steps"], "cannot read"),
                (["run", "--do", "drive U1.READY=1", "--do", "fly"], "step:2: "),
                (["watch", "U1.READY", "--vcd", self.folder / "none" / "a.vcd"], "cannot write"),
                (["watch", "U1.NIL"], "no pin or port 'NIL'")]
        for args, message in rows:
            with self.subTest(args=args):
                result = self.live(*args)
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertRegex(result.stderr, message)
        self.assertNotIn("U1.READY drives", self.log.read_text())

    def start_live(self, *args):
        process = subprocess.Popen([TOOL, "live", "--adapter", self.adapter, *CHAIN, *args],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def test_signals_end_a_run_and_free_the_pins(self):
        self.simulate(*BOARD)
        args = ["run", "--do", "drive U1.READY=1", "--do", "wait 600000 ms", "--do",
                "drive U1.READY=0"]
        for turn, number in enumerate((signal.SIGINT, signal.SIGTERM, signal.SIGHUP), 1):
            with self.subTest(number):
                process = self.start_live(*args)
                self.driven("U1.READY", last="1")
                process.send_signal(number)
                output, problems = process.communicate(timeout=30)
                self.assertEqual((process.returncode, output), (1, ""))
                self.assertIn("interrupted; the pins are free again", problems)
                self.assertEqual(self.driven("U1.READY")["U1.READY"], ["1", "nothing"] * turn)

    def test_a_lost_openocd_is_told(self):
        self.simulate(*BOARD)
        process = self.start_live("drive", "U1.READY=1", "--hold", "600")
        self.driven("U1.READY", last="1")
        children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text()
        self.assertEqual(len(children.split()), 1)
        os.kill(int(children), signal.SIGKILL)
        process.send_signal(signal.SIGINT)
        output, problems = process.communicate(timeout=30)
        self.assertEqual((process.returncode, output), (1, ""))
        self.assertRegex(problems, "does not answer any more|no OpenOCD listens")
        self.assertNotIn("free again", problems)

    def test_an_openocd_of_the_user_is_left_as_it_was(self):
        self.simulate(*BOARD)
        chain = self.folder / "chain.cfg"
        self.assertEqual(run(TOOL, "openocd", *CHAIN, "-o", chain).returncode, 0)
        server = subprocess.Popen(
            ["openocd", "-f", self.adapter, "-f", chain, "-c",
             "gdb_port disabled; telnet_port disabled; tcl_port 0; init"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        for line in server.stdout:
            if found := re.search(r"on port (\d+) for tcl connections", line):
                break
        address = f"127.0.0.1:{found[1]}"
        for args in (["drive", "U1.READY=1", "--hold", "0"], ["read", "U1.SENSE"]) * 2:
            result = run(TOOL, "live", "--openocd", address, *CHAIN, *args)
            self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(self.driven("U1.READY")["U1.READY"], ["1", "nothing"] * 2)
        # A chain of other devices is not that of the configuration.
        result = run(TOOL, "live", "--openocd", address, CHAIN[2], "read")
        self.assertEqual((result.returncode, result.stdout), (1, ""))

    def test_identify_finds_the_files_of_a_chain(self):
        self.simulate()
        result = run(TOOL, "live", "--adapter", self.adapter, "identify", "--library", DEVICES)
        self.assertRegex(result.stdout, r"0x20030FFD +LINK_HUB .*\n0x10024FFD +NIBBLE_BUS ")

    def test_simulation_refuses_what_it_does_not_know(self):
        for args in (["--net", "N=U1.A(9)"], ["--level", "U1.DIR=2"], ["--short", "U1.DIR"],
                     ["--short", "U1.A,U1.DIR"], ["--short", "U1.DIR,U1.OE_N:xor"], ["--net", "N"],
                     ["--net", "N=U1.A"], ["--net", "N=U1.DIR", "--net", "M=U1.DIR"],
                     ["--open", "NIL"], ["--stuck", "U1.DIR"], ["--pull", "NIL=1"],
                     ["--float", "2"]):
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
