#include "bsdl/checks.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

// The edition that a name such as STD_1149_1_2001 tells; false when it tells none.
bool EditionIn(std::string_view name, Edition& edition) {
    constexpr std::string_view kStandard = "STD_1149_1_";
    if (!EqualIgnoringCase(name.substr(0, kStandard.size()), kStandard)) return false;
    const int year = DecimalValue(name.substr(kStandard.size()));
    edition = year < 1993   ? Edition::k1990
              : year < 2001 ? Edition::k1993
              : year < 2013 ? Edition::k2001
                            : Edition::k2013;
    return true;
}

}  // namespace

Edition EditionOf(const Facts& facts) {
    Edition edition = Edition::k1990;
    if (EditionIn(Trim(facts.conformance.text), edition)) return edition;
    for (const Word& use : facts.use_clauses) {
        if (EditionIn(use.text, edition)) return edition;
    }
    return edition;
}

Checks::Checks(Reading& reading)
    : facts(reading.facts),
      doubts(reading.doubts),
      found(reading.found),
      edition(EditionOf(reading.facts)),
      ports(reading),
      instruction_length(reading.facts.instruction_length),
      boundary_length(reading.facts.boundary_length) {
    for (const Instruction& instruction : facts.instructions) {
        instructions.Add(instruction.name.text);
    }
}

std::string Quoted(const ElementName& element) {
    std::string text(element.port.text);
    if (element.index) text += "(" + std::to_string(*element.index) + ")";
    return Quoted(text);
}

std::string Counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

bool IsBits(std::string_view text, bool may_have_x) {
    return text.find_first_not_of(may_have_x ? "01xX" : "01") == std::string_view::npos;
}

}  // namespace bscan::detail
