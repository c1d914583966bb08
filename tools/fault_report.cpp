#include "fault_report.h"

#include "printable.h"

#include <fmt/format.h>

#include <algorithm>

namespace tool {
namespace {

using bscan::Fault;
using bscan::FaultKind;
using bscan::ShortWinner;

const char* Word(FaultKind kind) {
    constexpr const char* kWords[] = {"open", "stuck", "short"};
    return kWords[static_cast<std::size_t>(kind)];
}

// Text as XML may hold it: control characters cannot be written in it at all.
std::string Xml(const std::string& text) {
    std::string escaped;
    for (const char character : Printable(text)) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

std::string Join(const std::vector<std::string>& items, const char* separator) {
    std::string text;
    for (const std::string& item : items) {
        if (!text.empty()) text += separator;
        text += item;
    }
    return text;
}

bool IsOneOf(const bscan::DiagnosedFault& found) {
    return found.one_of.size() > 1 || !found.certain;
}

bool Concerns(const bscan::DiagnosedFault& found, int net) {
    return std::any_of(found.one_of.begin(), found.one_of.end(), [net](const Fault& fault) {
        return std::find(fault.nets.begin(), fault.nets.end(), net) != fault.nets.end();
    });
}

}  // namespace

const std::string& FaultReport::NetName(int net) const {
    return test_.record.nets[static_cast<std::size_t>(net)].name;
}

// The pins of scan devices on a net that have cells.
std::vector<std::string> FaultReport::ScanPins(int net) const {
    const auto on_board = static_cast<std::size_t>(test_.net_of[static_cast<std::size_t>(net)]);
    std::vector<std::string> names;
    for (const int pin : board_.nets[on_board].pins) {
        const bscan::BoardPin& placed = board_.pins[static_cast<std::size_t>(pin)];
        const bscan::PinDriver* const driver = chain_.Driver(placed.element.device);
        if (driver == nullptr) continue;
        const bscan::PinCells cells = driver->Cells(placed.element.element);
        if (cells.output != nullptr || cells.receiver != nullptr) names.push_back(placed.Name());
    }
    return names;
}

Json FaultReport::FaultJson(const Fault& fault) const {
    Json nets = Json::array();
    std::vector<int> numbers = fault.nets;
    std::sort(numbers.begin(), numbers.end());
    for (const int net : numbers) nets.push_back(NetName(net));
    Json level;
    Json as;
    std::vector<std::string> pins = fault.pins;
    if (fault.kind == FaultKind::kStuck) {
        level = fault.level ? 1 : 0;
        pins = ScanPins(fault.nets.front());
    }
    if (fault.kind == FaultKind::kShort) {
        as = fault.winner == ShortWinner::kAnd  ? "and"
             : fault.winner == ShortWinner::kOr ? "or"
                                                : NetName(fault.nets.front());
    }
    return {{"kind", Word(fault.kind)},  {"nets", std::move(nets)}, {"pins", pins},
            {"level", std::move(level)}, {"as", std::move(as)},     {"one_of", Json()}};
}

Json FaultReport::ToJson() const {
    Json faults = Json::array();
    for (const bscan::DiagnosedFault& found : result_.faults) {
        Json fault = FaultJson(found.Likeliest());
        if (IsOneOf(found)) {
            Json all = Json::array();
            for (const Fault& one : found.one_of) all.push_back(FaultJson(one));
            fault["one_of"] = std::move(all);
        }
        faults.push_back(std::move(fault));
    }
    return {{"sound", result_.chain_ok && result_.faults.empty()},
            {"chain",
             {{"ok", result_.chain_ok},
              {"message", result_.chain_message.empty() ? Json() : Json(result_.chain_message)}}},
            {"faults", std::move(faults)}};
}

// Such as U2.B3 (D(3)).
std::string FaultReport::PinText(const std::string& name) const {
    for (std::size_t i = 0; i < test_.record.pins.size(); ++i) {
        if (test_.record.pins[i].name != name) continue;
        const auto pin = static_cast<std::size_t>(test_.pin_of[i]);
        const std::string label = chain_.Label(board_.pins[pin].element);
        const std::string port = label.substr(std::min(label.size(), label.find('.') + 1));
        return port.empty() ? name : fmt::format("{} ({})", name, port);
    }
    return name;
}

std::string FaultReport::FaultText(const Fault& fault) const {
    std::vector<std::string> nets;
    for (const int net : fault.nets) nets.push_back(NetName(net));
    std::vector<std::string> pins;
    for (const std::string& pin : fault.pins) pins.push_back(PinText(pin));
    switch (fault.kind) {
        case FaultKind::kOpen:
            return fmt::format("open {} {} on net {}", pins.size() > 1 ? "between" : "at",
                               Join(pins, " and "), Join(nets, ", "));
        case FaultKind::kStuck:
            for (const std::string& pin : ScanPins(fault.nets.front())) {
                pins.push_back(PinText(pin));
            }
            return fmt::format("net {} stuck at {}: {}", Join(nets, ", "), fault.level ? 1 : 0,
                               Join(pins, ", "));
        case FaultKind::kShort:
            break;
    }
    std::sort(nets.begin(), nets.end());
    return fmt::format("short between {}: {}", Join(nets, " and "),
                       fault.winner == ShortWinner::kAnd  ? "0 wins"
                       : fault.winner == ShortWinner::kOr ? "1 wins"
                                                          : NetName(fault.nets.front()) + " wins");
}

std::string FaultReport::ToText() const {
    if (!result_.chain_ok) return Printable(result_.chain_message) + "\n";
    std::string text;
    for (const bscan::DiagnosedFault& found : result_.faults) {
        text += Printable(FaultText(found.Likeliest())) + "\n";
        if (!IsOneOf(found)) continue;
        text += found.certain ? "  or one of these, which would look the same:\n"
                              : "  which does not explain everything; near it come:\n";
        for (std::size_t i = 1; i < found.one_of.size(); ++i) {
            text += "  - " + Printable(FaultText(found.one_of[i])) + "\n";
        }
    }
    const std::size_t nets = test_.record.nets.size();
    const std::size_t faults = result_.faults.size();
    return text + (faults == 0 ? fmt::format("sound: {} nets tested\n", nets)
                               : fmt::format("{} fault{}, {} nets tested\n", faults,
                                             faults == 1 ? "" : "s", nets));
}

std::string FaultReport::ToJunit() const {
    std::string cases;
    int failures = 0;
    int skipped = 0;
    for (std::size_t net = 0; net < board_.nets.size(); ++net) {
        cases +=
            fmt::format("  <testcase classname=\"board\" name=\"{}\">", Xml(board_.nets[net].name));
        const int tested = test_.tested_as[net];
        if (tested < 0) {
            ++skipped;
            cases += "<skipped/>";
        } else if (!result_.chain_ok) {
            cases += fmt::format("<error message=\"{}\"/>", Xml(result_.chain_message));
        }
        std::vector<std::string> texts;
        for (const bscan::DiagnosedFault& found : result_.faults) {
            if (tested < 0 || !Concerns(found, tested)) continue;
            for (const Fault& fault : found.one_of) texts.push_back(FaultText(fault));
        }
        if (!texts.empty()) {
            ++failures;
            cases += fmt::format("<failure message=\"{}\"/>", Xml(Join(texts, "; or ")));
        }
        cases += "</testcase>\n";
    }
    const std::size_t errors = result_.chain_ok ? 0 : test_.record.nets.size();
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuite name=\"board\" tests=\"{}\" failures=\"{}\" errors=\"{}\" skipped=\"{}\">\n"
        "{}</testsuite>\n",
        board_.nets.size(), failures, errors, skipped, cases);
}

}  // namespace tool
