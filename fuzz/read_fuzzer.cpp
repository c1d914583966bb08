/// @file
/// Reads a whole file and works with everything that comes out of it.
///
/// An input that begins with a byte from 1 to 7 has a capture in front of the file, of eight times
/// as many bytes: the low two bits of each are the captured value, the next tells whether it
/// counts.

#include "fuzz/input.h"
#include "support/host.h"
#include "support/oracle.h"

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

using namespace bscan::test;
using bscan::fuzz::Require;

namespace {

constexpr int kManyPorts = 20000;

struct Input {
    std::string text;
    std::vector<unsigned char> capture;
    std::vector<unsigned char> mask;

    Input(const std::uint8_t* data, std::size_t size)
        : text(reinterpret_cast<const char*>(data), size) {
        const std::size_t cells = size > 0 && data[0] < 8 ? std::size_t{8} * data[0] : 0;
        if (cells == 0 || size <= cells) return;
        for (std::size_t i = 1; i <= cells; ++i) {
            capture.push_back(data[i] & 3);
            mask.push_back(data[i] & 4);
        }
        text.erase(0, cells + 1);
    }

    std::unique_ptr<ReadDevice> Read() const { return Read(text); }
    std::unique_ptr<ReadDevice> Read(std::string_view bytes) const {
        return std::make_unique<ReadDevice>(bytes, capture, mask);
    }
};

/// Looks up every port and every cell by all that names it.
void LookUpEverything(BScanPinMap& map) {
    for (int i = 0; i < map.GetNumberOfPins(); ++i) {
        LPinNode& node = *NodeAt(map, i);
        Text name(bscan::PortName(node));
        const char* const pin = bscan::PinName(node);
        LPinNode* const first = map.GetPortwName(name);
        Require(first != nullptr, "a port is found by its name");
        Require(*name == '\0' || map.GetPort(name, node.GetVectorIndex()) != nullptr,
                "an element is found by its name and index");
        Require(!pin || map.GetPort(pin) != nullptr, "a port is found by its pin");
        Require(map.GetPinNumberwPortName(name) == first->GetPinNumber(),
                "the number is that of the first port");
    }
    for (int n = 0; n < map.GetBScanLength(); ++n) {
        LBScanCell* const cell = map.GetBScanCell(n);
        Require(cell == map.GetBScanCellTable() + n, "a cell is in its place");
        const LBScanCell* const named = map.GetBScanCell(cell->GetPinName());
        Require(named && named <= cell, "a cell is found by its pin name");
        const LBScanCell* const same = map.GetBScanCellByOriginalName(cell->GetOriginalPinName());
        Require(same && same <= cell, "a cell is found by its original name");
    }
}

/// Cuts the file in front of a line, which leaves the lines before it as they were. Without ports
/// there is nothing to compare: a bad pin map behind the cut may have kept the whole file unread.
void ReadCut(const Input& input, const BScanPinMap* whole) {
    if (!whole) return;
    const std::size_t line = input.text.rfind('\n', input.text.size() * 2 / 3);
    if (line == std::string::npos) return;
    const auto cut = input.Read(std::string_view(input.text).substr(0, line + 1));
    Require(FindPortFault(cut->parser.GetPinMap(), whole));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Input input(data, size);
    if (!IsCheap(input.text)) return 0;
    const auto device = input.Read();
    BScanParser& parser = device->parser;
    const int result = device->result();
    Require(result <= bscan::kOk && result >= bscan::kOutOfMemory, "the result is a code");
    Require(std::strcmp(bscan::Describe(result), "unknown result") != 0, "the code has a meaning");
    BScanPinMap* const map = parser.GetPinMap();
    if (map && map->GetNumberOfPins() > kManyPorts) return 0;

    const auto twin = input.Read();
    Require(twin->result() == result && DumpModel(twin->parser) == DumpModel(parser),
            "the same bytes give the same model");
    ReadCut(input, map);
    Require(FindFault(parser, result));
    Require(FindDriveFault(parser));
    Require(FindFault(parser, result));
    if (map) LookUpEverything(*map);
    parser.ProcessException(0, 0, nullptr);
    parser.ClearDifferentialPairList();
    parser.CloseFile();
    Require(parser.Read() == bscan::kFailed, "a closed file is not read");
    return 0;
}
