/// @file
/// Reads a whole file and works with everything that comes out of it.
///
/// An input that begins with a byte from 1 to 7 has a capture in front of the file, of eight times
/// as many bytes: the low two bits of each are the captured value, the next tells whether it
/// counts.

#include "fuzz/input.h"
#include "support/oracle.h"

#include <cstring>

using namespace bscan::test;
using bscan::fuzz::Require;

namespace {

constexpr int kManyPorts = 20000;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    std::vector<unsigned char> capture;
    std::vector<unsigned char> mask;
    const std::size_t cells = size > 0 && data[0] < 8 ? std::size_t{8} * data[0] : 0;
    if (cells > 0 && size > cells) {
        for (std::size_t i = 1; i <= cells; ++i) {
            capture.push_back(data[i] & 3);
            mask.push_back(data[i] & 4);
        }
        text.erase(0, cells + 1);
    }
    ReadDevice device(text, capture, mask);
    BScanParser& parser = device.parser;
    const int result = device.result();
    Require(std::strcmp(bscan::Describe(result), "unknown result") != 0, "the code has a meaning");
    BScanPinMap* const map = parser.GetPinMap();
    if (map && map->GetNumberOfPins() > kManyPorts) return 0;

    ReadDevice twin(text, capture, mask);
    Require(twin.result() == result && DumpModel(twin.parser) == DumpModel(parser),
            "the same bytes give the same model");
    // Cut in front of a line, which leaves the lines before it as they were. Without ports there is
    // nothing to compare: a bad pin map behind the cut may have kept the whole file unread.
    const ReadDevice cut(text.substr(0, text.rfind('\n', text.size() * 2 / 3) + 1));
    if (map) Require(FindPortFault(cut.parser.GetPinMap(), map));
    Require(FindFault(parser));
    Require(FindDriveFault(parser));
    Require(FindFault(parser));
    parser.CloseFile();
    Require(parser.Read() == bscan::kFailed, "a closed file is not read");
    return 0;
}
