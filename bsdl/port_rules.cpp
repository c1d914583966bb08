// Rules about the declarations of ports.

#include "bsdl/checks.h"
#include "bsdl/nearest_name.h"
#include "support/text_view.h"

namespace bscan::detail {
namespace {

constexpr std::string_view kModes[] = {"in", "out", "inout", "buffer", "linkage"};

void CheckMode(Checks& checks, const Port& port) {
    if (port.mode != PortMode::kUnknown || !port.mode_word.Exists()) return;
    NearestName nearest(port.mode_word.text);
    for (const std::string_view mode : kModes) nearest.Try(mode);
    checks.found.Add(
        Rule::kModeUnknown, port.mode_word,
        "the mode " + Quoted(port.mode_word) + " of " + Quoted(port.name) + " is unknown",
        nearest.Result().empty() ? "write `in`, `out`, `inout`, `buffer` or `linkage`"
                                 : "write " + Quoted(nearest.Result()));
}

void CheckType(Checks& checks, const Port& port) {
    const bool bit = EqualIgnoringCase(port.type.text, "bit");
    if (!port.type.Exists() || bit || EqualIgnoringCase(port.type.text, "bit_vector")) return;
    checks.found.Add(Rule::kTypeUnknown, port.type,
                     "the type " + Quoted(port.type) + " of " + Quoted(port.name) + " is unknown",
                     port.range ? "write `bit_vector`" : "write `bit`");
}

}  // namespace

bool IsSingleBit(const Port& port) {
    return !port.range && EqualIgnoringCase(port.type.text, "bit");
}

void CheckPorts(Checks& checks) {
    const Word* told_mode = nullptr;  // that of a list of ports, which have one word together
    for (const Port& port : checks.facts.ports) {
        if (told_mode != nullptr && told_mode->text.data() == port.mode_word.text.data()) continue;
        told_mode = &port.mode_word;
        CheckMode(checks, port);
        CheckType(checks, port);
    }
}

}  // namespace bscan::detail
