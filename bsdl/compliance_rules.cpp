// Rules about ports that enable the test logic.

#include "bsdl/checks.h"

#include <string>

namespace bscan::detail {
namespace {

// All patterns being of another length, the list of ports is the one that is wrong.
void CheckPatternLengths(Checks& checks) {
    const Compliance& compliance = checks.facts.compliance;
    const std::size_t count = compliance.ports.size();
    const Word* wrong = nullptr;
    std::size_t wrong_count = 0;
    for (const Word& pattern : compliance.patterns) {
        if (pattern.text.size() == count) continue;
        if (wrong == nullptr) wrong = &pattern;
        ++wrong_count;
    }
    if (wrong == nullptr || count == 0) return;
    const bool all = wrong_count == compliance.patterns.size() && wrong_count > 1;
    const std::string message = "the pattern " + Quoted(*wrong) + " has " +
                                Counted(wrong->text.size(), "bit") + " for " +
                                Counted(count, "port");
    checks.found.Add(Rule::kCompliancePatternLength, all ? compliance.ports.front().port : *wrong,
                     message, "write one bit for each port");
}

}  // namespace

void CheckCompliance(Checks& checks) {
    const Compliance& compliance = checks.facts.compliance;
    for (const ElementName& element : compliance.ports) {
        const int number = checks.ports.ResolveElement(element, kComplianceSubject);
        if (number == PortReferences::kNone) continue;
        const Port& port = checks.ports.At(number);
        if (port.mode != PortMode::kOut && port.mode != PortMode::kBuffer) continue;
        checks.found.Add(
            Rule::kCompliancePortMode, element.port,
            Quoted(element) + " enables the test logic, but its mode is " + Quoted(port.mode_word));
    }
    if (checks.doubts.compliance) return;
    CheckPatternLengths(checks);
    for (const Word& pattern : compliance.patterns) {
        if (IsBits(pattern.text, true)) continue;
        checks.found.Add(
            Rule::kComplianceBits, pattern,
            "the pattern " + Quoted(pattern) + " has other characters than 0, 1 and X");
    }
}

}  // namespace bscan::detail
