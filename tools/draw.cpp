// bscan draw: a drawing of the package and what its pins are.

#include "commands.h"
#include "drawing/package_drawing.h"
#include "failure.h"
#include "printable.h"

#include <fmt/format.h>

#include <fstream>

namespace tool {
namespace {

bscan::PortMode ModeOf(PortType type) {
    switch (type) {
        case PORT_IN:
            return bscan::PortMode::kIn;
        case PORT_OUT:
            return bscan::PortMode::kOut;
        case PORT_INOUT:
            return bscan::PortMode::kInout;
        case PORT_BUFFER:
            return bscan::PortMode::kBuffer;
        default:
            return bscan::PortMode::kLinkage;
    }
}

// What a device that was read by lines tells of its ports; elements of one name that follow each
// other are a vector. The words are those of the model.
bscan::Facts FactsOf(const BScanPinMap& map, std::string_view component) {
    bscan::Facts facts;
    facts.entity.text = component;
    const LObjList& nodes = *map.GetPinListArray();
    int before = 0;  // the index of the element before
    for (int i = 0; i < nodes.GetCount(); ++i) {
        const auto& node = *static_cast<const LPinNode*>(nodes.GetAt(i));
        const char* const name = bscan::PortName(node);
        const std::string_view text = name == nullptr ? "" : name;
        const int index = node.GetVectorIndex();
        if (!facts.ports.empty() && facts.ports.back().name.text == text) {
            bscan::Port& port = facts.ports.back();
            port.range = bscan::IndexRange{port.range ? port.range->left : before, index};
            before = index;
            continue;
        }
        before = index;
        bscan::Port port;
        port.name = {text, 1, 1};
        port.mode = ModeOf(node.GetPortType());
        facts.ports.push_back(port);
    }
    return facts;
}

}  // namespace

int Draw(const DrawOptions& options) {
    Device device(options.file);
    if (!ReadOrReport(device, nullptr)) return kProblem;
    const std::string component = device.ComponentName();
    const bscan::Facts facts =
        options.file.by_lines ? FactsOf(device.map(), component) : device.facts();
    const std::string drawing =
        bscan::drawing::DrawPackage(facts, &device.map(), device.PackageName());
    if (options.output == "-") {
        Write(stdout, drawing);
        return kSuccess;
    }
    std::ofstream stream(options.output, std::ios::binary);
    stream << drawing << std::flush;
    if (stream) return kSuccess;
    Write(stderr, fmt::format("bscan draw: cannot write {}\n", Printable(options.output)));
    return kProblem;
}

}  // namespace tool
