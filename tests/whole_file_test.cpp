// Whole devices: their models, and what becomes of them when a file is cut or changed.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>

namespace bscan::test {
namespace {

void ExpectSound(BScanParser& parser, int result) {
    EXPECT_TRUE(result >= kOutOfMemory && result <= kOk && result != -12) << result;
    EXPECT_EQ(FindFault(parser, result), "");
    EXPECT_EQ(FindDriveFault(parser), "");
    EXPECT_EQ(FindFault(parser, result), "");
}

/// Cuts a text at some lengths; from `enough` bytes on nothing is missing.
void ExpectSoundPrefixes(std::string_view text, std::size_t enough, std::size_t step) {
    ReadDevice whole(text);
    for (std::size_t length = 0; length <= text.size(); length += 1 + length % step) {
        SCOPED_TRACE(length);
        ReadDevice device(text.substr(0, length));
        EXPECT_EQ(device.result() == kOk, length >= enough);
        EXPECT_EQ(FindPortFault(device.parser.GetPinMap(), whole.parser.GetPinMap()), "");
        ExpectSound(device.parser, device.result());
        if (testing::Test::HasFailure()) return;
    }
}

/// The model without the number of lines.
std::string Model(BScanParser& parser) {
    const std::string dump = DumpModel(parser);
    return dump.substr(dump.find('\n'));
}

TEST(SmallDevice, GivesAModel) {
    ReadDevice device(kSmallDevice);
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
    std::string other;
    for (const char c : kSmallDevice)
        other += c == '\n' ? std::string("\r\n\t\r\n") : std::string(1, c);
    ReadDevice spread(other);
    EXPECT_EQ(spread.parser.GetLineNumber(), 51);
    EXPECT_EQ(Model(spread.parser), Model(device.parser));
}

TEST(SmallDevice, CutAnywhereKeepsWhatWasRead) {
    ExpectSoundPrefixes(kSmallDevice, kSmallDevice.rfind("end") + 3, 1);
}

TEST(SmallDevice, ChangedInAnyByteIsReadSafely) {
    std::string text(kSmallDevice);
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            SCOPED_TRACE(testing::Message() << at << " becomes " << byte);
            text[at] = static_cast<char>(byte);
            ReadDevice device(text);
            ExpectSound(device.parser, device.result());
            if (HasFailure()) return;
        }
        text[at] = kSmallDevice[at];
    }
}

TEST(LargeFile, TakesTimeInProportion) {
    std::string ports;
    std::string pins;
    std::string cells;
    constexpr int kPorts = 20000;
    for (int i = 0; i < kPorts; ++i) {
        const std::string n = std::to_string(i);
        const bool last = i + 1 == kPorts;
        ports += "P" + n + " : inout bit;\n";
        pins += "\"P" + n + ":A" + n + (last ? "\";\n" : ",\" &\n");
        cells += "\"" + n + " (BC_1, P" + n + ", bidir, X, " + n + ", 1, Z)" +
                 (last ? "\";\n" : ",\" & -- O" + n + "\n");
    }
    const auto start = std::chrono::steady_clock::now();
    ReadDevice device(Entity("port (\n" + ports + ");\nconstant PKG : PIN_MAP_STRING :=\n" + pins +
                             "attribute BOUNDARY_LENGTH of X : entity is 20000;\n"
                             "attribute BOUNDARY_REGISTER of X : entity is\n" +
                             cells));
    // Quadratic work would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(device.map().GetPinNumber("A7"), kPorts - 7);
    EXPECT_EQ(device.map().GetBScanCellByOriginalName("o4711"), device.map().GetBScanCell(4711));
}

TEST(ExampleDevices, HaveTheirGoldenModels) {
    for (const std::filesystem::path& file : FilesIn(SourceDir() / "examples" / "devices")) {
        SCOPED_TRACE(file);
        const std::string text = Contents(file);
        ReadDevice device(text);
        EXPECT_EQ(device.result(), kOk);
        const std::string model = DumpModel(device.parser);
        const std::filesystem::path golden =
            SourceDir() / "tests" / "model_golden" / (file.stem().string() + ".txt");
        // BSCAN_UPDATE_GOLDEN=1 in the environment writes the models anew.
        if (std::getenv("BSCAN_UPDATE_GOLDEN")) std::ofstream(golden) << model;
        EXPECT_EQ(model, Contents(golden)) << golden;
        ExpectSound(device.parser, kOk);
        ExpectSoundPrefixes(text, text.rfind("end") + 3, 7);
    }
}

TEST(ManufacturersDevices, AreReadAndDriven) {
    const std::vector<std::filesystem::path> files = FilesIn(BSCAN_DEVICES_DIR);
    if (files.empty()) GTEST_SKIP() << "no device files of manufacturers beside the repository";
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file);
        ReadDevice device(Contents(file));
        ExpectSound(device.parser, device.result());
    }
}

}  // namespace
}  // namespace bscan::test
