#include "device_facts.h"

#include "device_tables.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <optional>

namespace tool {
namespace {

constexpr std::size_t kCodeLength = 32;

bool IsBit(char character) { return character == '0' || character == '1'; }

bool AllKnown(std::string_view bits) { return std::all_of(bits.begin(), bits.end(), IsBit); }

bool NoneKnown(std::string_view bits) { return std::none_of(bits.begin(), bits.end(), IsBit); }

unsigned long ValueOf(std::string_view bits) {
    unsigned long value = 0;
    for (const char bit : bits) value = value * 2 + (bit == '1' ? 1 : 0);
    return value;
}

// The hexadecimal digits of bits; nothing when four bits are known in part.
std::optional<std::string> HexDigits(std::string_view bits) {
    std::string digits;
    for (std::size_t i = 0; i < bits.size(); i += 4) {
        const std::string_view four = bits.substr(i, 4);
        if (!AllKnown(four) && !NoneKnown(four)) return std::nullopt;
        digits += AllKnown(four) ? fmt::format("{:X}", ValueOf(four)) : "X";
    }
    return digits;
}

std::string FieldText(std::string_view bits) {
    if (NoneKnown(bits)) return "any";
    if (!AllKnown(bits)) return fmt::format("0b{}", bits);
    return fmt::format("0x{:0{}X}", ValueOf(bits), (bits.size() + 3) / 4);
}

// The parts of an IDCODE, as 1149.1 lays them out.
struct IdcodeFields {
    std::string_view version, part, manufacturer;
};

IdcodeFields FieldsOf(std::string_view bits) {
    return {bits.substr(0, 4), bits.substr(4, 16), bits.substr(20, 11)};
}

std::string IdcodeText(std::string_view bits) {
    if (bits.size() != kCodeLength) return CodeText(bits);
    const IdcodeFields fields = FieldsOf(bits);
    return fmt::format("{}: version {}, part {}, manufacturer {}", CodeText(bits),
                       FieldText(fields.version), FieldText(fields.part),
                       FieldText(fields.manufacturer));
}

Json FieldJson(std::string_view bits) { return AllKnown(bits) ? Json(ValueOf(bits)) : Json(); }

Json CodeJson(std::string_view bits) {
    const bool whole = bits.size() == kCodeLength;
    const std::optional<std::string> digits = whole ? HexDigits(bits) : std::nullopt;
    return {{"bits", std::string(bits)}, {"hex", digits ? Json("0x" + *digits) : Json()}};
}

Json IdcodeJson(std::string_view bits) {
    Json code = CodeJson(bits);
    const bool whole = bits.size() == kCodeLength;
    const IdcodeFields fields = whole ? FieldsOf(bits) : IdcodeFields();
    code["version"] = whole ? FieldJson(fields.version) : Json();
    code["part"] = whole ? FieldJson(fields.part) : Json();
    code["manufacturer"] = whole ? FieldJson(fields.manufacturer) : Json();
    return code;
}

template <typename ToValue>
Json ListOf(const std::vector<bscan::Word>& words, ToValue to_value) {
    Json list = Json::array();
    for (const bscan::Word& word : words) list.push_back(to_value(word.text));
    return list;
}

std::string NameText(const bscan::ElementName& name) {
    return name.index ? fmt::format("{}({})", name.port.text, *name.index)
                      : std::string(name.port.text);
}

std::string PinOf(const Device& device, const bscan::ElementName& name) {
    const Element* element = device.Find(name);
    return element == nullptr ? std::string() : element->pin;
}

// A port and its package pin: NRST (pin 7).
std::string PortText(const Device& device, const bscan::ElementName& name) {
    const std::string pin = PinOf(device, name);
    return pin.empty() ? NameText(name) : fmt::format("{} (pin {})", NameText(name), pin);
}

Json PortJson(const Device& device, const bscan::ElementName& name) {
    if (!name.port.Exists()) return {};
    return {{"port", NameText(name)}, {"pin", TextOrNull(PinOf(device, name))}};
}

struct TapSignal {
    const char* key;
    const char* name;
    const bscan::ElementName& port;
};

std::vector<TapSignal> TapSignals(const bscan::TapSignals& tap) {
    return {{"tdi", "TDI", tap.tdi},
            {"tdo", "TDO", tap.tdo},
            {"tms", "TMS", tap.tms},
            {"tck", "TCK", tap.tck},
            {"trst", "TRST", tap.trst}};
}

std::string TapText(const Device& device) {
    std::vector<std::string> parts;
    for (const TapSignal& signal : TapSignals(device.facts().tap)) {
        if (!signal.port.port.Exists()) continue;
        const std::string port = PortText(device, signal.port);
        const bool same = NameText(signal.port) == signal.name;
        parts.push_back(same ? port : fmt::format("{} is {}", signal.name, port));
    }
    return fmt::format("{}", fmt::join(parts, ", "));
}

const char* StopWord(bscan::ClockStop stop) {
    if (stop == bscan::ClockStop::kUnknown) return nullptr;
    return stop == bscan::ClockStop::kBoth ? "both" : "low";
}

std::string FrequencyText(double hertz) {
    if (hertz >= 1e6) return fmt::format("{:g} MHz", hertz / 1e6);
    return hertz >= 1e3 ? fmt::format("{:g} kHz", hertz / 1e3) : fmt::format("{:g} Hz", hertz);
}

std::string ClockText(const bscan::TapSignals& tap) {
    std::vector<std::string> parts;
    if (tap.max_frequency > 0) parts.push_back("at most " + FrequencyText(tap.max_frequency));
    if (tap.clock_stop == bscan::ClockStop::kLow) parts.emplace_back("may stop at 0 alone");
    if (tap.clock_stop == bscan::ClockStop::kBoth) parts.emplace_back("may stop at 0 and at 1");
    return fmt::format("{}", fmt::join(parts, ", "));
}

std::string PatternText(const Device& device, std::string_view pattern) {
    const std::vector<bscan::ElementName>& ports = device.facts().compliance.ports;
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < std::min(ports.size(), pattern.size()); ++i) {
        if (!IsBit(pattern[i])) continue;
        parts.push_back(fmt::format("{} must be {}", PortText(device, ports[i]), pattern[i]));
    }
    return fmt::format("{}", fmt::join(parts, ", "));
}

Json ComplianceJson(const Device& device) {
    const bscan::Compliance& compliance = device.facts().compliance;
    if (compliance.ports.empty()) return {};
    Json ports = Json::array();
    for (const bscan::ElementName& port : compliance.ports) {
        ports.push_back(PortJson(device, port));
    }
    return {{"ports", ports},
            {"patterns", ListOf(compliance.patterns, [](auto text) { return std::string(text); })},
            {"text", ComplianceText(device)}};
}

Json TapJson(const Device& device) {
    const bscan::TapSignals& tap = device.facts().tap;
    Json json = Json::object();
    for (const TapSignal& signal : TapSignals(tap)) {
        json[signal.key] = PortJson(device, signal.port);
    }
    const char* const stop = StopWord(tap.clock_stop);
    json["max_frequency"] = tap.max_frequency > 0 ? Json(tap.max_frequency) : Json();
    json["clock_stop"] = stop == nullptr ? Json() : Json(stop);
    return json;
}

Json PackageNames(const bscan::Facts& facts) {
    Json names = Json::array();
    for (const bscan::PinMap& map : facts.pin_maps) names.push_back(std::string(map.name.text));
    return names;
}

std::string NameList(const std::vector<bscan::Word>& words) {
    std::string names;
    for (const bscan::Word& word : words) {
        if (!names.empty()) names += ", ";
        names += word.text;
    }
    return names;
}

Json WordOrNull(const bscan::Word& word) { return TextOrNull(OneLine(word.text)); }

Json ListOrNull(const Json& list) { return list.empty() ? Json() : list; }

}  // namespace

