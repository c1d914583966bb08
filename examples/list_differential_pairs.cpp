// Lists the differential pairs of a device with their pins and boundary cells.
//
//     list_differential_pairs FILE
#include <bscan/bscan.h>

#include <cstdio>
#include <string>

namespace {

void PrintLeg(const char* title, BScanPinMap& device, std::string port, int position) {
    // The lookup turns the given name into upper case in place; this copy is ours.
    const LPinNode* node = device.GetPortwName(port.data());
    const char* pin = node != nullptr ? bscan::PinName(*node) : nullptr;
    std::printf("    %-9s %-12s pin %-6s ", title, port.c_str(), pin != nullptr ? pin : "-");
    if (position < 0) {
        std::puts("no cell");
    } else {
        std::printf("cell %d\n", position);
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fputs(
            "list_differential_pairs: no BSDL file given\n"
            "usage: list_differential_pairs FILE\n",
            stderr);
        return 2;
    }
    const char* file = argv[1];
    const bscan::Description description = bscan::Description::Read(file);
    BScanParser parser;
    const int code = description.Fill(parser);
    if (code != bscan::kOk) {
        std::fprintf(stderr, "%s: %s (%d)\n", file, bscan::Describe(code), code);
        return 1;
    }
    // A file without PORT_GROUPING has no pairs, and neither has one in which a negative leg has
    // no cell: its name must stand in the comment behind an entry of the boundary register.
    std::printf("%d differential pairs\n", parser.GetDifferentialPairCount());
    for (const CDifferentialPair& pair : *parser.GetDifferentialPairList()) {
        std::puts("");
        PrintLeg("positive", *parser.GetPinMap(), pair.GetPositiveElement(),
                 pair.GetPositiveBScanPosition());
        PrintLeg("negative", *parser.GetPinMap(), pair.GetNegativeElement(),
                 pair.GetNegativeBScanPosition());
    }
    return 0;
}
