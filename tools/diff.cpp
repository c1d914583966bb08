// bscan diff: what differs between the devices of two files.

#include "commands.h"
#include "device_tables.h"
#include "failure.h"
#include "words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <unordered_map>

namespace tool {
namespace {

// Things of one kind, by name, each with what is to be compared as text.
class Items {
public:
    // A name that comes again, as an instruction may, adds to what it had.
    void Add(const std::string& name, const std::string& text) {
        const auto [place, is_new] = places_.try_emplace(name, list_.size());
        if (is_new) {
            list_.emplace_back(name, text);
        } else {
            list_[place->second].second += "; " + text;
        }
    }

    const std::string* Find(const std::string& name) const {
        const auto place = places_.find(name);
        return place == places_.end() ? nullptr : &list_[place->second].second;
    }

    const std::vector<std::pair<std::string, std::string>>& list() const { return list_; }

private:
    std::vector<std::pair<std::string, std::string>> list_;
    std::unordered_map<std::string, std::size_t> places_;
};

struct Kind {
    const char* name;
    Items (*collect)(const Device&);
};

// Letter case has no meaning in BSDL, and a lookup may have changed that of a port's name.
std::string Upper(std::string text) {
    for (char& character : text) {
        if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 32);
    }
    return text;
}

std::string Text(const Json& value) {
    if (value.is_null()) return "-";
    if (value.is_string()) return value.get<std::string>();
    if (!value.is_array()) return value.dump();
    std::vector<std::string> texts;
    for (const Json& item : value) texts.push_back(Text(item));
    return fmt::format("{}", fmt::join(texts, ", "));
}

Items DeviceItems(const Device& device) {
    Items items;
    for (const std::vector<Json>& row : SummaryTable(device).rows) {
        const std::string field = Text(row[0]);
        // The other counts differ only where something below them does.
        if (field != "ports" && field != "port elements" && field != "pins") {
            items.Add(field, Text(row[1]));
        }
    }
    return items;
}

Items PortItems(const Device& device) {
    std::vector<std::pair<std::string, std::vector<const Element*>>> ports;
    std::unordered_map<std::string, std::size_t> places;
    for (const Element& element : device.elements()) {
        const std::string name = Upper(element.port);
        const auto [place, is_new] = places.try_emplace(name, ports.size());
        if (is_new) ports.emplace_back(name, std::vector<const Element*>{});
        ports[place->second].second.push_back(&element);
    }
    Items items;
    for (const auto& [name, elements] : ports) {
        std::string text(Word(elements[0]->node->GetPortType()));
        if (elements[0]->index) {
            text += fmt::format(", {} to {}", *elements.front()->index,
                                elements.back()->index.value_or(0));
        }
        items.Add(name, text);
    }
    return items;
}

Items PinItems(const Device& device) {
    Items items;
    for (const Element& element : device.elements()) {
        items.Add(Upper(element.Label()), Text(TextOrNull(element.pin)));
    }
    return items;
}

std::string CellText(const Device& device, const LBScanCell& cell) {
    std::string text = fmt::format("{}, {}, {}, {}", Word(cell.GetBScanCellType()),
                                   Upper(Text(PortOf(device, cell))), Word(cell.GetFunction()),
                                   Word(cell.safeValue));
    if (const LBScanCell* control = cell.GetControlCell()) {
        text += fmt::format(", {}, {}, {}", control->GetBoundaryCellPosition(),
                            Word(cell.disableValue), Word(cell.disableResult));
    }
    const std::string remark = cell.GetOriginalPinName();
    return remark.empty() ? text : text + " -- " + remark;
}

Items CellItems(const Device& device) {
    Items items;
    int position = 0;
    for (const LBScanCell* cell : CellsOf(device.map())) {
        items.Add(std::to_string(position++), CellText(device, *cell));
    }
    return items;
}

Items RowItems(const Table& table) {
    Items items;
    for (const std::vector<Json>& row : table.rows) items.Add(Upper(Text(row[0])), Text(row[1]));
    return items;
}

Items InstructionItems(const Device& device) { return RowItems(InstructionTable(device)); }

Items RegisterItems(const Device& device) { return RowItems(RegisterTable(device)); }

Items PairItems(const Device& device) { return RowItems(PairTable(device)); }

constexpr Kind kKinds[] = {{"device", DeviceItems},
                           {"port", PortItems},
                           {"pin", PinItems},
                           {"cell", CellItems},
                           {"instruction", InstructionItems},
                           {"register", RegisterItems},
                           {"pair", PairItems}};

void Compare(const char* kind, const Items& left, const Items& right, Table& table) {
    for (const auto& [name, text] : left.list()) {
        const std::string* other = right.Find(name);
        if (other == nullptr || *other != text) {
            table.rows.push_back({kind, name, text, other == nullptr ? Json() : Json(*other)});
        }
    }
    for (const auto& [name, text] : right.list()) {
        if (left.Find(name) == nullptr) table.rows.push_back({kind, name, Json(), text});
    }
}

}  // namespace

int Diff(const DiffOptions& options) {
    Device left(options.left);
    Device right(options.right);
    const bool left_read = ReadOrReport(left, nullptr);
    const bool right_read = ReadOrReport(right, nullptr);
    if (!left_read || !right_read) return kUsage;
    Table table{{{"kind", "Kind"}, {"name", "Name"}, {"left", "A"}, {"right", "B"}}, {}};
    for (const Kind& kind : kKinds) {
        Compare(kind.name, kind.collect(left), kind.collect(right), table);
    }
    if (options.format == Format::kJson) {
        const Json report{{"left", options.left.path},
                          {"right", options.right.path},
                          {"differences", ToJson(table)}};
        Print(stdout, report, 2);
    } else if (options.format == Format::kCsv || !table.rows.empty()) {
        Print(stdout, table, options.format);
    }
    return table.rows.empty() ? kSuccess : kProblem;
}

}  // namespace tool