std::string OneLine(std::string_view text) {
    std::string line;
    for (const char character : text) {
        const bool blank = std::isspace(static_cast<unsigned char>(character)) != 0;
        if (blank && (line.empty() || line.back() == ' ')) continue;
        line += blank ? ' ' : character;
    }
    if (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
}

std::string CodeText(std::string_view bits) {
    const std::optional<std::string> digits =
        bits.size() == kCodeLength ? HexDigits(bits) : std::nullopt;
    return digits ? "0x" + *digits : fmt::format("0b{}", bits);
}

std::string ComplianceText(const Device& device) {
    const std::vector<bscan::Word>& patterns = device.facts().compliance.patterns;
    std::vector<std::string> parts;
    parts.reserve(patterns.size());
    for (const bscan::Word& pattern : patterns) parts.push_back(PatternText(device, pattern.text));
    std::erase(parts, "");
    return fmt::format("{}{}", parts.size() > 1 ? "either " : "", fmt::join(parts, "; or "));
}

std::string DesignWarning(const Device& device) {
    return OneLine(device.facts().design_warning.text);
}

std::vector<Fact> TestFacts(const Device& device) {
    const bscan::Facts& facts = device.facts();
    if (device.description() == nullptr) return {};
    return {
        {"packages", "Packages", ListOrNull(PackageNames(facts))},
        {"conformance", "Conformance", WordOrNull(facts.conformance)},
        {"idcode", "IDCODE", ListOrNull(ListOf(facts.idcodes, IdcodeText))},
        {"usercode", "USERCODE", ListOrNull(ListOf(facts.usercodes, CodeText))},
        {"tap", "TAP", TextOrNull(TapText(device))},
        {"clock", "Clock", TextOrNull(ClockText(facts.tap))},
        {"compliance", "Compliance", TextOrNull(ComplianceText(device))},
        {"private instructions", "Private", TextOrNull(NameList(facts.private_instructions))},
        {"runbist", "RUNBIST", WordOrNull(facts.runbist)},
        {"intest", "INTEST", WordOrNull(facts.intest)},
        {"design warning", "Design warning", TextOrNull(DesignWarning(device))},
    };
}

Json TestFactsJson(const Device& device) {
    if (device.description() == nullptr) return Json::object();
    const bscan::Facts& facts = device.facts();
    const auto plain = [](std::string_view text) { return std::string(text); };
    return {{"packages", PackageNames(facts)},
            {"conformance", WordOrNull(facts.conformance)},
            {"idcodes", ListOf(facts.idcodes, IdcodeJson)},
            {"usercodes", ListOf(facts.usercodes, CodeJson)},
            {"tap", TapJson(device)},
            {"compliance", ComplianceJson(device)},
            {"private_instructions", ListOf(facts.private_instructions, plain)},
            {"runbist", WordOrNull(facts.runbist)},
            {"intest", WordOrNull(facts.intest)},
            {"design_warning", TextOrNull(DesignWarning(device))}};
}

Table AttributeTable(const Device& device) {
    Table table{{{"name", "Attribute"}, {"of", "Of"}, {"kind", "Kind"}, {"value", "Value"}}, {}};
    const auto text = [](std::string_view view) { return TextOrNull(OneLine(view)); };
    for (const bscan::OtherStatement& other : device.facts().others) {
        table.rows.push_back({text(other.name.text), text(other.target.text),
                              other.is_constant ? Json("constant") : text(other.target_class.text),
                              text(other.value)});
    }
    return table;
}

}  // namespace tool
