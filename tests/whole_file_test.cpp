// Whole devices: their models, and what becomes of them when a file is cut or changed.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <set>

namespace bscan::test {
namespace {

/// Uses every kind of statement, in few bytes.
constexpr std::string_view kSmall = R"bsdl(entity S is
generic (PHYSICAL_PIN_MAP : string := "P");
port (
 A : in bit; -- a
 D : inout bit_vector (1 downto 0);
 V : linkage bit);
use STD.all;
attribute PIN_MAP of S : entity is P;
constant P : PIN_MAP_STRING := "A:A1," &
 "D:(B1,B2),V:A2";
attribute PORT_GROUPING of S : entity is
 "Differential_Voltage ((D,V))";
attribute INSTRUCTION_LENGTH of S : entity is 2;
attribute INSTRUCTION_OPCODE of S : entity is
 "BYPASS (11)," & "EXTEST (00,01)";
attribute INSTRUCTION_CAPTURE of S : entity is "01";
attribute REGISTER_ACCESS of S : entity is "BOUNDARY (EXTEST)";
attribute BOUNDARY_LENGTH of S : entity is 5;
attribute BOUNDARY_REGISTER of S : entity is
 "0 (BC_1, *, control, 0)," &
 "1 (BC_7, D(0), bidir, X, 0, 0, Z)," & -- D0
 "2 (BC_1, A, input, X)," &
 "3 (BC_1, *, internal, 1)," &
 "4 (BC_1, *, internal, 1)," & -- V
 "";
end S;
)bsdl";

/// The model's ports as far as they come from the port clause.
std::string PortNames(const BScanParser& parser) { return Ports(parser.GetPinMap()) + ' '; }

void DriveEverything(ReadDevice& device) {
    BScanPinMap* const map = device.parser.GetPinMap();
    for (int pin = 0; map && pin <= map->GetNumberOfPins(); ++pin) {
        for (const PortType direction : {PORT_OUT, PORT_IN}) {
            map->setPort(pin, direction, SIG_1);
            map->GetPortValue(pin);
            map->GetPortDirection(pin);
        }
    }
}

void ExpectSound(ReadDevice& device) {
    EXPECT_TRUE(device.result() >= kOutOfMemory && device.result() <= kOk && device.result() != -12)
        << device.result();
    EXPECT_EQ(FindFault(device.parser), "");
    DriveEverything(device);
    EXPECT_EQ(FindFault(device.parser), "");
}

TEST(SmallDevice, GivesAModel) {
    ReadDevice device(kSmall);
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(DumpModel(device.parser), R"(component S package p lines 26
package map p: A2 B2 A1 B1
instructions 2 "01" BYPASS(11) EXTEST(00,01)
registers BOUNDARY(EXTEST)
pairs D/V@1,4
io D
port A:in:0 pin A1/3 cells 2
port D:inout:1 pin B1/4 + cells 
port D:inout:0 pin B2/2 cells 1
port V:none:0 pin A2/1 - cells 
cell 0: BC_1 CONTROL [] [] safe 0 value 0
cell 1: BC_7 BIDIR [D] [D0] safe X value X port D:0 control 0 off 0 shows Z
cell 2: BC_1 INPUT [A] [] safe X value X port A:0
cell 3: BC_1 CONTROL [] [] safe 0 value 0
cell 4: BC_7 BIDIR [V] [V] safe X value X port V:0 control 3 off 0 shows Z
bits 00011
)");
    ExpectSound(device);
}

TEST(SmallDevice, CutAnywhereKeepsWhatWasRead) {
    ReadDevice whole(kSmall);
    const std::string all = PortNames(whole.parser);
    // Up to the "end" of the last line nothing is missed; from there on nothing is missing.
    const std::size_t enough = kSmall.rfind("end") + 3;
    for (std::size_t length = 0; length <= kSmall.size(); ++length) {
        SCOPED_TRACE(length);
        ReadDevice device(kSmall.substr(0, length));
        EXPECT_EQ(device.result() == kOk, length >= enough);
        const std::string ports = PortNames(device.parser);
        EXPECT_TRUE(ports == " " || all.compare(0, ports.size(), ports) == 0) << ports;
        ExpectSound(device);
        if (HasFailure()) return;
    }
}

TEST(SmallDevice, ChangedInAnyByteIsReadSafely) {
    std::string text(kSmall);
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            SCOPED_TRACE(testing::Message() << at << " becomes " << byte);
            text[at] = static_cast<char>(byte);
            ReadDevice device(text);
            ExpectSound(device);
            if (HasFailure()) return;
        }
        text[at] = kSmall[at];
    }
}

