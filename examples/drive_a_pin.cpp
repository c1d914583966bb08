// Drives one pin of a device and prints the vector to shift into its boundary register.
//
//     drive_a_pin FILE [PIN [LEVEL]]
//
// PIN is a package pin (B3), a port (READY) or an element of one (D(3)); without it, the first pin
// that can be driven. LEVEL is 0 or 1, which is the default.
#include <bscan/bscan.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

// The first element whose driver can be turned on; -1 without one.
int FirstDrivingElement(const bscan::PinDriver& driver) {
    for (int element = 0; element < driver.ElementCount(); ++element) {
        const bscan::PinCells cells = driver.Cells(element);
        if (cells.output != nullptr && cells.control != nullptr) {
            return element;
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
            "usage: drive_a_pin FILE [PIN [LEVEL]]\n",
            stderr);
        return 2;
    }
    const char* file = argv[1];
    const eSignal level = argc > 3 && argv[3][0] == '0' ? SIG_0 : SIG_1;

    const bscan::Description description = bscan::Description::Read(file);
    BScanParser parser;
    const int code = description.Fill(parser);
    if (code != bscan::kOk) {
        std::fprintf(stderr, "%s: %s (%d)\n", file, bscan::Describe(code), code);
        return 1;
    }
    // A file with errors is read too; a host that drives hardware should not trust it.
    for (const bscan::Finding& finding : description.Findings()) {
        if (finding.severity == bscan::Severity::kError) {
            std::fprintf(stderr, "%s:%d: %s\n", file, finding.line, finding.message.c_str());
        }
    }

    BScanPinMap& device = *parser.GetPinMap();
    bscan::PinDriver driver(device);
    driver.Preset();  // every driver off that can be turned off
    const bscan::PinNames names(driver, &description.GetFacts());
    int element = FirstDrivingElement(driver);
    if (argc > 2) {
        const std::vector<int> found = names.Find(argv[2]);
        element = found.empty() ? -1 : found.front();
    }
    if (element < 0) {
        std::fprintf(stderr, "%s: no such pin, or none that can be driven\n", file);
        return 1;
    }
    PrintVector("preset", device);
    const bscan::DriveCode driven = driver.Request(element, level);
    if (!bscan::IsDone(driven)) {
        std::fprintf(stderr, "%s: %s: %s\n", file, names.Label(element).c_str(),
                     driver.Explain(element, driven).c_str());
        return 1;
    }
    PrintVector("driving", device);
    std::printf("          %s %s\n", names.Label(element).c_str(),
                driver.Explain(element, driven).c_str());
    for (const int other : driver.AlsoDriven()) {
        std::printf("          %s is driven too, by the same control cell\n",
                    names.Label(other).c_str());
    }
    driver.Request(element, SIG_Z);
    PrintVector("released", device);
    return 0;
}
