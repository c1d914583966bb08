// Tells what the pins of a device show in a vector captured from its boundary register.
//
//     read_a_capture FILE [BITS]
//
// BITS is what came out of TDO, in that order, so cell 0 first: 0, 1, or x for a bit that is not
// valid. Without BITS, a stand-in for the device delivers 1 and 0 in turn.
#include <bscan/bscan.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// A real host shifts this many bits out of the device.
std::string ShiftOut(int length) {
    std::string bits;
    for (int cell = 0; cell < length; ++cell) {
        bits += cell % 2 == 0 ? '1' : '0';
    }
    return bits;
}

// A bidirectional cell that receives shows Z where it has captured a 0.
const char* LevelText(eSignal level) {
    static constexpr const char* kTexts[] = {"0",     "1",     "X",     "Z",
                                             "PULL0", "PULL1", "WEAK0", "WEAK1"};
    return kTexts[level];
}

const char* DirectionText(PortType direction) {
    return direction == PORT_OUT ? "drives" : direction == PORT_IN ? "receives" : "-";
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fputs(
            "read_a_capture: no BSDL file given\n"
            "usage: read_a_capture FILE [BITS]\n",
            stderr);
        return 2;
    }
    const char* file = argv[1];
    const bscan::Description description = bscan::Description::Read(file);
    const std::string bits = argc > 2 ? argv[2] : ShiftOut(description.GetFacts().boundary_length);

    // The capture must be there before the model is filled. For a later capture, fill another
    // parser from the same description.
    std::vector<unsigned char> data(bits.size());
    std::vector<unsigned char> valid(bits.size());
    for (std::size_t cell = 0; cell < bits.size(); ++cell) {
        data[cell] = bits[cell] == '1';
        valid[cell] = bits[cell] == '0' || bits[cell] == '1';
    }
    BScanParser parser;
    parser.SetBSCANBitArray(data.data(), static_cast<int>(data.size()), valid.data());
    const int code = description.Fill(parser);
    if (code != bscan::kOk) {
        std::fprintf(stderr, "%s: %s (%d)\n", file, bscan::Describe(code), code);
        return 1;
    }
    BScanPinMap& device = *parser.GetPinMap();
    const bscan::PinDriver driver(device);
    const bscan::PinNames names(driver, &description.GetFacts());
    for (int element = 0; element < driver.ElementCount(); ++element) {
        const LPinNode& node = *driver.Node(element);
        const int pin = node.GetPinNumber();
        if (!device.HasBScanCell(pin)) {
            continue;
        }
        std::printf("%-6s %-10s %-9s %s\n", bscan::PinName(node), names.Label(element).c_str(),
                    DirectionText(device.GetPortDirection(pin)),
                    LevelText(device.GetPortValue(pin)));
    }
    return 0;
}
