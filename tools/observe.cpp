// bscan observe: what the ports show in a captured vector.

#include "commands.h"
#include "device_tables.h"
#include "failure.h"
#include "printable.h"
#include "scan_text.h"
#include "text_file.h"
#include "words.h"

#include <fmt/format.h>

namespace tool {
namespace {

int Complain(const std::string& message, int status) {
    Write(stderr, fmt::format("bscan observe: {}\n", message));
    return status;
}

// Ports of mode linkage carry no logic signal; the others have a direction, if not always cells.
Table LevelTable(const Device& device) {
    Table table{{{"port", "Port"},
                 {"pin", "Pin"},
                 {"mode", "Mode"},
                 {"direction", "Direction"},
                 {"level", "Level"}},
                {}};
    for (const Element& element : device.elements()) {
        if (element.node->GetPortType() == PORT_NONE) continue;
        const int number = device.Number(element);
        const PortType direction = device.map().GetPortDirection(number);
        table.rows.push_back({element.Label(), TextOrNull(element.pin),
                              Word(element.node->GetPortType()),
                              direction == PORT_NONE ? Json() : Json(Word(direction)),
                              Word(device.map().GetPortValue(number))});
    }
    return table;
}

int ObserveCapture(const ObserveOptions& options, const Capture& capture) {
    Device device(options.file);
    if (!ReadOrReport(device, &capture)) return kProblem;
    const int length = device.map().GetBScanLength();
    if (capture.data.size() != static_cast<std::size_t>(length)) {
        return Complain(fmt::format("the capture has {} bits, the boundary register of {} has {}",
                                    capture.data.size(), NameOf(options.file.path), length),
                        kProblem);
    }
    const Table table = LevelTable(device);
    if (options.format == Format::kJson) {
        Print(stdout, Json{{"file", device.path()}, {"ports", ToJson(table)}}, 2);
    } else {
        Print(stdout, table, options.format);
    }
    return kSuccess;
}

}  // namespace

int Observe(const ObserveOptions& options) {
    if (options.capture.empty() && options.capture_file.empty()) {
        return Complain("--capture or --capture-file is required", kUsage);
    }
    const bool from_file = !options.capture_file.empty();
    const auto text = from_file ? ReadText(options.capture_file) : options.capture;
    if (!text) {
        return Complain(fmt::format("cannot read {}", Printable(options.capture_file)), kProblem);
    }
    const std::optional<Capture> capture = ParseCapture(*text);
    if (!capture) return Complain("a capture is written with 0, 1 and x, cell 0 first", kUsage);
    return ObserveCapture(options, *capture);
}

}  // namespace tool
