// bscan show: what a file says about its device.

#include "commands.h"
#include "device_facts.h"
#include "device_tables.h"
#include "failure.h"
#include "printable.h"
#include "terminal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace tool {
namespace {

struct Section {
    std::string key;
    std::string title;
    Table table;
};

Section OtherAttributes(const Device& device) {
    return {"attributes", "Other attributes", AttributeTable(device)};
}

std::vector<Section> ChosenSections(const Device& device, const ShowOptions& options) {
    std::vector<Section> sections;
    if (options.pins) sections.push_back({"pins", "Pins", PinTable(device)});
    if (options.cells) sections.push_back({"cells", "Cells", CellTable(device)});
    if (options.instructions) {
        sections.push_back({"instructions", "Instructions", InstructionTable(device)});
    }
    if (options.all && !sections.empty()) sections.push_back(OtherAttributes(device));
    return sections;
}

std::vector<Section> SummarySections(const Device& device, bool all) {
    std::vector<Section> sections{{"instructions", "Instructions", InstructionTable(device)},
                                  {"registers", "Register access", RegisterTable(device)},
                                  {"pairs", "Differential pairs", PairTable(device)}};
    if (all) sections.push_back(OtherAttributes(device));
    return sections;
}

constexpr std::size_t kFieldWidth = 16;
constexpr std::size_t kTextWidth = 80;

// The words of a text in lines of kTextWidth.
std::vector<std::string> Wrapped(const std::string& text) {
    std::vector<std::string> lines(1);
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::string word = text.substr(begin, end - begin);
        if (!lines.back().empty() && Width(lines.back()) + 1 + Width(word) > kTextWidth) {
            lines.emplace_back();
        }
        lines.back() += (lines.back().empty() ? "" : " ") + word;
        begin = end + 1;
    }
    return lines;
}

void PrintField(std::string_view name, const std::string& value) {
    const std::string text = value.empty() ? "-" : Printable(value);
    for (const std::string& line : Wrapped(text)) {
        Write(stdout, fmt::format("{:<{}}{}\n", name, kFieldWidth, line));
        name = "";
    }
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

// The package as the file writes it, and how many others there are.
std::string PackageText(const Device& device) {
    const std::vector<bscan::PinMap>& maps = device.facts().pin_maps;
    const bscan::PinMap* const map = device.facts().FindPinMap(device.PackageName());
    std::string name = map == nullptr ? device.PackageName() : std::string(map->name.text);
    std::vector<std::string_view> others;
    for (const bscan::PinMap& other : maps) {
        if (&other != map) others.push_back(other.name.text);
    }
    if (others.empty()) return name;
    return fmt::format("{}; --package chooses {}", name.empty() ? "-" : name,
                       fmt::join(others, ", "));
}

void PrintSummary(const Device& device) {
    PrintField("Component", device.ComponentName());
    PrintField("Package", PackageText(device));
    PrintField("Ports",
               fmt::format("{}, with {} elements", PortCount(device), device.elements().size()));
    PrintField("Pins", PinText(device));
    PrintField("Cells", fmt::format("{}", device.map().GetBScanLength()));
    PrintField("Instructions", InstructionText(device));
    for (const Fact& fact : TestFacts(device)) {
        if (fact.key == "packages") continue;
        if (!fact.value.is_array()) {
            if (!fact.value.is_null()) PrintField(fact.title, Text(fact.value));
            continue;
        }
        std::string_view title = fact.title;
        for (const Json& value : fact.value) PrintField(std::exchange(title, ""), Text(value));
    }
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

void PrintSummarySections(const Device& device, bool all) {
    for (const Section& section : SummarySections(device, all)) {
        if (section.table.rows.empty()) continue;
        Write(stdout, "\n");
        Print(stdout, section.table, Format::kTable);
    }
}

Json ToJson(const Device& device, const std::vector<Section>& sections, bool all) {
    if (sections.empty()) {
        Json object = DeviceJson(device);
        if (all) object["attributes"] = ToJson(AttributeTable(device));
        return object;
    }
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
        Print(stdout, ToJson(device, sections, options.all), 2);
    } else if (!sections.empty()) {
        PrintSections(sections, options.format);
    } else if (options.format == Format::kCsv) {
        Print(stdout, SummaryTable(device), options.format);
        if (options.all) {
            Write(stdout, "\n");
            Print(stdout, AttributeTable(device), options.format);
        }
    } else {
        PrintSummary(device);
        PrintSummarySections(device, options.all);
    }
    return kSuccess;
}

}  // namespace tool
