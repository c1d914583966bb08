// bscan show: what a file says about its device.

#include "commands.h"
#include "device_tables.h"
#include "failure.h"
#include "printable.h"
#include "terminal.h"

#include <fmt/format.h>

namespace tool {
namespace {

struct Section {
    std::string key;
    std::string title;
    Table table;
};

std::vector<Section> ChosenSections(const Device& device, const ShowOptions& options) {
    std::vector<Section> sections;
    if (options.pins) sections.push_back({"pins", "Pins", PinTable(device)});
    if (options.cells) sections.push_back({"cells", "Cells", CellTable(device)});
    if (options.instructions) {
        sections.push_back({"instructions", "Instructions", InstructionTable(device)});
    }
    return sections;
}

std::vector<Section> SummarySections(const Device& device) {
    return {{"instructions", "Instructions", InstructionTable(device)},
            {"registers", "Register access", RegisterTable(device)},
            {"pairs", "Differential pairs", PairTable(device)}};
}

void PrintField(const char* name, const std::string& value) {
    Write(stdout, fmt::format("{:<14}{}\n", name, value.empty() ? "-" : Printable(value)));
}

std::string Text(const Json& value) {
    if (value.is_null()) return {};
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string PinText(const Device& device) {
    std::size_t bonded = 0;
    for (const Element& element : device.elements()) bonded += element.pin.empty() ? 0U : 1U;
    const std::size_t open = device.elements().size() - bonded;
    return open == 0 ? fmt::format("{}", bonded)
                     : fmt::format("{}, and {} port elements without one", bonded, open);
}

std::string InstructionText(const Device& device) {
    const Json length = InstructionLength(device);
    const Json capture = InstructionCapture(device);
    return fmt::format("{} bits, captures {}", length.is_null() ? "-" : Text(length),
                       capture.is_null() ? "-" : Text(capture));
}

void PrintSummary(const Device& device) {
    PrintField("Component", device.ComponentName());
    PrintField("Package", device.PackageName());
    PrintField("Ports",
               fmt::format("{}, with {} elements", PortCount(device), device.elements().size()));
    PrintField("Pins", PinText(device));
    PrintField("Cells", fmt::format("{}", device.map().GetBScanLength()));
    PrintField("Instructions", InstructionText(device));
}

void PrintSections(const std::vector<Section>& sections, Format format) {
    const Style style(stdout);
    bool first = true;
    for (const Section& section : sections) {
        if (!first) Write(stdout, "\n");
        if (format == Format::kTable && sections.size() > 1) {
            Write(stdout, style(Emphasis::kBold, section.title) + '\n');
        }
        Print(stdout, section.table, format);
        first = false;
    }
}

void PrintSummarySections(const Device& device) {
    for (const Section& section : SummarySections(device)) {
        if (section.table.rows.empty()) continue;
        Write(stdout, "\n");
        Print(stdout, section.table, Format::kTable);
    }
}

Json ToJson(const Device& device, const std::vector<Section>& sections) {
    if (sections.empty()) return DeviceJson(device);
    Json object = {{"file", device.path()}};
    for (const Section& section : sections) object[section.key] = ToJson(section.table);
    return object;
}

}  // namespace

int Show(const ShowOptions& options) {
    Device device(options.file);
    if (!ReadOrReport(device, nullptr)) return kProblem;
    const std::vector<Section> sections = ChosenSections(device, options);
    if (options.format == Format::kJson) {
        Print(stdout, ToJson(device, sections), 2);
    } else if (!sections.empty()) {
        PrintSections(sections, options.format);
    } else if (options.format == Format::kCsv) {
        Print(stdout, SummaryTable(device), options.format);
    } else {
        PrintSummary(device);
        PrintSummarySections(device);
    }
    return kSuccess;
}

}  // namespace tool
