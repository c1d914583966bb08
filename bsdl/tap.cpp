// The test access port and the compliance patterns.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"
#include "bsdl/number.h"
#include "bsdl/spelling.h"

namespace bscan::detail {
namespace {

struct TapRow {
    std::string_view attribute;
    ElementName TapSignals::*signal;
};

constexpr TapRow kSignals[] = {
    {"TAP_SCAN_IN", &TapSignals::tdi},
    {"TAP_SCAN_OUT", &TapSignals::tdo},
    {"TAP_SCAN_MODE", &TapSignals::tms},
    {"TAP_SCAN_RESET", &TapSignals::trst},
};

struct ClockStopRow {
    std::string_view word;
    ClockStop meaning;
};

constexpr ClockStopRow kClockStops[] = {{"LOW", ClockStop::kLow}, {"BOTH", ClockStop::kBoth}};

void FindUnexpected(Reading& reading, const Word& word, std::string_view meant) {
    reading.found.Add(Rule::kValueUnexpected, word,
                      Quoted(word.text) + " stands where " + std::string(meant) + " belongs",
                      "write " + std::string(meant));
}

ClockStop TakeClockStop(ListReader& list, Word& word) {
    const Token stop = list.Current();
    word = stop.word;
    list.Advance();
    for (const ClockStopRow& row : kClockStops) {
        if (stop.Is(row.word)) return row.meaning;
        if (!IsMisspelt(stop.word.text, row.word)) continue;
        FindMisspelt(list.GetReading(), stop.word, row.word);
        return row.meaning;
    }
    FindUnexpected(list.GetReading(), stop.word, "`BOTH` or `LOW`");
    return ClockStop::kUnknown;
}

void TakeFrequency(ListReader& list, TapSignals& tap) {
    tap.frequency_word = list.TakeWord();
    if (!tap.frequency_word.Exists()) return;
    // "10.0 e6"
    const Token& next = list.Current();
    if (next.IsWord() && ToLower(next.word.text[0]) == 'e') {
        Reading& reading = list.GetReading();
        const std::string whole = std::string(tap.frequency_word.text).append(next.word.text);
        reading.found.Add(Rule::kBlankInBits, Behind(tap.frequency_word),
                          "there is a blank within the number " + Quoted(whole), "leave it out");
        tap.frequency_word.text = reading.joined.emplace_back(whole);
        list.Advance();
    }
    const auto frequency = ParseReal(tap.frequency_word.text);
    tap.max_frequency = frequency.value_or(0);
    if (frequency) return;
    list.GetReading().found.Add(Rule::kNumberMalformed, tap.frequency_word,
                                Quoted(tap.frequency_word.text) + " is no frequency",
                                "write it in hertz, such as `10.0e6`");
}

}  // namespace

void ReadTapSignal(SourceReader& source, const Attribute& attribute) {
    for (const TapRow& row : kSignals) {
        if (row.attribute != attribute.standard_name) continue;
        source.reading.facts.tap.*row.signal = attribute.target;
    }
    ListReader list(source);
    if (!list.Current().Is("true")) {
        FindUnexpected(source.reading, list.Current().word, "`true`");
    }
    list.Advance();
    list.ExpectEnd();
}

// "(20.0e6, BOTH)"
void ReadTapClock(SourceReader& source, const Attribute& attribute) {
    TapSignals& tap = source.reading.facts.tap;
    tap.tck = attribute.target;
    ListReader list(source);
    list.Open();
    TakeFrequency(list, tap);
    if (list.NextItem("")) tap.clock_stop = TakeClockStop(list, tap.clock_stop_word);
    list.NextItem("");
    list.Close();
    list.ExpectEnd();
}

namespace {

// "A (1)" at the end of "(A (1)" is no element: the ports lack their `)`.
bool IsPatternNext(const ListReader& list) {
    if (!list.Current().IsWord() || !list.Next().Is('(')) return false;
    ValueLexer ahead = list.Ahead();
    for (int i = 0; i < 3; ++i) ahead.Advance();
    return ahead.Current().Is(',') || (ahead.Current().Is(')') && ahead.Next().IsEnd());
}

ElementName TakePort(ListReader& list) {
    return IsPatternNext(list) ? ElementName{list.TakeWord(), {}} : list.TakeElement();
}

}  // namespace

// "(A, B) (01, 1X)"
void ReadCompliancePatterns(SourceReader& source, const Attribute& attribute) {
    Compliance& compliance = source.reading.facts.compliance;
    compliance.attribute = attribute.name;
    ListReader list(source);
    list.Open();
    do {
        const ElementName port = TakePort(list);
        if (port.port.Exists()) compliance.ports.push_back(port);
    } while (!list.Current().Is('(') && list.NextItem(""));
    list.Close();
    if (list.Current().Is(')')) {
        FindSurplus(source.reading, Rule::kParenthesisSurplus, list.Current().word);
        list.Advance();
    }
    if (list.AtEnd()) {
        FindValueMissing(source.reading, list.Last());
        return;
    }
    list.Open();
    do {
        const Word pattern = list.TakeBits();
        if (pattern.Exists()) compliance.patterns.push_back(pattern);
    } while (list.NextItem(""));
    list.Close();
    list.ExpectEnd();
}

}  // namespace bscan::detail
