/// @file
/// Takes any text as a board file and as captures.

#include "fuzz/input.h"
#include "tools/board_file.h"
#include "tools/captures.h"

using bscan::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    tool::BoardFile file;
    if (tool::ParseBoardFile(text, "folder", file).empty()) {
        Require(!file.netlist.empty() && !file.devices.empty(), "a board has netlist and devices");
    }
    bscan::BoardTest test;
    test.record.vector_count = 2;
    test.record.groups.resize(1);
    test.scan_length = 9;
    std::vector<bscan::ScanBits> captures;
    if (!tool::ReadCaptures(text, test, captures).empty()) return 0;
    Require(captures.size() == 2, "there are as many captures as the test takes");
    std::vector<bscan::ScanBits> again;
    const std::string written = tool::WriteCaptures(test, captures);
    Require(tool::ReadCaptures(written, test, again).empty(), "what is written can be read");
    Require(again == captures, "and says the same");
    return 0;
}
