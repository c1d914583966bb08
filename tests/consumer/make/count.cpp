// Counts the port elements of the example device.
#include <bscan/bscan.h>

#include <cstdio>

int main(int argc, char** argv) {
    BScanParser parser;
    if (argc != 2 || parser.Initialize(argv[1], nullptr) != bscan::kOk) return 1;
    const int code = parser.Read();
    const int ports = code == bscan::kOk ? parser.GetPinMap()->GetNumberOfPins() : 0;
    std::printf("%s, %d ports\n", bscan::Describe(code), ports);
    return ports == 24 ? 0 : 1;
}
