"""Plays chains of simulated devices with OpenOCD: hardware_test.py TOOL REPOSITORY [TEST...]"""

import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOL, ROOT = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
DEVICES = ROOT / "examples" / "devices"
CHAIN = [f"U1={DEVICES / 'nibble_bus.bsd'}", "X=ir:5", f"U2={DEVICES / 'link_hub.bsd'}"]
# Net by net; TEST_EN holds the compliance pattern of the hub.
BOARD = ["--net", "N0=U1.A(0),U2.D(0)", "--net", "N1=U1.READY,U2.RST_N",
         "--level", "U2.TEST_EN=1", "--level", "U1.SENSE=1"]
STEPS = """
drive U1.A(0)=1 U1.READY=0
expect U2.D(0)=1 U2.RST_N=0
drive U1.A(0)=0 U1.READY=1
expect U2.D(0)=0 U2.RST_N=1
"""


def run(*args, **options):
    return subprocess.run(args, text=True, capture_output=True, timeout=60, **options)


class HardwareTest(unittest.TestCase):
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


if __name__ == "__main__":
    if shutil.which("openocd") is None:
        print("openocd is not there: skipped")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
