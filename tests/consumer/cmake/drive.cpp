// Drives one pin of the example device and checks the vector bit by bit.
#include <bscan/bscan.h>

#include <algorithm>
#include <cstdio>

int main(int argc, char** argv) {
    BScanParser parser;
    if (argc != 2 || parser.Initialize(argv[1], nullptr) != bscan::kOk ||
        parser.Read() != bscan::kOk) {
        std::puts("the device cannot be read");
        return 1;
    }
    // Pin 4 is A(1): cell 1, with its driver turned on by cell 4. Cell 13 keeps its safe value 1.
    const unsigned char expected[] = {0x48, 0x04, 0x00};
    BScanPinMap* device = parser.GetPinMap();
    if (device->setPort(4, PORT_OUT, SIG_1) != bscan::kOk || device->GetBScanLength() != 22 ||
        !std::equal(std::begin(expected), std::end(expected), device->GetBScanBitArray())) {
        std::puts("the vector is wrong");
        return 1;
    }
    std::puts("pin 4 drives 1");
    return 0;
}
