// bscan observe: what the ports show in a captured vector.

#include "commands.h"
#include "device_tables.h"
#include "doubts.h"
#include "failure.h"
#include "printable.h"
#include "scan_text.h"
#include "words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tool {
namespace {

int Complain(const std::string& message, int status) {
    Write(stderr, fmt::format("bscan observe: {}\n", message));
    return status;
}

struct Levels {
    Table table{{{"port", "Port"},
                 {"pin", "Pin"},
                 {"mode", "Mode"},
                 {"direction", "Direction"},
                 {"level", "Level"},
                 {"input_cell", "Input cell", Audience::kPrograms},
                 {"output_cell", "Output cell", Audience::kPrograms},
                 {"control_cell", "Control cell", Audience::kPrograms},
                 {"error", "Error", Audience::kPrograms}},
                {}};
    std::vector<std::string> doubtful;  // ports that are left out
    const bscan::Finding* doubt = nullptr;
};

Json NumberOf(const LBScanCell* cell) {
    return cell == nullptr ? Json() : Json(cell->GetBoundaryCellPosition());
}

// Ports of mode linkage carry no logic signal; the others have a direction, if not always cells.
Levels LevelsOf(const Device& device, bool force) {
    Levels levels;
    const Doubts doubts(device);
    const bscan::PinDriver driver(device.map());
    for (const Element& element : device.elements()) {
        if (element.node->GetPortType() == PORT_NONE) continue;
        const int number = device.Number(element);
        const bscan::Finding* const doubt = force ? nullptr : doubts.Of(element);
        const PortType direction =
            doubt == nullptr ? device.map().GetPortDirection(number) : PORT_NONE;
        const eSignal level = doubt == nullptr ? device.map().GetPortValue(number) : SIG_X;
        const bscan::PinCells cells = driver.Cells(driver.Find(element.node));
        levels.table.rows.push_back(
            {element.Label(), TextOrNull(element.pin), Word(element.node->GetPortType()),
             direction == PORT_NONE ? Json() : Json(Word(direction)), Word(level),
             NumberOf(cells.receiver), NumberOf(cells.output), NumberOf(cells.control),
             doubt == nullptr ? Json() : Json(doubt->rule)});
        if (doubt == nullptr) continue;
        levels.doubtful.push_back(element.Label());
        if (levels.doubt == nullptr) levels.doubt = doubt;
    }
    return levels;
}

// Tells which ports are not told, the first few by name.
void PrintDoubts(const Levels& levels) {
    constexpr std::size_t kShown = 8;
    const std::vector<std::string>& all = levels.doubtful;
    const auto last = all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), kShown));
    std::string names = fmt::format("{}", fmt::join(all.begin(), last, ", "));
    if (all.size() > kShown) names += fmt::format(" and {} more", all.size() - kShown);
    Complain(fmt::format("not told: {}: {}; --force tells all", Printable(names),
                         Printable(DoubtText(*levels.doubt))),
             kProblem);
}

int ObserveCapture(const ObserveOptions& options, const Capture& capture) {
    Device device(options.file);
    if (!ReadOrReport(device, &capture)) return kProblem;
    const std::string problem = CaptureProblem(capture, device);
    if (!problem.empty()) return Complain(problem, kProblem);
    const Levels levels = LevelsOf(device, options.force);
    if (options.format == Format::kJson) {
        Print(stdout, Json{{"file", device.path()}, {"ports", ToJson(levels.table)}}, 2);
    } else {
        Print(stdout, levels.table, options.format);
    }
    if (levels.doubtful.empty()) return kSuccess;
    PrintDoubts(levels);
    return kProblem;
}

}  // namespace

int Observe(const ObserveOptions& options) {
    if (!options.capture.IsGiven()) {
        return Complain("--capture or --capture-file is required", kUsage);
    }
    Capture capture;
    const std::string problem = ReadCapture(options.capture, options.file, capture);
    if (problem.empty()) return ObserveCapture(options, capture);
    return Complain(problem, options.capture.file.empty() ? kUsage : kProblem);
}

}  // namespace tool
