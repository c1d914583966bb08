"""Runs the bscan program on the example devices: tool_test.py TOOL REPOSITORY [TEST...]

With BSCAN_UPDATE_GOLDEN set, the files in tests/golden/ are written anew instead of compared.
"""

import csv
import io
import json
import os
import pathlib
import pty
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml

TOOL, ROOT = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
GOLDEN, DEVICES = ROOT / "tests" / "golden", ROOT / "examples" / "devices"
HUB, BUS = "link_hub.bsd", "nibble_bus.bsd"

SVG = "{http://www.w3.org/2000/svg}"
ODD = "R\x1b[2J\udcff\u202e\\"

# Name of the golden file, exit status, arguments.
GOLDEN_RUNS = [
    ("show_bus.txt", 0, ["show", BUS]),
    ("show_hub.txt", 0, ["show", HUB]),
    ("show_hub.csv", 0, ["show", HUB, "--format", "csv", "--pins", "--cells"]),
    ("show_bus.json", 0, ["show", BUS, "--json"]),
    ("cells_hub.txt", 0, ["show", HUB, "--cells"]),
    ("pins_hub.txt", 0, ["show", HUB, "--pins"]),
    ("drive_hub.txt", 1, ["drive", HUB, "TX0_P=1", "B3=0", "35=1", "D(7)=1", "INT_N=1", "INT_N=0",
                          "phase=1", "number:25=1", "LANE_N=Z", "RST_N=Z", "RST_N=1", "X9=1"]),
    ("drive_bus.json", 0, ["drive", BUS, "A[0]=1", "port:B(2)=0", "READY=z", "pin:9=Z", "--json"]),
    ("observe_bus.txt", 0, ["observe", BUS, "--capture", "10x01110_10101010_01011_1"]),
    ("diff.csv", 1, ["diff", HUB, "changed.bsd", "--format", "csv"]),
    ("draw_bus.svg", 0, ["draw", BUS, "-"]),
]

# What is replaced in link_hub.bsd, where the reading ends, and a part of the report.
BROKEN = [
    ("BC_7, D(7), bidir", "BC_7, D(7), input", None, ""),
    ("ADDR(0), input", "ADDR(0), output3", -1, "does not suit port ADDR(0) of mode in"),
    ("entity is 32;", "entity is 31;", -1, "not below BOUNDARY_LENGTH"),
    ("bidir, X, 29, 0, Z", "bidir, X, 29, 0, KEEPER", -8, "RESULT Z, PULL0"),
    ('4, 0, Z)";', '4, 0, Z)"; -- last', -8, "no comment may follow the last entry"),
    ("(000000),", "(000 000),", -16, "INSTRUCTION_OPCODE"),
    ("Differential_Current", "Single", -1, "port grouping is malformed"),
    ("    port (", "    PORT (", -5, "keyword in lower case: port"),
    ("end LINK_HUB;", "", -3, "missing 'end' line"),
]


def run(*args, env=None, text=True, **options):
    environment = dict(os.environ, **(env or {}))
    environment.pop("BSCAN_UPDATE_GOLDEN", None)
    options.setdefault("cwd", DEVICES)
    return subprocess.run([TOOL, *args], env=environment, text=text, capture_output=True,
                          timeout=60, **options)


def run_on_terminal(*args, env):
    """Output of a run whose standard output is a terminal."""
    ours, theirs = pty.openpty()
    environment = {k: v for k, v in os.environ.items() if k != "NO_COLOR"}
    child = subprocess.Popen([TOOL, *args], cwd=DEVICES, stdout=theirs,
                             env=dict(environment, TERM="xterm", **env))
    os.close(theirs)
    output = b""
    try:
        while piece := os.read(ours, 65536):
            output += piece
    except OSError:  # how a terminal tells its end
        pass
    os.close(ours)
    return child.wait(), output.decode()


class ToolTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write_hub(self, name, *replacements):
        text = (DEVICES / HUB).read_text()
        for old, new in replacements:
            self.assertIn(old, text)
            text = text.replace(old, new, 1)
        path = self.folder / name
        path.write_bytes(text.encode("utf-8", "surrogateescape"))
        return path

    def test_golden(self):
        for device in (HUB, BUS):
            (self.folder / device).write_bytes((DEVICES / device).read_bytes())
        self.write_hub("changed.bsd", ("TX0_P   : A5", "TX0_P   : A6"),
                       ("TX0_N   : A6", "TX0_N   : A5"),
                       ("17 (BC_1, RST_N, input, X)", "17 (BC_4, RST_N, clock, X)"),
                       ("100001", "100011"), ("INT_N   : out", "INT_N   : inout"),
                       ("USERCODE  (000011)", "USER      (000011)"))
        for name, status, args in GOLDEN_RUNS:
            with self.subTest(name):
                result = run(*args, cwd=self.folder)
                self.assertEqual((result.stderr, result.returncode), ("", status))
                if "BSCAN_UPDATE_GOLDEN" in os.environ:
                    (GOLDEN / name).write_text(result.stdout)
                self.assertEqual(result.stdout, (GOLDEN / name).read_text())

    def test_usage(self):
        bad = [[], ["wrong"], ["show"], ["show", HUB, "--format", "xml"], ["drive", HUB],
               ["drive", HUB, "D=2"], ["drive", HUB, "=1"], ["observe", HUB],
               ["observe", HUB, "--capture", "012"], ["check", HUB, "--jobs", "0"],
               ["diff", HUB], ["diff", HUB, "none.bsd"]]
        for args in bad:
            with self.subTest(args=args):
                result = run(*args)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")

    def test_failures_name_line_reason_and_remedy(self):
        for old, new, code, advice in BROKEN:
            with self.subTest(new=new):
                path = self.write_hub("broken.bsd", (old, new))
                result = run("show", path)
                if code is None:
                    self.assertEqual((result.returncode, result.stderr), (0, ""))
                    continue
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertRegex(result.stderr.splitlines()[0], rf"broken\.bsd:\d+: .+ \({code}\)$")
                self.assertIn(advice, result.stderr)
        self.assertIn("is a folder", run("show", self.folder).stderr)
        result = run("show", "none.bsd")
        self.assertRegex(result.stderr, r"^none\.bsd: .+ \(-10\)\n")

    def test_check_goes_on_after_broken_files(self):
        deep = self.folder / "deep" / "er"
        deep.mkdir(parents=True)
        self.write_hub("good.bsd")
        (deep / "broken.BSDL").write_text("not a description\n")
        (deep / "notes.txt").write_text("not read\n")
        (self.folder / "folder.bsd").mkdir()
        (self.folder / "loop").symlink_to(self.folder)
        for jobs in ("1", "4"):
            with self.subTest(jobs=jobs):
                result = run("check", "--jobs", jobs, self.folder, DEVICES / BUS, "none.bsd")
                self.assertEqual(result.returncode, 1)
                lines = result.stdout.replace(str(self.folder), "F").splitlines()
                self.assertRegex(lines[0], r"^F/deep/er/broken.BSDL:1: .* \(-5\)$")
                self.assertEqual(lines[1], "F/good.bsd: ok")
                self.assertRegex(lines[3], r"^none.bsd: .* \(-10\)$")
                self.assertEqual(lines[4], "4 files: 2 sound, 2 failing (1 with -10, 1 with -5)")
        result = run("check", "--json", self.folder)
        self.assertEqual([json.loads(line)["code"] for line in result.stdout.splitlines()], [-5, 0])
        result = run("check", "--format", "csv", self.folder)
        rows = csv.DictReader(io.StringIO(result.stdout))
        self.assertEqual([row["code"] for row in rows], ["-5", "0"])
        self.assertEqual(run("check", DEVICES).returncode, 0)
        self.assertEqual(run("check", deep.parent / "none", deep).returncode, 1)

    def test_capture_comes_from_a_file_or_standard_input(self):
        text = "1010 1010 # first eight\n0101_0101 1111 xX\n"
        (self.folder / "capture").write_text(text)
        from_file = run("observe", BUS, "--capture-file", self.folder / "capture")
        piped = run("observe", BUS, "--capture-file", "-", input=text)
        self.assertEqual(from_file.returncode, 0)
        self.assertEqual(from_file.stdout, piped.stdout)
        short = run("observe", BUS, "--capture", "101")
        self.assertEqual(short.returncode, 1)
        self.assertIn("3 bits", short.stderr)

    def test_drive_output_can_be_observed(self):
        driven = json.loads(run("drive", HUB, "D(5)=1", "LANE_P=0", "--json").stdout)
        seen = json.loads(run("observe", HUB, "--capture", driven["bits"], "--json").stdout)
        levels = {row["port"]: (row["direction"], row["level"]) for row in seen["ports"]}
        self.assertEqual(driven["also_driven"], ["D(4)", "D(6)", "D(7)"])
        self.assertEqual(levels["D(5)"], ("out", "1"))
        self.assertEqual(levels["LANE_P"], ("out", "0"))
        self.assertEqual(levels["D(0)"], ("in", "Z"))

    def test_driver_is_switched_whatever_receives(self):
        receivers = {"input": "input", "observe_only": "observe_only", "nothing": None}
        for name, function in receivers.items():
            with self.subTest(name):
                entry = f"(BC_4, TX0_P, {function}, X)" if function else "(BC_0, *, internal, X)"
                path = self.write_hub("inout.bsd", ("TX0_P   : out", "TX0_P   : inout"),
                                      ("19 (BC_0, *, internal, X)", "19 " + entry))
                requests = {"TX0_P=1": "11", "TX0_P=0": "01", "TX0_P=Z": ".0"}
                for request, bits in requests.items():
                    result = json.loads(run("drive", path, "TX0_P=1", request, "--json").stdout)
                    self.assertRegex(result["bits"][20:22], bits)

    def test_elements_are_reached_when_the_package_lacks_their_numbers(self):
        path = self.write_hub("other.bsd", ('string := "BGA48"', 'string := "OTHER"'))
        result = json.loads(run("drive", path, "TX0_P=1", "E1=1", "--json").stdout)
        self.assertEqual([row["done"] for row in result["requests"]], [True, True])
        self.assertEqual(result["bits"], "10001000000000100000110000000000")

    def test_drawing_of_a_grid(self):
        result = run("draw", HUB, self.folder / "hub.svg")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        root = xml.parse(self.folder / "hub.svg").getroot()
        titles = {t.text.split(":")[0]: t.text for t in root.iter(SVG + "title")}
        self.assertEqual(len(titles), 48 + 1)
        self.assertEqual(titles["B6"], "B6: TX1_N, out, negative leg; "
                                       "cell 27: BC_1 output3, control cell 26")
        circles = {(c.get("cx"), c.get("cy")) for c in root.iter(SVG + "circle")}
        self.assertEqual(len(circles), 48)
        self.assertEqual(run("draw", HUB, self.folder / "none" / "x.svg").returncode, 1)

    def test_odd_bytes_are_escaped(self):
        path = self.write_hub("odd.bsd", ("RST_N   : in", ODD + " : in"),
                              ("RST_N   : C2", ODD + " : C2"))
        table = run("show", path, "--pins", text=False).stdout
        self.assertIn(b"R\\x1B[2J\\xFF\\xE2\\x80\\xAE\\\\ ", table)
        model = json.loads(run("show", path, "--pins", "--json").stdout)
        self.assertIn("R\x1b[2J\\xFF\u202e\\", [row["name"] for row in model["pins"]])
        self.assertIn("R\\x1B[2J\\xFF", run("draw", path, "-").stdout)
        broken = self.folder / "new\nline.bsd"
        broken.write_text("x\n")
        self.assertIn("new\\x0Aline.bsd:1: ", run("show", broken).stderr)

    def test_colour_is_for_terminals(self):
        for env, coloured in (({}, True), ({"NO_COLOR": "1"}, False)):
            status, output = run_on_terminal("show", BUS, env=env)
            self.assertEqual((status, "\x1b[1m" in output), (0, coloured))
        self.assertNotIn("\x1b", run("show", BUS).stdout)

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "w") as full:
            result = subprocess.run([TOOL, "show", DEVICES / BUS], stdout=full,
                                    stderr=subprocess.PIPE)
        self.assertEqual(result.returncode, 2)

    def test_json_follows_the_schema(self):
        try:
            import jsonschema
        except ImportError:
            self.skipTest("needs python3-jsonschema")
        schema = json.loads((ROOT / "docs" / "bscan.schema.json").read_text())
        runs = [["show", HUB], ["show", BUS, "--pins", "--cells", "--instructions"],
                ["drive", HUB, "D=1", "X=1"], ["observe", BUS, "--capture", "x" * 22],
                ["check", HUB], ["check", "none.bsd"], ["diff", HUB, BUS]]
        for args in runs:
            with self.subTest(args=args):
                jsonschema.validate(json.loads(run(*args, "--json").stdout), schema)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
