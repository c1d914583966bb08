"""Reading, looking, driving and observing one device."""

import json
import subprocess
import sys

import pytest

import bscan
from conftest import DEVICES, ROOT, TOOL

SMALL = """entity SMALL is
generic (PHYSICAL_PIN_MAP : string := "P");
port (D : inout bit_vector(7 downto 4); E : out bit_vector(4 to 5); P1 : linkage bit;
      TDI, TMS, TCK : in bit; TDO : out bit);
use STD_1149_1_2001.all;
constant P : PIN_MAP_STRING := "D : (1, 2, 3, 4), E : (5, 6), P1 : 7, TDI : 8, TMS : 9, TCK : 10," &
  "TDO : 11";
constant Q : PIN_MAP_STRING := "D : (11, 12, 13, 14)";
attribute INSTRUCTION_LENGTH of SMALL : entity is 2;
attribute BOUNDARY_LENGTH of SMALL : entity is 7;
attribute BOUNDARY_REGISTER of SMALL : entity is
  "0 (BC_7, D(4), bidir, X, 4, 0, Z), 1 (BC_7, D(5), bidir, X, 4, 0, Z)," &
  "2 (BC_7, D(6), bidir, X, 4, 0, Z), 3 (BC_7, D(7), bidir, X, 4, 0, Z)," &
  "4 (BC_2, *, control, 0), 5 (BC_1, E(4), output2, X), 6 (BC_1, E(5), output2, X)";
end SMALL;
"""


def json_of(*args):
    result = subprocess.run([TOOL, *args, "--json"], capture_output=True, text=True, check=True,
                            timeout=60)
    return json.loads(result.stdout)


@pytest.mark.parametrize("name", ["link_hub.bsd", "nibble_bus.bsd"])
def test_dictionary_has_the_facts_of_the_tool(name):
    # The tool may know less of a field than we, but nothing else.
    wanted, seen = json_of("show", str(DEVICES / name)), bscan.read(DEVICES / name).to_dict()
    for field, value in wanted.items():
        if isinstance(value, list) and value and isinstance(value[0], dict):
            assert len(value) == len(seen[field])
            seen[field] = [{key: row[key] for key in kept}
                           for row, kept in zip(seen[field], value)]
        assert seen[field] == value, field


def test_lookups(hub):
    assert hub.pins["B6"].port == "TX1_N" and hub.pins["B6"].leg == "negative"
    assert [pin.pin for pin in hub.ports["addr"]] == ["E5", "E6", "F5", "F6"]
    assert hub.ports["ADDR"][3].pin == "E5" and hub.ports["D"][0].cells == (0,)
    assert hub.ports["TDI"][0].pin == "A1"
    assert len(hub.pins) == 48 and list(hub.ports)[:2] == ["TDI", "TMS"]
    assert hub.cells[28].port == "LANE_P" and hub.cells[28].control == 29
    assert (hub.cells[29].safe, hub.cells[28].safe, hub.cells[14].result) == (0, "X", "WEAK1")
    assert [pin.port for pin in hub.find("D(5..6)")] == ["D(5)", "D(6)"]
    for lookup, name in [(hub.pins, "b6"), (hub.ports, "NONE"), (hub.instructions, "")]:
        assert name not in lookup and lookup.get(name) is None
        with pytest.raises(KeyError, match="there is no"):
            lookup[name]
    with pytest.raises(IndexError, match="goes from 3 to 0"):
        hub.ports["ADDR"][4]


def test_facts(hub, bus):
    code = hub.idcode
    assert (code.value, code.version, code.part, code.manufacturer) == (0x20030FFD, 2, 48, 0x7FE)
    assert code.matches(0x20030FFD) and not code.matches(0x30030FFD)
    assert not code.matches(1 << 40)
    assert hub.usercodes[0].value is None and hub.usercodes[0].hex == "0xXXXXXXXX"
    assert hub.usercodes[0].matches(0)
    assert (hub.tap.tck.pin, hub.tap.max_frequency, hub.tap.clock_stop) == ("B1", 50e6, "low")
    assert hub.compliance and hub.compliance.text == "TEST_EN (pin C1) must be 1"
    assert not bus.compliance and bus.tap.trst.pin == "20"
    assert hub.instructions["factory"].private
    assert hub.instructions["LINK_STAT"].register_length == 16
    assert hub.instructions["CLAMP"].register == "BYPASS"
    assert bscan.parse(SMALL).instructions == {}
    assert "B3: VDD(1)" in hub._repr_svg_() and "data:image/svg+xml" in hub._repr_html_()
    for thing in (hub, hub.pins, hub.pins["B6"], hub.ports["D"], hub.cells[28], hub.idcode,
                  hub.instructions["EXTEST"], hub.registers["STATUS"]):
        assert str(thing) and repr(thing).startswith("<")


def test_declared_indexes_and_packages():
    device = bscan.parse(SMALL, "small")
    assert device.packages == ["P", "Q"] and device.package == "p" and device.file == "small"
    assert device.ports["D"].range == (7, 4) and device.ports["D"][7].pin == "1"
    assert device.ports["E"][4].pin == "5"
    other = bscan.parse(SMALL, package="q")
    assert other.ports["D"][7].pin == "11" and "5" not in other.pins


