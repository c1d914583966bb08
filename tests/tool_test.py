"""Runs the bscan program on the example devices: tool_test.py TOOL REPOSITORY [TEST...]

With BSCAN_UPDATE_GOLDEN set, the files in tests/golden/ are written anew instead of compared.
"""

import csv
import errno
import io
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as xml

TOOL, ROOT = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
GOLDEN, DEVICES = ROOT / "tests" / "golden", ROOT / "examples" / "devices"
HUB, BUS = "link_hub.bsd", "nibble_bus.bsd"

CHAIN = ROOT / "examples" / "chains" / "bus_and_hub.toml"
BOARD = ROOT / "examples" / "boards" / "link_board.toml"
STEPS = CHAIN.with_suffix(".steps")

SVG = "{http://www.w3.org/2000/svg}"
ODD = "R\x1b[2J\udcff\u202e\\"

# Name of the golden file, exit status, arguments.
GOLDEN_RUNS = [
    ("show_bus.txt", 0, ["show", BUS]),
    ("show_hub.txt", 0, ["show", HUB]),
    ("show_hub.csv", 0, ["show", HUB, "--format", "csv", "--pins", "--cells"]),
    ("show_bus_json.txt", 0, ["show", BUS, "--json"]),
    ("cells_hub.txt", 0, ["show", HUB, "--cells"]),
    ("pins_hub.txt", 0, ["show", HUB, "--pins"]),
    ("drive_hub.txt", 1, ["drive", HUB, "TX0_P=1", "B3=0", "35=1", "D(7)=1", "INT_N=1", "INT_N=0",
                          "phase=1", "number:25=1", "LANE_N=Z", "RST_N=Z", "RST_N=1", "X9=1"]),
    ("drive_bus_json.txt", 0, ["drive", BUS, "A[0]=1", "port:B(2)=0", "READY=z", "pin:9=Z", "--json"]),
    ("show_all_hub_json.txt", 0, ["show", HUB, "--all", "--instructions", "--json"]),
    ("observe_bus.txt", 0, ["observe", BUS, "--capture", "10x01110_10101010_01011_1"]),
    ("diff.csv", 1, ["diff", HUB, "changed.bsd", "--format", "csv"]),
    ("draw_bus.svg", 0, ["draw", BUS, "-"]),
    ("chain.svf", 0, ["svf", "--chain", CHAIN, "--steps", STEPS]),
    ("long.svf", 0, ["svf", BUS, "X=ir:300", "--no-idcode", "--frequency", "123.9", "--do",
                     "drive READY=1", "--from-sample", "U1=" + "01" * 11]),
    ("board.csv", 0, ["board", BOARD, "--format", "csv"]),
    ("chain.cfg", 0, ["openocd", "--chain", CHAIN]),
    ("format_untidy.bsd", 0, ["format", ROOT / "tests" / "devices" / "untidy.bsd"]),
]

# What is replaced in link_hub.bsd, the code of a reading by lines, and where `check` finds what.
BROKEN = [
    ("BC_7, D(7), bidir", "BC_7, D(7), input", None, ["155:26 error control-unneeded"]),
    ("ADDR(0), input", "ADDR(0), output3", -1,
     ["151:29 error control-missing", "151:29 error cell-function-against-mode"]),
    ("entity is 32;", "entity is 31;", -1, ["119:55 error boundary-length"]),
    ("bidir, X, 29, 0, Z", "bidir, X, 29, 0, KEEPER", -8, []),
    ('4, 0, Z)";', '4, 0, Z)"; -- last', -8, []),
    ("(000000),", "(000 000),", -16, ["85:24 warning blank-in-bits"]),
    ("    port (", "    PORT (", -5, []),
    ("end LINK_HUB;", "", -3, ["167:63 warning end-missing"]),
]


def run(*args, env=None, text=True, **options):
    environment = dict(os.environ, **(env or {}))
    environment.pop("BSCAN_UPDATE_GOLDEN", None)
    options.setdefault("cwd", DEVICES)
    return subprocess.run([TOOL, *args], env=environment, text=text, capture_output=True,
                          timeout=60, **options)


