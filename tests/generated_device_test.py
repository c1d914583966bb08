"""Checks the bscan program on random devices: generated_device_test.py TOOL

Each device is planned first and then written, so that what the program says is compared with the
plan and never with the library.
"""

import json
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

TOOL = pathlib.Path(sys.argv[1]).resolve()
SEEDS = range(12)


class Port:
    def __init__(self, name, mode, indices, pins):
        self.name, self.mode, self.indices, self.pins = name, mode, indices, pins

    def labels(self):
        return [f"{self.name}({i})" for i in self.indices] if self.indices else [self.name]

    def declaration(self):
        if not self.indices:
            return f"{self.name} : {self.mode} bit"
        way = "to" if self.indices[0] <= self.indices[-1] else "downto"
        return f"{self.name} : {self.mode} bit_vector({self.indices[0]} {way} {self.indices[-1]})"


class Cell:
    def __init__(self, label, function, safe, control=None, disable=None, result=None):
        self.label, self.function, self.safe = label, function, safe
        self.control, self.disable, self.result = control, disable, result

    def entry(self, number):
        text = f"{number} (BC_1, {self.label or '*'}, {self.function}, {self.safe}"
        if self.control is not None:
            text += f", {self.control}, {self.disable}, {self.result}"
        return text + ")"


class Device:
    """A plan of a device, and its text."""

    def __init__(self, seed):
        self.chance = chance = random.Random(seed)
        self.pin, self.ports, self.cells = 0, [], []
        self.lettered = chance.random() < 0.5
        for name in ("TDI", "TMS", "TCK", "TDO"):
            self.ports.append(Port(name, "out" if name == "TDO" else "in", None, self.take_pins(1)))
        for number in range(chance.randint(1, 6)):
            self.add_port(f"V{number}", chance.choice(["in", "out", "inout", "buffer", "linkage"]))
        self.add_port("LAST", "inout")
        self.idcode = f"{chance.getrandbits(16):016b}" + "11111111110" + "1" * 5
        self.compliance = chance.choice([None, "0", "1"])
        if self.compliance:
            self.ports.append(Port("ENABLE", "in", None, self.take_pins(1)))

    def take_pins(self, count):
        first, self.pin = self.pin, self.pin + count
        name = (lambda n: f"{'ABCDEFGH'[n // 16]}{n % 16 + 1}") if self.lettered else lambda n: n + 1
        return [str(name(n)) for n in range(first, first + count)]

    def add_port(self, name, mode):
        indices = None
        if self.chance.random() < 0.6:
            low, size = self.chance.randint(0, 9), self.chance.randint(2, 9)
            indices = list(range(low, low + size))[::self.chance.choice([1, -1])]
        port = Port(name, mode, indices, self.take_pins(len(indices or [0])))
        self.ports.append(port)
        control = None
        for label in port.labels():
            if mode in ("out", "inout") and (control is None or self.chance.random() < 0.3):
                control, disable = len(self.cells), self.chance.choice("01")
                self.cells.append(Cell(None, "control", disable))
            if mode == "in" or (mode == "inout" and self.chance.random() < 0.5):
                self.cells.append(Cell(label, "input", "X"))
                if mode == "inout":
                    self.cells.append(Cell(label, "output3", "0", control, disable, "Z"))
            elif mode in ("out", "inout"):
                function = "output3" if mode == "out" else "bidir"
                self.cells.append(Cell(label, function, "0", control, disable, "Z"))
            elif mode == "buffer":
                self.cells.append(Cell(label, "output2", "0"))

    def text(self):
        pin_map = ",\" &\n\"".join(
            f"{p.name} : {p.pins[0] if p.indices is None else '(' + ', '.join(p.pins) + ')'}"
            for p in self.ports)
        register = ",\" &\n\"".join(cell.entry(n) for n, cell in enumerate(self.cells))
        compliance = ('attribute COMPLIANCE_PATTERNS of MADE : entity is '
                      f'"(ENABLE) ({self.compliance})";\n' if self.compliance else "")
        ports = ";\n".join(port.declaration() for port in self.ports)
        return f"""entity MADE is
generic (PHYSICAL_PIN_MAP : string := "P");
port (
{ports}
);
use STD_1149_1_2001.all;
attribute COMPONENT_CONFORMANCE of MADE : entity is "STD_1149_1_2001";
attribute PIN_MAP of MADE : entity is PHYSICAL_PIN_MAP;
constant P : PIN_MAP_STRING :=
"{pin_map}";
attribute TAP_SCAN_IN of TDI : signal is true;
attribute TAP_SCAN_MODE of TMS : signal is true;
attribute TAP_SCAN_OUT of TDO : signal is true;
attribute TAP_SCAN_CLOCK of TCK : signal is (1.0e6, BOTH);
{compliance}attribute INSTRUCTION_LENGTH of MADE : entity is 4;
attribute INSTRUCTION_OPCODE of MADE : entity is
"BYPASS (1111)," &
"EXTEST (0000)," &
"SAMPLE (0001)," &
"PRELOAD (0010)," &
"IDCODE (0011)";
attribute INSTRUCTION_CAPTURE of MADE : entity is "0001";
attribute IDCODE_REGISTER of MADE : entity is
"{self.idcode}";
attribute BOUNDARY_LENGTH of MADE : entity is {len(self.cells)};
attribute BOUNDARY_REGISTER of MADE : entity is
"{register}";
end MADE;
"""

    def drivers(self):
        """Label, number of the driving cell."""
        return [(cell.label, n) for n, cell in enumerate(self.cells)
                if cell.function in ("output2", "output3", "bidir")]

    def vector(self, levels):
        """The bits, cell 0 first, that give some labels a level, and all others nothing."""
        bits = [cell.safe.replace("X", "0") for cell in self.cells]
        for cell in self.cells:
            if cell.control is not None:
                bits[cell.control] = cell.disable
        for label, number in self.drivers():
            if label not in levels:
                continue
            cell = self.cells[number]
            bits[number] = levels[label]
            if cell.control is not None:
                bits[cell.control] = "10"[int(cell.disable)]
        return "".join(bits)


class GeneratedDeviceTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, text):
        (self.folder / name).write_text(text)
        return self.folder / name

    def run_tool(self, *args, status=0):
        result = subprocess.run([TOOL, *args], capture_output=True, text=True, timeout=60,
                                stdin=subprocess.DEVNULL)
        self.assertEqual((result.returncode, result.stderr), (status, ""), args)
        return result.stdout

    def json(self, *args, status=0):
        return json.loads(self.run_tool(*args, "--format", "json", status=status))

    def test_drive_sets_the_planned_cells(self):
        for seed in SEEDS:
            device = Device(seed)
            path = self.write("made.bsd", device.text())
            levels, requests = {}, []
            for port in device.ports:
                labels = port.labels()
                if port.mode not in ("out", "inout", "buffer") or port.name == "TDO":
                    continue
                value = device.chance.getrandbits(len(labels))
                bits = f"{value:0{len(labels)}b}"
                requests.append(f"{port.name}=" + device.chance.choice([f"0b{bits}", f"{value:#x}"])
                                if port.indices else f"{port.name}={bits}")
                levels.update(zip(labels, bits))
            with self.subTest(seed=seed):
                told = self.json("drive", path, *requests)
                bits = device.vector(levels)
                self.assertEqual(told["bits"], bits)
                padded = bits + "0" * (-len(bits) % 8)
                self.assertEqual(told["hex"], f"{int(padded, 2):0{len(padded) // 4}x}")
                for label, number in device.drivers():
                    one = self.json("drive", path, f"{label}=1")["bits"]
                    self.assertEqual(one[number], "1", label)
                    break

    def test_observe_tells_the_captured_levels(self):
        for seed in SEEDS:
            device = Device(seed)
            path = self.write("made.bsd", device.text())
            capture = "".join(device.chance.choice("01") for _ in device.cells)
            with self.subTest(seed=seed):
                rows = {row["port"]: row for row in
                        self.json("observe", path, "--capture", capture)["ports"]}
                for number, cell in enumerate(device.cells):
                    if cell.function == "input" and not any(
                            c.label == cell.label and c is not cell for c in device.cells):
                        self.assertEqual(rows[cell.label]["level"], capture[number], cell.label)

    def test_show_tells_the_plan(self):
        for seed in SEEDS:
            device = Device(seed)
            path = self.write("made.bsd", device.text())
            with self.subTest(seed=seed):
                told = self.json("show", path, "--pins", "--cells")
                pins = [pin for port in device.ports for pin in port.pins]
                self.assertEqual(sorted(row["pin"] for row in told["pins"]), sorted(pins))
                cells = {row["cell"]: row for row in told["cells"]}
                for number, cell in enumerate(device.cells):
                    self.assertEqual(cells[number]["function"], cell.function)
                    self.assertEqual(cells[number]["control"], cell.control)

    def test_format_keeps_what_is_said(self):
        for seed in SEEDS:
            path = self.write("made.bsd", Device(seed).text().replace(";\n", " ;\n\n -- words\n"))
            with self.subTest(seed=seed):
                clean = self.write("clean.bsd", self.run_tool("format", path))
                self.assertEqual(self.run_tool("format", clean), clean.read_text())
                self.assertEqual(self.json("diff", path, clean)["differences"], [])
                self.assertEqual(json.loads(self.run_tool("check", clean, "--format", "json"))
                                 ["findings"], [])

    def test_diff_tells_what_was_changed(self):
        for seed in SEEDS:
            device = Device(seed)
            path = self.write("made.bsd", device.text())
            label, number = device.drivers()[-1]
            device.cells[number].safe = "1"
            other = self.write("other.bsd", device.text())
            with self.subTest(seed=seed):
                told = self.json("diff", path, other, status=1)["differences"]
                self.assertEqual([(row["kind"], row["name"]) for row in told],
                                 [("cell", str(number))], label)

    def test_identify_finds_the_file(self):
        for seed in SEEDS:
            device = Device(seed)
            path = self.write("made.bsd", device.text())
            with self.subTest(seed=seed):
                rows = self.json("identify", f"0x{int(device.idcode, 2):08X}", path)
                self.assertEqual([(row["component"], row["file"]) for row in rows],
                                 [("MADE", str(path))])

    def test_one_fault_is_one_error_at_its_line(self):
        faults = [
            ("LAST : inout", "LAST : inuot", "port-mode-unknown"),
            ("BYPASS (1111)", "BYPASS (11111)", "opcode-length"),
            ("11111111110", "1111111111", "idcode-length"),
            ('is "0001"', 'is "0010"', "instruction-capture-ending"),
            ("TDI : signal", "TDX : signal", "port-unknown"),
            ("SAMPLE (0001)", "SAMPLE (0011)", "opcode-shared"),
            ("(1.0e6", "(0.0e6", "tap-frequency"),
            ("attribute INSTRUCTION_LENGTH", "atribute INSTRUCTION_LENGTH", "word-misspelt"),
            ("0 (BC_1", "0O (BC_1", "number-malformed"),
        ]
        for seed in SEEDS:
            text = Device(seed).text()
            for old, new, rule in faults:
                at = text.rindex(old) if old == "0 (BC_1" else text.index(old)
                if old == "0 (BC_1":
                    at = text.index('"0 (BC_1') + 1
                path = self.write("fault.bsd", text[:at] + new + text[at + len(old):])
                with self.subTest(seed=seed, rule=rule):
                    told = json.loads(self.run_tool("check", path, "--format", "json", status=1))
                    self.assertEqual([(f["severity"], f["rule"]) for f in told["findings"]],
                                     [("error", rule)])
                    line = text[:at].count("\n") + 1
                    if rule != "opcode-shared":  # either of the two may be the wrong one
                        self.assertEqual(told["findings"][0]["line"], line)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
