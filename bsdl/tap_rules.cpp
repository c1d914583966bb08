// Rules about the test access port.

#include "bsdl/checks.h"
#include "bsdl/number.h"
#include "support/text_view.h"

#include <algorithm>
#include <string>

namespace bscan::detail {
namespace {

struct TapRow {
    ElementName TapSignals::*signal;
    const char* name;       // of the signal
    const char* attribute;  // that names its port
    PortMode mode;
    const char* mode_name;
};

constexpr TapRow kTap[] = {
    {&TapSignals::tdi, "TDI", "TAP_SCAN_IN", PortMode::kIn, "in"},
    {&TapSignals::tdo, "TDO", "TAP_SCAN_OUT", PortMode::kOut, "out"},
    {&TapSignals::tms, "TMS", "TAP_SCAN_MODE", PortMode::kIn, "in"},
    {&TapSignals::tck, "TCK", "TAP_SCAN_CLOCK", PortMode::kIn, "in"},
    {&TapSignals::trst, "TRST", "TAP_SCAN_RESET", PortMode::kIn, "in"},
};

bool IsNamedSo(const Port& port, const TapRow& row) {
    std::string name(port.name.text);
    UpperCase(name);
    return Contains(name, row.name);
}

// Whether a port can do what its signal does, and more.
bool IsWider(PortMode mode, PortMode wanted) {
    return mode == PortMode::kInout || (wanted == PortMode::kOut && mode == PortMode::kBuffer);
}

// Whether the mode was found wrong before, for another port of the same list.
bool IsModeTold(const Checks& checks, const TapRow& row, const Word& mode) {
    return std::any_of(checks.tap_ports.begin(), checks.tap_ports.end(), [&](const TapPort& other) {
        const Word& word = checks.ports.At(other.port).mode_word;
        return other.named_so && other.mode == row.mode && word.text.data() == mode.text.data();
    });
}

// Either the port or the attribute is wrong: a port that is called like the signal has the wrong
// mode; otherwise the attribute names the wrong port.
void CheckMode(Checks& checks, const TapRow& row, TapPort& tap) {
    const Port& port = checks.ports.At(tap.port);
    if (port.mode == row.mode || port.mode == PortMode::kUnknown) return;
    const std::string message = Quoted(*tap.signal) + " is " + row.name + " by " + row.attribute +
                                ", but its mode is " + Quoted(port.mode_word);
    const Rule rule = IsWider(port.mode, row.mode) ? Rule::kTapPortWide : Rule::kTapPortMode;
    if (tap.named_so) {
        if (IsModeTold(checks, row, port.mode_word)) return;
        checks.found.Add(rule, port.mode_word, message,
                         std::string("write `") + row.mode_name + "`");
    } else {
        tap.told = true;
        checks.found.Add(rule, tap.signal->port, message,
                         std::string("name a port of mode `") + row.mode_name + "`");
    }
}

void ReportMissing(Checks& checks, const TapRow& row) {
    const bool optional = row.signal == &TapSignals::trst;
    if (optional || checks.doubts.tap || checks.doubts.statements) return;
    checks.found.Add(
        Rule::kTapSignalMissing, checks.facts.entity,
        std::string("no attribute ") + row.attribute + " tells which port is " + row.name,
        std::string("write `attribute ") + row.attribute + " of PORT : signal is " +
            (row.signal == &TapSignals::tck ? "(10.0e6, BOTH)" : "true") + ";`");
}

void CheckSignal(Checks& checks, const TapRow& row) {
    const ElementName& signal = checks.facts.tap.*row.signal;
    if (!signal.port.Exists()) {
        ReportMissing(checks, row);
        return;
    }
    const int number = checks.ports.ResolveElement(signal, kTapSubject);
    if (number == PortReferences::kNone) return;
    TapPort tap{number, row.name, row.mode, &signal, IsNamedSo(checks.ports.At(number), row),
                false};
    CheckMode(checks, row, tap);
    checks.tap_ports.push_back(tap);
}

// Two signals of one port: the one that it is not called like is wrong.
void CheckShared(Checks& checks) {
    for (TapPort& one : checks.tap_ports) {
        for (TapPort& other : checks.tap_ports) {
            if (&one >= &other || one.port != other.port) continue;
            if (one.signal->index != other.signal->index || one.told || other.told) continue;
            TapPort& wrong = one.named_so ? other : one;
            wrong.told = true;
            checks.found.Add(
                Rule::kTapPortShared, wrong.signal->port,
                Quoted(*wrong.signal) + " cannot be both " + one.name + " and " + other.name);
        }
    }
}

void CheckFrequency(Checks& checks) {
    const TapSignals& tap = checks.facts.tap;
    if (!tap.tck.port.Exists() || tap.max_frequency > 0 || checks.doubts.tap) return;
    const bool is_told = tap.frequency_word.Exists();
    if (is_told && !ParseReal(tap.frequency_word.text)) return;  // the reader has told
    checks.found.Add(Rule::kTapFrequency, is_told ? tap.frequency_word : tap.tck.port,
                     "the greatest frequency of " + Quoted(tap.tck) +
                         (is_told ? " is " + Quoted(tap.frequency_word) + " Hz" : " is missing"),
                     "write it in hertz, such as `10.0e6`");
}

}  // namespace

void CheckTap(Checks& checks) {
    for (const TapRow& row : kTap) CheckSignal(checks, row);
    CheckShared(checks);
    CheckFrequency(checks);
}

}  // namespace bscan::detail