def rows_of(text):
    """A JSON object with a line for each of its values, and for each element of a list."""
    model = json.loads(text)
    return "".join(f"{name}: {json.dumps(row)}\n" for name, value in model.items()
                   for row in (value if isinstance(value, list) else [value]))


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
                       ("USERCODE  (000011)", "USER      (000011)"),
                       ("(IDCODE, USERCODE)", "(IDCODE, USER)"),
                       ("attribute USERCODE_REGISTER", "attribute USER_REGISTER"),
                       ("(TEST_EN) (1)", "(TEST_EN) (0)"), ("50.0e6, LOW", "40.0e6, BOTH"),
                       ('"0010" &', '"0011" &'), ('IVATE of LINK_HUB : entity is "FACTORY"',
                                                  'IVATE of LINK_HUB : entity is "LINK_STAT"'))
        for name, status, args in GOLDEN_RUNS:
            with self.subTest(name):
                result = run(*args, cwd=self.folder)
                self.assertEqual((result.stderr, result.returncode), ("", status))
                output = rows_of(result.stdout) if "--json" in args else result.stdout
                if "BSCAN_UPDATE_GOLDEN" in os.environ:
                    (GOLDEN / name).write_text(output)
                self.assertEqual(output, (GOLDEN / name).read_text())

    def test_usage(self):
        bad = [[], ["wrong"], ["show"], ["show", HUB, "--format", "xml"], ["drive", HUB],
               ["drive", HUB, "D=2"], ["drive", HUB, "=1"], ["observe", HUB],
               ["observe", HUB, "--capture", "012"], ["check", HUB, "--jobs", "0"], ["check"],
               ["check", HUB, "--rule", "none"], ["check", "--explain", "none"],
               ["check", HUB, "--format", "xml"],
               ["diff", HUB], ["diff", HUB, "none.bsd"],
               ["svf", HUB, "--frequency", "0"],
               ["svf", HUB, "--steps", "-", "--steps"], ["openocd", HUB, "-o"], ["live", HUB],
               ["live", HUB, "fly"], ["live", HUB, "drive"], ["live", HUB, "read", "--format", "xml"],
               ["live", "--openocd", "a:1", "--adapter", "b", HUB, "read"],
               ["live", HUB, "drive", "D=1", "--hold", "-1"], ["live", HUB, "watch", "--count", "0"],
               ["live", HUB, "identify"], ["simulate", HUB, "--port", "65536"],
               ["simulate", HUB, "--float", "2"]]
        for args in bad:
            with self.subTest(args=args):
                result = run(*args)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")
        self.assertIn("wrong is no command", run("wrong", HUB).stderr)
        for args, message in ((["svf", HUB, "--frequency", "-1"], "is more than 0, not -1\n"),
                              (["live", HUB, "watch", "--every", "-5"], "is 0 or more, not -5\n"),
                              (["live", HUB, "watch", "--count", "x"], "is more than 0, not x\n")):
            self.assertIn(message, run(*args).stderr)

    def test_failures_name_line_and_reason(self):
        for old, new, code, _ in BROKEN:
            with self.subTest(new=new):
                path = self.write_hub("broken.bsd", (old, new))
                result = run("show", path, "--lines")
                if code is None:
                    self.assertEqual((result.returncode, result.stderr), (0, ""))
                    continue
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertRegex(result.stderr.splitlines()[0], rf"broken\.bsd:\d+: .+ \({code}\)$")
                self.assertIn(f"'bscan check {path}' tells", result.stderr)
        for lines in ([], ["--lines"]):
            self.assertEqual(run("show", self.folder, *lines).returncode, 1)
            result = run("show", "none.bsd", *lines)
            self.assertRegex(result.stderr, r"^none\.bsd: .+ \(-10\)\n")
        result = run("show", self.folder)
        self.assertIn("this is a folder", result.stderr)

    def test_a_file_with_errors_is_shown_and_summed_up(self):
        for old, new, _, findings in BROKEN:
            with self.subTest(new=new):
                path = self.write_hub("broken.bsd", (old, new))
                result = run("show", path)
                counts = [(n, word) for word in ("error", "warning")
                          for n in [sum(f" {word} " in f for f in findings)] if n]
                expected = " and ".join(f"{n} {word}{'s' * (n > 1)}" for n, word in counts)
                line = f"{path}: {expected}; 'bscan check {path}' tells more\n" if counts else ""
                self.assertEqual((result.returncode, result.stderr), (0, line))
                self.assertIn("LINK_HUB", result.stdout)

    def test_doubtful_pins_are_refused(self):
        # What is broken, which pins are doubtful, and which are not.
        rows = [(("BC_7, D(7), bidir, X, 9, 0, Z", "BC_7, D(7), bidir, X, 7, 0, Z"), ["D(7)"], ["D(6)"]),
                (('" 9 (BC_2, *, control, 0)', '" 9 (BC_2, *, contrl, 0)'), ["D(4)", "D(7)"], ["D(3)"]),
                (("TX0_P   : A5", "TX0_P   : A5, A5"), [], ["D(3)"]),
                (("TX1_N   : B6", "TX1_N   : B5"), ["TX1_P", "TX1_N"], ["TX0_P"]),
                (("INT_N   : out", "INT_N   : outt"), ["INT_N"], ["D(0)"]),
                (("TX0_P   : out bit;\n        TX0_N ", "TX0_P, TX0_N "), [], ["TX0_N"]),
                (("entity is 32;", "entity is 33;"), ["D(0)", "TX0_P"], []),
                (("1111111110", "111111111"), [], ["D(0)", "TX0_P"])]
        for replaced, doubtful, sure in rows:
            with self.subTest(replaced[1]):
                path = self.write_hub("doubt.bsd", replaced)
                result = run("drive", path, "--json", *[f"port:{pin}=1" for pin in doubtful + sure])
                requests = json.loads(result.stdout)["requests"]
                errors = {row["port"]: row["error"] for row in requests}
                for pin in doubtful:
                    self.assertIsNotNone(errors[pin], errors)
                for pin in sure:
                    self.assertIsNone(errors[pin], errors)
                self.assertEqual(result.returncode, int(bool(doubtful)))
                length = json.loads(result.stdout)["length"]
                seen = run("observe", path, "--json", "--capture", "1" * length)
                ports = {row["port"]: row for row in json.loads(seen.stdout)["ports"]}
                self.assertEqual([pin for pin in doubtful
                                  if pin in ports and ports[pin]["level"] != "X"], [])
                self.assertEqual("not told" in seen.stderr, seen.returncode == 1)
        forced = run("drive", path, "D(0)=1", "--force", "--json")
        self.assertTrue(json.loads(forced.stdout)["requests"][0]["done"])

    def test_a_lost_line_drives_nothing_else(self):
        for device, pin in ((HUB, "D(0)"), (BUS, "B(3)")):
            args = ["drive", "-", f"port:{pin}=1", "--json"]
            lines = (DEVICES / device).read_text().splitlines()
            whole = json.loads(run(*args, input="\n".join(lines)).stdout)["bits"]
            for number in range(len(lines)):
                text = "\n".join(lines[:number] + lines[number + 1:])
                result = run(*args, input=text)
                if result.returncode == 0:
                    self.assertEqual(json.loads(result.stdout)["bits"], whole, lines[number])
                self.assertLessEqual(result.returncode, 1)

    def test_makers_devices_can_be_shown_and_driven_by_every_name(self):
        folder = ROOT.parent / "shared" / "devices"
        if not folder.is_dir():
            self.skipTest("needs ../shared/devices")
        for path in sorted(folder.iterdir()):
            with self.subTest(path.name):
                pins = json.loads(run("show", path, "--pins", "--json").stdout)["pins"]
                pins = pins[::max(1, len(pins) // 50)]
                for prefix, key in (("port:", "port"), ("pin:", "pin")):
                    named = [row for row in pins if row[key]]
                    if not named:
                        continue
                    requests = [f"{prefix}{row[key]}=Z" for row in named]
                    rows = json.loads(run("drive", path, *requests, "--json").stdout)["requests"]
                    found = {row["request"]: row["port"] for row in rows}
                    self.assertEqual(found, {request: row["port"]
                                             for request, row in zip(requests, named)})

    def test_devices_come_from_standard_input_and_in_other_packages(self):
        text = (DEVICES / BUS).read_text()
        for args in (["show"], ["show", "--lines"], ["drive", "A=0x5"], ["observe", "--capture", "x" * 22]):
            from_file = run(args[0], BUS, *args[1:], "--format", "csv")
            piped = run(args[0], "-", *args[1:], "--format", "csv", input=text)
            self.assertEqual((piped.returncode, piped.stdout), (0, from_file.stdout))
        self.assertEqual(run("diff", BUS, "-", input=text).returncode, 0)
        failed = run("show", "-", "--lines", input=text.replace("entity is 22", "entity is x"))
        self.assertRegex(failed.stderr, r"^standard input: .* \(-8\)\n")
        self.assertRegex(run("show", "-", input="").stderr, r"^standard input: .* \(-21\)\n")
        two = self.folder / "two.bsd"
        two.write_text(text.replace("    -- The test access port:", """
            constant TINY : PIN_MAP_STRING := "CLK: A9, A: (B1, B2, B3, B4)";\n--""", 1))
        pins = json.loads(run("show", two, "--package", "tiny", "--pins", "--json").stdout)["pins"]
        self.assertEqual({row["port"]: row["pin"] for row in pins}["A(3)"], "B4")
        self.assertIn("SO24; --package chooses TINY", run("show", two).stdout)
        self.assertEqual(run("drive", two, "B4=1", "--package", "TINY").returncode, 0)
        missing = run("show", two, "--package", "BGA")
        self.assertEqual(missing.returncode, 1)
        self.assertIn("it has SO24, TINY", missing.stderr)
        self.assertEqual(run("show", two, "--package", "TINY", "--lines").returncode, 2)

    def test_facts_in_words_and_as_fields(self):
        path = self.write_hub(
            "facts.bsd", ("VDD     : linkage bit", "VDD     : POWER_POS bit"),
            ("17 (BC_1, RST_N", "17 (MY_CELL, RST_N"),
            ('is "(TEST_EN) (1)"', 'is "(TEST_EN, ADDR(3), D(0)) (10X, 1X1)"'),
            ('"0010" &', '"XXXX000000000011000011111111110" & "1, " & "001X" &'),
            ("CLAMP     (000100)", "HIGHZ     (000100)"), ("(BYPASS, CLAMP)", "(BYPASS)"))
        model = json.loads(run("show", path, "--json").stdout)
        pins = {row["port"]: row for row in model["pins"]}
        self.assertEqual((pins["VDD(1)"]["mode"], pins["VDD(1)"]["declared_mode"]),
                         ("linkage", "power_pos"))
        self.assertEqual((model["cells"][17]["type"], model["cells"][17]["type_name"]),
                         ("unknown", "MY_CELL"))
        self.assertEqual([(code["hex"], code["version"], code["part"], code["manufacturer"])
                          for code in model["idcodes"]],
                         [("0xX0030FFD", None, 48, 0x7FE), (None, None, 48, 0x7FE)])
        registers = {row["instruction"]: (row["register"], row["register_told_by"])
                     for row in model["instructions"]}
        self.assertEqual((registers["HIGHZ"], registers["BYPASS"], registers["FACTORY"]),
                         (("BYPASS", "standard"), ("BYPASS", "file"), (None, None)))
        self.assertEqual((model["tap"]["tck"], model["tap"]["trst"], model["tap"]["max_frequency"]),
                         ({"port": "TCK", "pin": "B1"}, None, 50e6))
        text = ("either TEST_EN (pin C1) must be 1, ADDR(3) (pin E5) must be 0; "
                "or TEST_EN (pin C1) must be 1, D(0) (pin E1) must be 1")
        self.assertEqual(model["compliance"]["text"], text)
        self.assertEqual(run("drive", path, "D=Z").stdout.count(text), 1)
        self.assertIn("power_pos", run("show", path, "--pins").stdout)

    def test_pins_as_people_write_them(self):
        # Requests on the bus A(0 to 3), whose cells are 0 to 3, and what these cells hold then.
        rows = [(["A=0x5"], "0101"), (["A=0b1000"], "1000"), (["A(3..0)=0x8"], "0001"),
                (["A*=1"], "1111"), (["A=1", "A(1..2)=0b00"], "1001"), (["A=0x10"], None),
                (["*A=0x1"], None), (["A(3..4)=1"], None), (["A(1)=0b1"], "0100")]
        for requests, cells in rows:
            with self.subTest(requests):
                result = run("drive", BUS, *requests, "--json")
                self.assertEqual(result.returncode, int(cells is None))
                if cells:
                    self.assertEqual(json.loads(result.stdout)["bits"][:4], cells)
        self.assertIn("most significant bit first: A(3) to A(0)",
                      run("drive", BUS, "A(3..0)=0x8").stdout)

    def test_drive_starts_from_a_capture(self):
        captured = "1011010110" + "0" * 12
        for capture in (captured, "hex:b58000", "hex:b58 00x"):
            driven = json.loads(run("drive", BUS, "SENSE=Z", "--capture", capture, "--json").stdout)
            self.assertEqual((driven["bits"], driven["hex"]), (captured, "b58000"))
        (self.folder / "capture").write_text("0xB5_80 # cells 0 to 15\n00")
        driven = run("drive", BUS, "A(0)=0", "--capture-file", self.folder / "capture", "--json")
        self.assertEqual(json.loads(driven.stdout)["bits"], "0" + captured[1:4] + "1" + captured[5:])
        for bad in ("hex:b5800001", "hex:b58001", "hex:", "hex:g", "0x101010"):
            self.assertNotEqual(run("observe", BUS, "--capture", bad).returncode, 0, bad)

    def test_check_finds_faults_in_their_places(self):
        for old, new, _, expected in BROKEN:
            with self.subTest(new=new):
                path = self.write_hub("broken.bsd", (old, new))
                result = run("check", "--json", path)
                record = json.loads(result.stdout)
                self.assertEqual(list(record), ["file", "result", "component", "findings"])
                self.assertEqual((record["result"], record["component"]), (0, "LINK_HUB"))
                found = [f"{f['line']}:{f['column']} {f['severity']} {f['rule']}"
                         for f in record["findings"]]
                self.assertEqual(found, expected)
                self.assertEqual(result.returncode, int(" error " in " ".join(found)))

    def test_check_points_with_a_caret(self):
        path = self.write_hub("odd.bsd", ("17 (BC_1, RST_N, input", "17\t(BC_1,\tRST_N, inp\xc4t"))
        lines = run("check", path).stdout.splitlines()
        self.assertRegex(lines[0], r"odd\.bsd:\d+:\d+: \w+: .* \[[a-z-]+\]$")
        place = lines[2].index("^")
        self.assertIn(lines[1][place:place + lines[2].count("~") + 1], lines[0])
        long = self.write_hub("long.bsd", ("BC_7, D(7), bidir", " " * 6000 + "BC_7, D(7), input"))
        lines = run("check", long).stdout.splitlines()
        self.assertLess(len(lines[1]), 110)
        self.assertTrue(lines[1][lines[2].index("^"):].startswith("input"))

    def test_check_goes_on_after_broken_files(self):
        deep = self.folder / "deep" / "er"
        deep.mkdir(parents=True)
        self.write_hub("good.bsd")
        (deep / "broken.BSDL").write_text("not a description\n")
        for name in ("notes.txt", "no_ending.bsm"):
            (deep / name).write_text("not read\n")
        (self.folder / "folder.bsd").mkdir()
        (self.folder / "loop").symlink_to(self.folder)
        for jobs in ("1", "4"):
            with self.subTest(jobs=jobs):
                result = run("check", "--jobs", jobs, self.folder, DEVICES / BUS, "none.bsd")
                self.assertEqual(result.returncode, 1)
                text = result.stdout.replace(str(self.folder), "F")
                self.assertRegex(text, r"^F/deep/er/broken.BSDL: error: .* \[no-entity\]\n")
                self.assertIn("\nF/good.bsd: ok\n", text)
                self.assertIn("\nnone.bsd: error: the file cannot be opened\n", text)
                self.assertEqual(text.splitlines()[-1], "4 files: 2 without errors, 2 with; "
                                 "1 errors, 0 warnings, 0 notes")
        result = run("check", "--json", self.folder)
        self.assertEqual([json.loads(line)["result"] for line in result.stdout.splitlines()],
                         [-21, 0])
        result = run("check", "--format", "csv", self.folder, "none.bsd")
        rows = csv.DictReader(io.StringIO(result.stdout))
        self.assertEqual([(row["result"], row["rule"]) for row in rows],
                         [("-21", "no-entity"), ("0", ""), ("-10", "")])
        self.assertEqual(run("check", DEVICES).returncode, 0)
        self.assertEqual(run("check", deep.parent / "none", deep).returncode, 1)

    def test_check_chooses_rules_and_explains_them(self):
        path = self.write_hub("two.bsd", ("BC_7, D(7), bidir", "BC_7, D(7), input"),
                              ("(000000),", "(000 000),"))
        def found(*args, status):
            result = run("check", "--json", *args, path)
            self.assertEqual(result.returncode, status)
            return [finding["rule"] for finding in json.loads(result.stdout)["findings"]]
        self.assertEqual(found(status=1), ["blank-in-bits", "control-unneeded"])
        self.assertEqual(found("--rule", "blank-in-bits", status=0), ["blank-in-bits"])
        self.assertEqual(found("--no-rule", "control-unneeded", status=0), ["blank-in-bits"])
        strict = ["--strict", "--no-rule", "control-unneeded"]
        self.assertEqual(found(*strict, status=1), ["blank-in-bits"])
        self.assertEqual(found(*strict, "--no-rule", "blank-in-bits", status=0), [])
        summary = run("check", path, path).stdout.splitlines()[-3:]
        self.assertEqual(summary[:2], ["      2 error    control-unneeded",
                                       "      2 warning  blank-in-bits"])
        self.assertIn("errors, 2 warnings", summary[2])
        page = (ROOT / "docs" / "findings.md").read_text()
        for rule in re.findall(r"^### (.*)$", page, re.MULTILINE):
            section = run("check", "--explain", rule).stdout
            self.assertTrue(section.startswith(rule + "\n\n"), rule)
            self.assertIn("### " + section.rstrip(), page)
            self.assertNotIn("#", section.split("```")[0])

    def test_check_compares_the_reading_by_lines(self):
        die = 'constant DIE : PIN_MAP_STRING :=\n"TDI : Z1";\n'
        rows = [(("bit_vector(3 downto 0)", "bit_vector (3 downto 0)"), []),
                (("    -- Ports that", die + "    -- Ports that"),
                 [("elements with another package pin", 1)]),
                (("bit_vector(3 downto 0)", "bit_vector(4 downto 1)"),
                 [("cells tied to another element", 4)])]
        for change, causes in rows:
            with self.subTest(change):
                path = self.write_hub("lines.bsd", change)
                from_file, piped = (json.loads(run("check", "--json", "--lines", name,
                                                   input=path.read_text()).stdout)["lines"]
                                    for name in (path, "-"))
                self.assertEqual(from_file, piped)
                self.assertEqual((from_file["code"], from_file["line"]), (0, None))
                differs = [(row["cause"], row["count"]) for row in from_file["differs"]]
                self.assertEqual(differs, causes)
        for old, new, code, _ in BROKEN:
            path = self.write_hub("broken.bsd", (old, new))
            lines = json.loads(run("check", "--json", "--lines", path).stdout)["lines"]
            self.assertEqual(lines["code"], code or 0)
            self.assertEqual(lines["line"] is None, not code)
            self.assertRegex(run("check", "--lines", path).stdout,
                             rf"{path}(:\d+)?: read by lines: .*"
                             + (rf"\({code}\)" if code else "ok"))

    def test_check_writes_sarif(self):
        path = self.write_hub("a b.bsd", ("BC_7, D(7), bidir", "\u00e4 BC_7, D(7), input"))
        log = json.loads(run("check", "--format", "sarif", path, "none.bsd").stdout)
        self.assertEqual((log["version"], len(log["runs"])), ("2.1.0", 1))
        rules = log["runs"][0]["tool"]["driver"]["rules"]
        for result in log["runs"][0]["results"]:
            self.assertEqual(rules[result["ruleIndex"]]["id"], result["ruleId"])
            place = result["locations"][0]["physicalLocation"]
            self.assertTrue(place["artifactLocation"]["uri"].endswith("/a%20b.bsd"))
            line = path.read_text().splitlines()[place["region"]["startLine"] - 1]
            words = line[place["region"]["startColumn"] - 1:place["region"]["endColumn"] - 1]
            self.assertIn(words, result["message"]["text"])
        unread = log["runs"][0]["invocations"][0]["toolExecutionNotifications"]
        self.assertEqual([row["level"] for row in unread], ["error"])

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

    def test_chains_that_cannot_be_used(self):
        toml = self.folder / "chain.toml"
        rows = [([], "name the devices"),
                (["U1=" + HUB, "U1=" + BUS], "two devices are called U1"),
                (["U1=ir:0"], "no length"), (["U1=ir:4x"], "no length"), (["U1="], "U1 has no file"),
                (["none.bsd"], "none.bsd: the file cannot be opened"),
                (["--chain", toml, HUB], "not both"), (["--chain", "none.toml"], "cannot read none"),
                ("a = [", "line 1: "), ("a = 1", "has no [[device]]"),
                ("device = [1]", "is a [[device]]"), ("[[device]]", "either 'file' or 'ir'"),
                ("\n[[device]]\nir = 0", "line 2: 0 is no length"),
                ("[[device]]\nname = 'a b'\nir = 1", "'a b' is no name"),
                (f"[[device]]\nfile = '{DEVICES / HUB}'\npackage = 'DIP'", "no pin map")]
        for given, message in rows:
            with self.subTest(given=given):
                if isinstance(given, str):
                    toml.write_text(given)
                    given = ["--chain", toml]
                for command in ("svf", "openocd"):
                    result = run(command, *given)
                    self.assertEqual((result.returncode, result.stdout), (1, ""))
                    self.assertIn(message, result.stderr)

    def test_live_and_simulate_tell_what_they_cannot_use(self):
        missing = self.folder / "none" / "file"
        rows = [(["live", "--openocd", "127.0.0.1:x", HUB, "read"], "not of the form HOST:PORT"),
                (["live", "--openocd", "127.0.0.1:", HUB, "read"], "not of the form HOST:PORT"),
                (["live", "--openocd", "127.0.0.1:0", HUB, "read"], "no port 0"),
                (["live", "--openocd", "127.0.0.1:65537", HUB, "read"], "no port 65537"),
                (["live", "--openocd", "none.invalid:1", HUB, "read"], "no host none.invalid"),
                (["live", "read"], "name the devices"), (["simulate"], "name the devices"),
                (["simulate", HUB, "--log", missing], "cannot write"),
                (["simulate", HUB, "--adapter-file", missing], "cannot write"),
                (["svf", HUB, "-o", missing], "cannot write"),
                (["openocd", HUB, "-o", missing], "cannot write")]
        for args, message in rows:
            with self.subTest(args=args):
                result = run(*args)
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertIn(message, result.stderr)

    def test_svf_keeps_to_the_limit_of_the_devices(self):
        rows = [("1e99", "FREQUENCY 1000000 HZ"), ("2.5", "FREQUENCY 2 HZ"), ("0.1", "FREQUENCY 1 HZ"),
                ("1e15", "FREQUENCY 1000000000000 HZ")]
        for wanted, line in rows:
            with self.subTest(wanted=wanted):
                chain = ["X=ir:4"] if wanted == "1e15" else [self.write_hub(
                    "slow.bsd", ("50.0e6", "1.0e6"))]
                svf = run("svf", *chain, "--frequency", wanted).stdout
                self.assertIn(line + ";\n", svf)

    def test_steps_that_cannot_be_done(self):
        (self.folder / "a.steps").write_text("# one\ndrive D(1)=1\nfly\nexpect RST_N=2\n")
        rows = [(["--steps", self.folder / "a.steps"], r"a\.steps:3: fly: .*\n.*a\.steps:4: "),
                (["--steps", "none"], "cannot read none"), (["--do", "drive NIL=1"], "step:1: "),
                (["--do", "drive TX1_P=1", "--do", "expect TX1_P=1"], "step:2: .* cannot be seen"),
                (["--from-sample", "01"], "no capture of 32 bits"),
                (["--from-sample", "U2=01"], "names no device")]
        for args, message in rows:
            with self.subTest(args=args):
                result = run("svf", HUB, *args)
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                self.assertRegex(result.stderr, message)
        result = run("svf", HUB, "--do", "drive D(1)=1", "-o", self.folder / "out.svf")
        self.assertEqual((result.returncode, result.stdout), (0, ""))
        self.assertIn("also turned on, through a shared control cell: U1.D(0), U1.D(2), U1.D(3)",
                      result.stderr)
        self.assertIn("SDR 32 TDI", (self.folder / "out.svf").read_text())

    def test_drawing_of_a_grid(self):
        result = run("draw", HUB, self.folder / "hub.svg")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        root = xml.parse(self.folder / "hub.svg").getroot()
        titles = {t.text.split(":")[0]: t.text for t in root.iter(SVG + "title")}
        self.assertEqual(len(titles), 48 + 1)
        self.assertEqual(titles["B6"], "B6: TX1_N, out, negative leg; "
                                       "cell 27: BC_1 output3, control cell 26")
        self.assertEqual(titles["C1"], "C1: TEST_EN, in, must be 1")
        classes = [group.get("class") for group in root.iter(SVG + "g")]
        self.assertEqual((classes.count("tap"), classes.count("compliance")), (4 + 1, 1 + 1))
        self.assertEqual(run("draw", HUB, self.folder / "none" / "x.svg").returncode, 1)

    def test_format_writes_what_it_reads(self):
        files = [*DEVICES.glob("*.bsd"), *(ROOT / "tests" / "devices").glob("*.bsd"),
                 *(ROOT.parent / "shared" / "devices").glob("*")]
        for file in files:
            with self.subTest(file.name):
                result = run("format", file, "-o", self.folder / "clean.bsd")
                self.assertEqual((result.stdout, result.returncode), ("", 0), result.stderr)
                again = run("format", "--check", self.folder / "clean.bsd")
                self.assertEqual((again.stdout, again.returncode), ("", 0))
                clean = (self.folder / "clean.bsd").read_text()
                wide = [line for line in clean.splitlines() if len(line) > 100]
                self.assertEqual([line for line in wide if " " in line[4:-2].strip("- ")], [])
                before, after = (json.loads(run("check", "--json", path).stdout)["findings"]
                                 for path in (file, self.folder / "clean.bsd"))
                self.assertLessEqual(len(after), len(before))

    def test_format_chooses_a_package(self):
        path = self.write_hub("two.bsd", ("    constant BGA48",
                                          '    constant DIE : PIN_MAP_STRING :=\n"TDI : 1";\n'
                                          "    constant BGA48"))
        piped = run("format", "-", "--package", "die", input=path.read_text())
        self.assertIn(':= "DIE")', piped.stdout)
        result = run("format", path, "--package", "QFP")
        self.assertEqual((result.stdout, result.returncode), ("", 1))
        self.assertIn("it has DIE, BGA48", result.stderr)
        result = run("format", path, "--check")
        self.assertEqual((result.stdout, result.returncode), (f"{path}: would change\n", 1))

    def test_format_writes_nothing_that_loses_facts(self):
        lost = self.write_hub("lost.bsd", ("REF_P   : in bit;", "REF_P   : in bit"),
                              ("BC_4, REF_P, input, X", "BC_4, REF_P, input, X, 1, 1, Z, Z"))
        files = [lost, self.folder, "none.bsd", self.write_hub("empty.bsd")]
        files[-1].write_bytes(b"")
        for file in files:
            with self.subTest(file=file):
                result = run("format", file, "-o", self.folder / "none")
                self.assertEqual(result.returncode, 1)
                self.assertIn("bscan format: ", result.stderr)
                self.assertFalse((self.folder / "none").exists())

    def test_identify(self):
        self.write_hub("x.bsd", ('"0010" &', '"XXXX" &'))
        self.write_hub("two.bsd", ('"1";', '"1, 0010" & "0000000001100000111111111111";'))
        def found(*args):
            result = run("identify", "--json", *args, cwd=self.folder)
            rows = [(row["idcode"][2:], row["version"], row["file"] and row["file"][2:])
                    for row in json.loads(result.stdout)]
            return rows, result.returncode
        self.assertEqual(found("0x2003_0FFD"), ([("20030FFD", "same", "two.bsd"),
                                                 ("20030FFD", "same", "x.bsd")], 0))
        self.assertEqual(found("30030FFD", "20060fff"),
                         ([("30030FFD", "same", "x.bsd"), ("30030FFD", "another", "two.bsd"),
                           ("20060FFF", "same", "two.bsd")], 0))
        self.assertEqual(found("0b" + "01" * 16), ([("55555555", None, None)], 1))
        result = run("identify", "20030FFD", DEVICES, "none.bsd", "--format", "csv")
        self.assertIn(f",LINK_HUB,BGA48,6,same,{DEVICES / HUB}", result.stdout)
        self.assertIn("none.bsd: the file cannot be opened", result.stderr)
        for usage in (["."], ["0x123456789"], ["0b1"]):
            self.assertEqual(run("identify", *usage).returncode, 2)

    def draw_bus(self, *changes):
        """The drawing of the bus with some words replaced; the sides of pins as pairs x, y."""
        text = (DEVICES / BUS).read_text()
        for old, new in changes:
            text = text.replace(old, new)
        (self.folder / "bus.bsd").write_text(text)
        drawing = run("draw", self.folder / "bus.bsd", "-").stdout
        groups = xml.fromstring(drawing.encode()).iter(SVG + "g")
        titles = [(group.find(SVG + "title"), group.find(SVG + "rect")) for group in groups]
        return drawing, {title.text.split(":")[0]: (float(rect.get("x")), float(rect.get("y")))
                         for title, rect in titles if title is not None}

    def test_shapes_of_packages(self):
        _, pins = self.draw_bus(("SO24", "PLCC24"))
        top = sorted((x, pin) for pin, (x, y) in pins.items() if y == min(pins["1"][1], y))
        self.assertEqual([pin for _, pin in top], ["3", "2", "1", "24", "23", "22"])
        _, pins = self.draw_bus(("SO24", "QFP24"))
        self.assertEqual(min(pins, key=lambda pin: (pins[pin][0], pins[pin][1])), "1")
        drawing, _ = self.draw_bus(("SO24", "ODD"), ("VCC    : linkage", "VCC : POWER_POS"))
        self.assertIn("the shape of this package is not known", drawing)
        self.assertIn(">power_pos: positive supply (2)<", drawing)

    def test_odd_bytes_are_escaped(self):
        path = self.write_hub("odd.bsd", ("RST_N   : in", ODD + " : in"),
                              ("RST_N   : C2", ODD + " : C2"))
        table = run("show", path, "--pins", "--lines", text=False).stdout
        self.assertIn(b"R\\x1B[2J\\xFF\\xE2\\x80\\xAE\\\\ ", table)
        model = json.loads(run("show", path, "--pins", "--lines", "--json").stdout)
        self.assertIn("R\x1b[2J\\xFF\u202e\\", [row["name"] for row in model["pins"]])
        self.assertIn("R\\x1B[2J\\xFF", run("draw", path, "-", "--lines").stdout)
        broken = self.folder / "new\nline.bsd"
        broken.write_text("x\n")
        self.assertIn("new\\x0Aline.bsd:1: ", run("show", broken, "--lines").stderr)
        self.assertIn("new\\x0Aline.bsd: ", run("show", broken).stderr)

    def test_workers_of_check_end_with_it(self):
        slow = self.folder / "slow.bsd"
        os.mkfifo(slow)
        check = subprocess.Popen([TOOL, "check", slow], stdout=subprocess.PIPE)
        self.addCleanup(check.kill)
        writer = self.open_when_read(slow)  # the worker waits for what is never written
        children = pathlib.Path(f"/proc/{check.pid}/task/{check.pid}/children")
        os.kill(int(children.read_text().split()[0]), signal.SIGSTOP)  # and cannot end by itself
        check.terminate()
        check.communicate(timeout=60)  # ends when nobody holds the output any more
        os.close(writer)

    def open_when_read(self, fifo):
        for _ in range(6000):
            try:
                return os.open(fifo, os.O_WRONLY | os.O_NONBLOCK)
            except OSError as error:
                self.assertEqual(error.errno, errno.ENXIO)
            time.sleep(0.01)
        self.fail("no worker reads")

    def test_colour_is_for_terminals(self):
        command = ["script", "-qec", f"'{TOOL}' show {BUS}", "/dev/null"]
        for no_colour in ("", "1"):
            result = subprocess.run(command, cwd=DEVICES, stdin=subprocess.DEVNULL, text=True,
                                    stdout=subprocess.PIPE, check=True,
                                    env=dict(os.environ, TERM="xterm", NO_COLOR=no_colour))
            self.assertEqual("\x1b[1m" in result.stdout, not no_colour)
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
        path = self.write_hub("lines.bsd", ("bit_vector(3 downto 0)", "bit_vector(4 downto 1)"))
        runs = [["show", HUB, "--all"], ["show", HUB, "--lines"],
                ["show", BUS, "--pins", "--cells", "--instructions"],
                ["drive", HUB, "D=1", "X=1"], ["observe", BUS, "--capture", "x" * 22],
                ["check", HUB], ["check", "none.bsd"], ["check", "--lines", path],
                ["identify", "0x20030FFD", "FFFFFFFF"], ["diff", HUB, BUS],
                ["show", BUS, "--pins", "--all"], ["board", BOARD],
                ["board", BOARD, "--devices"], ["netlist", BOARD.with_suffix(".net")]]
        for args in runs:
            with self.subTest(args=args):
                jsonschema.validate(json.loads(run(*args, "--json").stdout), schema)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
