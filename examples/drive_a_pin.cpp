// Drives one port of a device and prints the vector to shift into its boundary register.
//
//     drive_a_pin FILE [PORT [LEVEL]]
//
// Without PORT, the first pin whose port has boundary cells and can drive. LEVEL is 0 or 1, which
// is the default.
#include <bscan/bscan.h>

#include <cstdio>
#include <string>

namespace {

// The number of the first pin whose port can drive; -1 without one.
int FirstDrivingPin(BScanPinMap& device) {
    for (int pin = 1; pin <= device.GetNumberOfPins(); ++pin) {
        const PortType mode = device.GetPortType(pin);
        if ((mode == PORT_OUT || mode == PORT_INOUT) && device.HasBScanCell(pin)) {
            return pin;
        }
    }
    return -1;
}

// The vector with cell 0 first, whose bit is the first to go into TDI.
void PrintVector(const char* title, BScanPinMap& device) {
    const unsigned char* bytes = device.GetBScanBitArray();
    std::string bits;
    for (int cell = 0; cell < device.GetBScanLength(); ++cell) {
        bits += (bytes[cell / 8] & (0x80 >> (cell % 8))) != 0 ? '1' : '0';
    }
    std::printf("%-9s %s\n", title, bits.c_str());
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fputs(
            "drive_a_pin: no BSDL file given\n"
            "usage: drive_a_pin FILE [PORT [LEVEL]]\n",
            stderr);
        return 2;
    }
    const char* file = argv[1];
    std::string port = argc > 2 ? argv[2] : "";
    const eSignal level = argc > 3 && argv[3][0] == '0' ? SIG_0 : SIG_1;

    BScanParser parser;
    int code = parser.Initialize(file, nullptr);
    if (code == bscan::kOk) {
        code = parser.Read();
    }
    if (code != bscan::kOk) {
        std::fprintf(stderr, "%s: %s (%d)\n", file, bscan::Describe(code), code);
        return 1;
    }
    BScanPinMap* device = parser.GetPinMap();
    if (device == nullptr) {
        std::fprintf(stderr, "%s: the file declares no ports\n", file);
        return 1;
    }

    // A lookup by port name turns the given text into upper case, so it gets a buffer of ours.
    const int pin =
        port.empty() ? FirstDrivingPin(*device) : device->GetPinNumberwPortName(port.data());
    const LPinNode* node = device->GetPort(pin);
    if (node == nullptr) {
        std::fprintf(stderr, "%s: no port to drive, or its pin has no number\n", file);
        return 1;
    }
    // setPort has nothing to do at a port without cells, and says 0.
    if (!device->HasBScanCell(pin)) {
        std::fprintf(stderr, "%s: %s has no boundary cells\n", file, bscan::PortName(*node));
        return 1;
    }
    PrintVector("safe", *device);
    if (device->setPort(pin, PORT_OUT, level) != bscan::kOk) {
        std::fprintf(stderr, "%s: %s cannot drive\n", file, bscan::PortName(*node));
        return 1;
    }
    PrintVector("driving", *device);
    std::printf("          %s at pin %s drives %d\n", bscan::PortName(*node), bscan::PinName(*node),
                level);

    // A port that can receive lets go again; one of mode "out" refuses, and nothing changes. With a
    // cell that only observes, the driver stays on although the result is 0.
    if (device->setPort(pin, PORT_IN, SIG_X) == bscan::kOk) {
        const bool drives = device->GetPortDirection(pin) == PORT_OUT;
        PrintVector(drives ? "observing" : "released", *device);
    }
    return 0;
}
