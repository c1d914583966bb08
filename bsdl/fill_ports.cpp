// The elements of the ports.

#include "bsdl/model_filler.h"
#include "model/device_builder.h"
#include "support/text_view.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace bscan::detail {
namespace {

// The mode as the model knows it; those that are not of the test logic are all one.
std::string_view ModeText(PortMode mode) {
    switch (mode) {
        case PortMode::kIn:
            return "in";
        case PortMode::kOut:
            return "out";
        case PortMode::kInout:
            return "inout";
        case PortMode::kBuffer:
            return "buffer";
        default:
            return "linkage";
    }
}

// Whether two ports stand in one list of names.
bool SameDeclaration(const Port& left, const Port& right) {
    return left.mode_word.line == right.mode_word.line &&
           left.mode_word.column == right.mode_word.column;
}

// A text without comments, its lines joined as the line reader joins them: with a blank behind the
// first alone.
std::string JoinedLines(std::string_view text) {
    std::string joined;
    bool blank = false;  // whether it was set
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::string_view line = text.substr(0, end);
        joined.append(TrimLeft(TrimRight(line.substr(0, line.find("--")))));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!text.empty() && !joined.empty() && !std::exchange(blank, true)) joined.push_back(' ');
    }
    return joined;
}

}  // namespace

void ModelFiller::AddPorts() {
    BScanPinMap& device = *parser_.pin_map_;
    DeviceBuilder builder(device);
    for (const Port& port : facts_.ports) {
        const int first = device.GetNumberOfPins();
        std::int64_t count = 1;
        bool ascending = true;
        if (port.range) {
            ascending = port.range->left <= port.range->right;
            count = std::abs(std::int64_t{port.range->right} - port.range->left) + 1;
        }
        // Past the ceilings, nothing is added.
        builder.AddPorts(port.name.text, ModeText(port.mode), count, ascending);
        elements_.Add(port, first, device.GetNumberOfPins() - first);
    }
    AddIoNames();
}

// The lists of names of the declarations of mode "inout", as they are written.
void ModelFiller::AddIoNames() {
    DeviceBuilder device(*parser_.pin_map_);
    const std::vector<Port>& ports = facts_.ports;
    for (auto first = ports.begin(), end = first; first != ports.end(); first = end) {
        end = std::find_if_not(first, ports.end(),
                               [&](const Port& port) { return SameDeclaration(*first, port); });
        if (first->mode != PortMode::kInout) continue;
        const std::string_view last = std::prev(end)->name.text;
        const char* const begin = first->name.text.data();
        const auto length = static_cast<std::size_t>(last.data() + last.size() - begin);
        device.AddIoNames(JoinedLines({begin, length}));
    }
}

}  // namespace bscan::detail