TEST(SmallDevice, ReadTwiceGivesTheSameModel) {
    ReadDevice first(kSmall);
    ReadDevice second(kSmall);
    EXPECT_EQ(DumpModel(first.parser), DumpModel(second.parser));
}

TEST(SmallDevice, MayBeWrittenWithOtherLineEndsAndComments) {
    ReadDevice expected(kSmall);
    const auto model = [](BScanParser& parser) {
        const std::string dump = DumpModel(parser);
        return dump.substr(dump.find('\n'));  // behind the number of lines
    };
    std::string other;
    for (const char c : kSmall) other += c == '\n' ? std::string("\r\n\t\r\n") : std::string(1, c);
    ReadDevice device(other);
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(device.parser.GetLineNumber(), 51);
    EXPECT_EQ(model(device.parser), model(expected.parser));
}

TEST(LargeFile, TakesTimeInProportion) {
    std::string ports;
    std::string pins;
    std::string cells;
    constexpr int kPorts = 20000;
    for (int i = 0; i < kPorts; ++i) {
        const std::string n = std::to_string(i);
        ports += "P" + n + " : inout bit;\n";
        pins += "\"P" + n + ":A" + n + (i + 1 < kPorts ? ",\" &\n" : "\";\n");
        cells += "\"" + n + " (BC_1, P" + n + ", bidir, X, " + n + ", 1, Z)" +
                 (i + 1 < kPorts ? ",\" & -- O" + n + "\n" : std::string("\";\n"));
    }
    const auto start = std::chrono::steady_clock::now();
    ReadDevice device(Entity("port (\n" + ports + ");\nconstant PKG : PIN_MAP_STRING :=\n" + pins +
                             "attribute BOUNDARY_LENGTH of X : entity is " +
                             std::to_string(kPorts) +
                             ";\nattribute BOUNDARY_REGISTER of X : entity is\n" + cells));
    // Quadratic work would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(device.map().GetPinNumber("A7"), kPorts - 7 - 1 + 1);
    EXPECT_EQ(device.map().GetBScanCellByOriginalName("o4711"), device.map().GetBScanCell(4711));
    EXPECT_EQ(device.map().GetPortwName(Text("p19999")), device.map().GetPort("A19999"));
}

std::string TestName(const testing::TestParamInfo<std::filesystem::path>& info) {
    std::string name = info.param.stem().string() + '_' + std::to_string(info.index);
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

class ExampleDevice : public testing::TestWithParam<std::filesystem::path> {};
INSTANTIATE_TEST_SUITE_P(Files, ExampleDevice,
                         testing::ValuesIn(FilesIn(SourceDir() / "examples" / "devices")),
                         TestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ExampleDevice);

// BSCAN_UPDATE_GOLDEN=1 in the environment writes the models anew.
TEST_P(ExampleDevice, HasItsGoldenModel) {
    ReadDevice device(Contents(GetParam()));
    EXPECT_EQ(device.result(), kOk);
    const std::string model = DumpModel(device.parser);
    const std::filesystem::path golden =
        SourceDir() / "tests" / "model_golden" / (GetParam().stem().string() + ".txt");
    if (std::getenv("BSCAN_UPDATE_GOLDEN")) std::ofstream(golden) << model;
    EXPECT_EQ(model, Contents(golden)) << golden;
    ExpectSound(device);
}

TEST_P(ExampleDevice, CutAnywhereKeepsWhatWasRead) {
    const std::string text = Contents(GetParam());
    ReadDevice whole(text);
    const std::string all = PortNames(whole.parser);
    for (std::size_t length = 0; length < text.size(); length += 1 + length % 7) {
        SCOPED_TRACE(length);
        ReadDevice device(std::string_view(text).substr(0, length));
        const std::string ports = PortNames(device.parser);
        EXPECT_TRUE(ports == " " || all.compare(0, ports.size(), ports) == 0) << ports;
        ExpectSound(device);
        if (HasFailure()) return;
    }
}

class ManufacturersDevice : public testing::TestWithParam<std::filesystem::path> {};
INSTANTIATE_TEST_SUITE_P(Files, ManufacturersDevice,
                         testing::ValuesIn(FilesIn(ManufacturersDevices())), TestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ManufacturersDevice);

TEST_P(ManufacturersDevice, IsReadAndDriven) {
    ReadDevice device(Contents(GetParam()));
    ExpectSound(device);
}

TEST(ManufacturersDevices, ArePresent) {
    if (FilesIn(ManufacturersDevices()).empty())
        GTEST_SKIP() << "no device files of manufacturers beside the repository";
}

}  // namespace
}  // namespace bscan::test