def test_faults_are_findings():
    device = bscan.parse(SMALL.replace("(7 downto 4)", "(7 downto)").replace("is 2;", "is two;"))
    assert {"error"} <= {finding.severity for finding in device.findings}
    finding = next(one for one in device.findings if one.line == 3)
    assert device.line(3).startswith("port") and "(7 downto)" in device.line(3) and str(finding)
    assert bscan.describe_rule(finding.rule) and bscan.describe_rule("none") is None
    odd = bscan.parse(SMALL.encode().replace(b"SMALL is", b"SMALL is -- \xff\n", 1) + b"\xfe\0")
    assert odd.component == "SMALL"


def test_what_cannot_be_read(tmp_path):
    (tmp_path / "none.bsd").write_text("no entity")
    cases = [(tmp_path / "missing.bsd", None, -10), (tmp_path, None, -3),
             (tmp_path / "none.bsd", None, -21), (DEVICES / "link_hub.bsd", "other", -23)]
    for path, package, code in cases:
        with pytest.raises(bscan.Error) as caught:
            bscan.read(path, package)
        assert caught.value.code == code and str(path) in str(caught.value)
    with pytest.raises(bscan.Error) as caught:
        bscan.parse("x" * (64 * 2**20 + 1))
    assert caught.value.code == -18
    with pytest.raises(ValueError):
        bscan.read("a\0b")
    with pytest.raises(TypeError):
        bscan.read(3)


def test_driving():
    device = bscan.parse(SMALL)
    assert device.vector.bits == "0000000"
    device.drive({"D": 0b1010, device.ports["E"][5]: 1})
    # D(7) is at the left and has the most significant bit; its cell is the last of the four.
    assert device.vector.bits == "0101101"
    assert device.vector == bytes([0b01011010]) and device.vector.length == 7
    device.drive({"D": "01Z1"[::-1]} | {"D": "1100"})
    assert device.vector.bits[:5] == "00111"
    device.drive({"D*": 0})
    assert device.vector.bits[:5] == "00001"
    device.drive({device.ports["D"]: [1, "0", True, False]})
    assert device.vector.bits[:5] == "01011"
    device.release("D")
    assert device.vector.bits[4] == "0"
    device.drive({"D(7)": 1})
    assert [pin.port for pin in device.also_driven] == ["D(6)", "D(5)", "D(4)"]
    device.start_from("1111111")
    assert device.vector.bits == "1111111"
    device.release()
    assert device.vector.bits == "0000000"


def test_what_cannot_be_driven_changes_nothing(bus):
    bus.drive({"A(1)": 1, "READY": 0})
    before = bus.vector
    cases = [({"READY": 1, "TDI": 1}, bscan.DriveError, "mode in cannot be driven"),
             ({"A(2)": 1, "VCC": "ZZ", "BUSY": "Z"}, bscan.DriveError, "VCC"),
             ({"READY": 1, "BUSY": "Z"}, bscan.DriveError, "BUSY"),
             ({"A(2)": 1, "NONE": 1}, KeyError, "no pin or port NONE"),
             ({"A(9)": 1}, bscan.UnknownNameError, "A"),
             ({"A": 16}, ValueError, "fit"), ({"A": -1}, ValueError, "fit"),
             ({"A": "01"}, ValueError, "4 pins"), ({"READY": 2}, ValueError, "no level"),
             ({"READY": "on"}, ValueError, ""), ({"READY": [[]]}, ValueError, "")]
    for levels, kind, reason in cases:
        with pytest.raises(kind, match=reason):
            bus.drive(levels)
        assert bus.vector == before, levels
    bus.release("READY")
    assert bus.vector != before


def test_observing(bus):
    capture = "10x01110_10101010_01011_1"
    result = subprocess.run([TOOL, "observe", DEVICES / "nibble_bus.bsd", "--capture", capture,
                             "--json"], capture_output=True, text=True, check=True, timeout=60)
    seen = bus.observe(capture)
    rows = seen.to_dict()["ports"]
    wanted = json.loads(result.stdout)["ports"]  # the tool tells the cells too
    assert rows == [{field: row[field] for field in rows[0]} for row in wanted]
    assert seen["A(0)"].level == 1 and seen["3"] is seen["a(0)"]
    assert seen.value("A") is None and seen.value("B") == 0b1111
    bus.drive({"A": 0b0110})
    assert bus.observe(bus.vector).value("A") == 0b0110
    assert bus.observe([None] * 22).levels["A(0)"] == "X"
    for wrong in ("01", "2" * 22, b"0", [3] * 22):
        with pytest.raises(ValueError):
            bus.observe(wrong)
    with pytest.raises(KeyError):
        seen["NONE"]


def test_examples_run(tmp_path):
    examples = {"find_bus_pins.py": [DEVICES / "link_hub.bsd", "D"],
                "compare_revisions.py": [DEVICES / "link_hub.bsd", DEVICES / "nibble_bus.bsd"]}
    for name, args in examples.items():
        result = subprocess.run([sys.executable, ROOT / "examples" / name, *args],
                                capture_output=True, text=True, timeout=60)
        assert result.stdout and not result.stderr, result.stderr


def test_files_of_makers():
    folder = ROOT.parent / "shared" / "devices"
    if not folder.is_dir():
        pytest.skip("the files are not there")
    for path in sorted(folder.iterdir()):
        device = bscan.read(path)
        facts = device.to_dict()
        assert len(facts["cells"]) == len(device.cells) and repr(device)
        assert [cell.to_dict() for cell in device.cells] == facts["cells"]
        assert [pin.to_dict() for pin in device.elements] == facts["pins"]
