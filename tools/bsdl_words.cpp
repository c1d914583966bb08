#include "bsdl_words.h"

#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace tool {
namespace {

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return upper;
}

template <typename Words>
bool IsOneOf(const std::string& word, const Words& words) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

struct ModeRow {
    bscan::PortMode mode;
    const char* word;
};

constexpr ModeRow kModes[] = {
    {bscan::PortMode::kIn, "in"},
    {bscan::PortMode::kOut, "out"},
    {bscan::PortMode::kInout, "inout"},
    {bscan::PortMode::kBuffer, "buffer"},
    {bscan::PortMode::kLinkage, "linkage"},
    {bscan::PortMode::kLinkageIn, "linkage_in"},
    {bscan::PortMode::kLinkageOut, "linkage_out"},
    {bscan::PortMode::kLinkageInout, "linkage_inout"},
    {bscan::PortMode::kLinkageBuffer, "linkage_buffer"},
    {bscan::PortMode::kLinkageMechanical, "linkage_mechanical"},
    {bscan::PortMode::kPowerPositive, "power_pos"},
    {bscan::PortMode::kPowerGround, "power_0"},
    {bscan::PortMode::kPowerNegative, "power_neg"},
    {bscan::PortMode::kReferenceIn, "vref_in"},
    {bscan::PortMode::kReferenceOut, "vref_out"},
};

std::string ModeText(const bscan::Port& port) {
    const auto* const row = std::find_if(std::begin(kModes), std::end(kModes),
                                         [&](const ModeRow& r) { return r.mode == port.mode; });
    return row == std::end(kModes) ? std::string(port.mode_word.text) : row->word;
}

std::string RangeText(const bscan::IndexRange& range) {
    return fmt::format("({} {} {})", range.left, range.left > range.right ? "downto" : "to",
                       range.right);
}

// The parts that are not empty with a blank between them.
std::string Joined(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty()) text += (text.empty() ? "" : " ") + part;
    }
    return text;
}

}  // namespace

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return lower;
}

std::string CollapseBlanks(std::string_view text) {
    std::string collapsed;
    for (const char c : text) {
        if (c != ' ' || (!collapsed.empty() && collapsed.back() != ' ')) collapsed += c;
    }
    return collapsed;
}

std::string NumberText(int number, const bscan::Word& word) {
    return number > 0 ? std::to_string(number) : std::string(word.text);
}

std::string KeywordText(std::string_view word) {
    constexpr std::string_view kKeywords[] = {"bit",    "bit_vector", "entity",
                                              "signal", "component",  "constant"};
    const std::string lower = LowerCase(word);
    return IsOneOf(lower, kKeywords) ? lower : std::string(word);
}

bool IsEntity(std::string_view target_class) {
    return target_class.empty() || LowerCase(target_class) == "entity";
}

std::string PortTypeText(const bscan::Port& port) {
    return Joined({ModeText(port), KeywordText(port.type.text),
                   port.range ? RangeText(*port.range) : std::string()});
}

std::string StandardName(std::string_view name) {
    name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    const std::string upper = UpperCase(name);
    return upper.rfind("STD_1149_", 0) == 0 || upper.rfind("STD_1532_", 0) == 0 ? upper
                                                                                : std::string(name);
}

std::string UseClauseText(std::string_view clause) {
    const std::size_t dot = std::min(clause.find('.'), clause.size());
    const std::string rest = LowerCase(clause.substr(dot));
    const bool all = rest.empty() || rest == "." || rest == ".all";
    return StandardName(clause.substr(0, dot)) + (all ? ".all" : std::string(clause.substr(dot)));
}

std::string FrequencyText(const bscan::TapSignals& tap) {
    if (tap.max_frequency <= 0) return std::string(tap.frequency_word.text);
    std::string megahertz = fmt::format("{}", tap.max_frequency / 1e6);
    if (megahertz.find_first_of(".e") == std::string::npos) megahertz += ".0";
    std::string text = megahertz + "e6";
    const bool plain = megahertz.find('e') == std::string::npos;
    if (plain && std::strtod(text.c_str(), nullptr) == tap.max_frequency) return text;
    text = fmt::format("{}", tap.max_frequency);
    const std::size_t exponent = std::min(text.find('e'), text.size());
    if (text.find('.') == std::string::npos) text.insert(exponent, ".0");
    return text;
}

std::string ClockStopText(const bscan::TapSignals& tap) {
    switch (tap.clock_stop) {
        case bscan::ClockStop::kLow:
            return "LOW";
        case bscan::ClockStop::kBoth:
            return "BOTH";
        case bscan::ClockStop::kUnknown:
            break;
    }
    return std::string(tap.clock_stop_word.text);
}

std::string RegisterName(const bscan::RegisterAccess& access) {
    const std::string name(access.name.text);
    if (access.length) return fmt::format("{}[{}]", name, *access.length);
    return access.length_word.Exists() ? fmt::format("{}[{}]", name, access.length_word.text)
                                       : name;
}

std::string RegisterInstructionText(const bscan::RegisterInstruction& instruction) {
    return Joined(
        {std::string(instruction.name.text), instruction.captures.Exists() ? "CAPTURES" : "",
         std::string(instruction.captures.text), instruction.domain.Exists() ? "DOMAIN" : "",
         std::string(instruction.domain.text)});
}

std::string FunctionText(const bscan::Cell& cell) {
    return std::string(cell.function == FUNCTION_NONE ? cell.function_word.text
                                                      : Word(cell.function));
}

std::string LevelText(const bscan::Word& word) {
    constexpr std::string_view kLevels[] = {"X", "Z", "WEAK0", "WEAK1", "PULL0", "PULL1", "KEEPER"};
    const std::string upper = UpperCase(word.text);
    return IsOneOf(upper, kLevels) ? upper : std::string(word.text);
}

}  // namespace tool
