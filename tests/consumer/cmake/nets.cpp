// Counts the nets of a netlist.
#include <bscan/board/netlist.h>

#include <cstdio>
#include <fstream>
#include <iterator>

int main(int argc, char** argv) {
    std::ifstream stream(argc == 2 ? argv[1] : "");
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    const bscan::Netlist netlist = bscan::ReadNetlist(text);
    std::printf("%zu nets\n", netlist.nets.size());
    return netlist.Ok() && !netlist.nets.empty() ? 0 : 1;
}
