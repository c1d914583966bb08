// Whole devices: their models, and what becomes of them when a file is cut or changed.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace bscan::test {
namespace {

void ExpectSound(BScanParser& parser, int result) {
    EXPECT_TRUE(result <= kOk && result >= kRepeatedTooOften && result != -12) << result;
    EXPECT_EQ(FindFault(parser), "");
    EXPECT_EQ(FindDriveFault(parser), "");
    EXPECT_EQ(FindFault(parser), "");
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

TEST(SmallDevice, CutAnywhereKeepsWhatWasRead) {
    ExpectSoundPrefixes(SmallDevice(), SmallDevice().rfind("end") + 3, 1);
}

TEST(SmallDevice, ChangedInAnyByteIsReadSafely) {
    std::string text(SmallDevice());
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            SCOPED_TRACE(testing::Message() << at << " becomes " << byte);
            text[at] = static_cast<char>(byte);
            ReadDevice device(text);
            ExpectSound(device.parser, device.result());
            if (HasFailure()) return;
        }
        text[at] = SmallDevice()[at];
    }
}

// Quadratic work would take longer than a test may.
TEST(LargeFile, IsReadWhole) {
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
    ReadDevice device(Entity("port (\n" + ports + ");\nconstant PKG : PIN_MAP_STRING :=\n" + pins +
                             "attribute BOUNDARY_LENGTH of X : entity is 20000;\n"
                             "attribute BOUNDARY_REGISTER of X : entity is\n" +
                             cells));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(device.map().GetPinNumber("A7"), kPorts - 7);
    EXPECT_EQ(device.map().GetBScanCellByOriginalName("o4711"), device.map().GetBScanCell(4711));
}

TEST(ExampleDevices, HaveTheirGoldenModels) {
    std::vector<std::filesystem::path> files = FilesIn(SourceDir() / "examples" / "devices");
    files.push_back(SourceDir() / "tests" / "devices" / "small.bsd");
    for (const std::filesystem::path& file : files) {
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
