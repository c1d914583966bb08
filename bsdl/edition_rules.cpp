// Rules about the edition of the standard that a file follows.

#include "bsdl/checks.h"
#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

bool IsStandard(std::string_view text) {
    constexpr std::string_view kPrefix = "STD_1149_1_";
    return EqualIgnoringCase(text.substr(0, kPrefix.size()), kPrefix);
}

void CheckConformance(Checks& checks) {
    const Word& conformance = checks.facts.conformance;
    if (!conformance.Exists()) {
        // The edition of 1990 did not have the attribute.
        if (checks.edition == Edition::k1990 || checks.doubts.statements) return;
        checks.found.Add(Rule::kConformanceMissing, checks.facts.entity,
                         "the file has no COMPONENT_CONFORMANCE",
                         "name the edition that the device follows, such as `STD_1149_1_2001`");
        return;
    }
    constexpr std::string_view kEditions[] = {"STD_1149_1_1990", "STD_1149_1_1993",
                                              "STD_1149_1_2001", "STD_1149_1_2013"};
    const bool known = std::any_of(std::begin(kEditions), std::end(kEditions), [&](auto name) {
        return EqualIgnoringCase(Trim(conformance.text), name);
    });
    if (known) return;
    checks.found.Add(Rule::kConformanceUnknown, conformance,
                     Quoted(conformance) + " is no edition of the standard",
                     "write `STD_1149_1_1990`, `STD_1149_1_1993`, `STD_1149_1_2001` or "
                     "`STD_1149_1_2013`");
}

}  // namespace

void CheckEdition(Checks& checks) {
    CheckConformance(checks);
    const std::vector<Word>& uses = checks.facts.use_clauses;
    if (checks.doubts.statements) return;
    if (std::any_of(uses.begin(), uses.end(),
                    [](const Word& use) { return IsStandard(use.text); })) {
        return;
    }
    if (uses.empty()) {
        checks.found.Add(Rule::kUseMissing, checks.facts.entity,
                         "the file has no use clause for the standard's package",
                         "write `use STD_1149_1_2001.all;` behind the port clause");
    } else {
        checks.found.Add(Rule::kUseMissing, uses.front(),
                         Quoted(uses.front()) +
                             " is no package of the standard, and no other use "
                             "clause names one",
                         "write `use STD_1149_1_2001.all;` before it");
    }
}

}  // namespace bscan::detail
