// Pin maps: the package pins of each port.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bscan::detail {
namespace {

class PinMapReader {
public:
    PinMapReader(SourceReader& source, PinMap& map)
        : source_(source), reading_(source.reading), map_(map), list_(source) {}

    void Read();

private:
    void ReadPort(PinMapEntry& entry);
    void ReadPins(PinMapEntry& entry);
    void ReadPin(PinMapEntry& entry);
    bool ReadStrayPin();
    bool HasIndex() const;
    void ReadSlice(PinMapEntry& entry);
    void KeepSlice(const PinMapEntry& entry);
    void FindLonelyList(const PinMapEntry& entry);
    void SplitPins(PinMapEntry& entry);
    void Keep(PinMapEntry&& entry);

    struct CutPin {
        std::size_t place;
        ValueToken token;
    };

    SourceReader& source_;
    Reading& reading_;
    PinMap& map_;
    ListReader list_;
    NameSet entries_;
    std::vector<CutPin> cut_pins_;
    std::optional<IndexRange> slice_;  // the elements that the entry is for
    bool by_element_ = false;          // the map has an entry for one element
    bool lonely_list_ = false;         // the map has a list of one pin
    bool list_opened_ = true;          // the last entry had its `(`, or needed none
};

// "D(3) : A1" names one element, while "D (A1, A2)" lacks its colon.
bool PinMapReader::HasIndex() const {
    if (!list_.Current().Is('(') || !list_.Next().IsWord()) return false;
    ValueLexer ahead = list_.Ahead();
    ahead.Advance();
    ahead.Advance();
    if (ahead.Current().Is("to") || ahead.Current().Is("downto")) return true;
    return ahead.Current().Is(':') || (ahead.Current().Is(')') && ahead.Next().Is(':'));
}

void PinMapReader::ReadPort(PinMapEntry& entry) {
    entry.port.port = list_.TakeWord();
    if (!entry.port.port.Exists()) {
        reading_.found.Add(Rule::kNameMissing, list_.Current().word, "the entry names no port",
                           "write it before the `:`");
    }
    if (!HasIndex()) return;
    list_.Advance();
    entry.port.index = list_.TakeInteger();
    if (list_.Current().IsWord() && !list_.Current().Is(":")) return ReadSlice(entry);
    if (!list_.Accept(')')) list_.Expect(')', Rule::kParenthesisMissing);
    if (!entry.port.port.Exists() || std::exchange(by_element_, true)) return;
    reading_.found.Add(
        Rule::kPinMapByElement, entry.port.port,
        "the pins of " + Quoted(entry.port.port.text) + " are given element by element",
        "give them in one list");
}

// "D(7 downto 4) : (A1, A2, A3, A4)" stands for an entry for each element.
void PinMapReader::ReadSlice(PinMapEntry& entry) {
    const bool down = list_.Current().Is("downto");
    list_.Advance();
    const auto left = entry.port.index;
    const auto right = list_.TakeInteger();
    list_.Expect(')', Rule::kParenthesisMissing);
    reading_.found.Add(
        Rule::kPinMapByElement, entry.port.port,
        "the pins of " + Quoted(entry.port.port.text) + " are given for a part of its elements",
        "give them in one list");
    if (!left || !right || (down ? *left < *right : *left > *right)) return;
    slice_ = IndexRange{*left, *right};
}

// Gives each pin of a slice to its element.
void PinMapReader::KeepSlice(const PinMapEntry& entry) {
    const IndexRange range = *std::exchange(slice_, {});
    const int step = range.left <= range.right ? 1 : -1;
    int index = range.left;
    for (const Word& pin : entry.pins) {
        if (!range.Contains(index)) break;
        Keep({{entry.port.port, index}, {pin}});
        index += step;
    }
}

void PinMapReader::ReadPin(PinMapEntry& entry) {
    // A word before a colon is two: the comma between them is missing at the end of a line.
    if (list_.Next().Is(':')) list_.SplitCurrent();
    if (list_.Current().cut != 0) cut_pins_.push_back({entry.pins.size(), list_.Current()});
    const Word pin = list_.TakeWord();
    if (pin.Exists()) entry.pins.push_back(pin);
}

void PinMapReader::ReadPins(PinMapEntry& entry) {
    cut_pins_.clear();
    list_opened_ = list_.Current().Is('(') || list_.Current().Is('[');
    if (!list_opened_) return ReadPin(entry);
    list_.Open();
    do {
        ReadPin(entry);
    } while (list_.NextItem(":("));
    list_.Close();
    SplitPins(entry);
    FindLonelyList(entry);
}

// "A : (5)" for a single bit, told once.
void PinMapReader::FindLonelyList(const PinMapEntry& entry) {
    const int number = source_.ports.names.Find(entry.port.port.text);
    if (entry.pins.size() != 1 || number < 0) return;
    const Port& port = reading_.facts.ports[static_cast<std::size_t>(number)];
    if (port.range || port.type.text.size() > 3 || std::exchange(lonely_list_, true)) return;
    reading_.found.Add(Rule::kListOfOne, entry.pins.front(),
                       "the pin of " + Quoted(entry.port.port.text) + " stands in parentheses",
                       "write it without them");
}

// Where the comma between two pins is missing at the end of a line, they look like one that is cut.
// The number of the port's elements tells.
void PinMapReader::SplitPins(PinMapEntry& entry) {
    if (cut_pins_.empty() || entry.port.index) return;
    const int number = source_.ports.names.Find(entry.port.port.text);
    if (number < 0) return;
    const Port& port = reading_.facts.ports[static_cast<std::size_t>(number)];
    const auto count = static_cast<std::size_t>(port.range ? port.range->Count() : 1);
    if (entry.pins.size() + cut_pins_.size() != count) return;
    std::size_t added = 0;
    for (const CutPin& cut : cut_pins_) {
        Word& pin = entry.pins[cut.place + added];
        const std::string_view rest = pin.text.substr(cut.token.cut);
        const Piece& next = cut.token.piece[1];
        const Piece& piece = *cut.token.piece;
        pin.text = piece.text.substr(piece.text.size() - cut.token.cut);
        FindMissing(reading_, Rule::kCommaMissing, pin, ",");
        ++added;
        entry.pins.insert(entry.pins.begin() + static_cast<std::ptrdiff_t>(cut.place + added),
                          {rest, next.line, next.column});
    }
}

// A word with neither colon nor parenthesis behind it: a pin of the entry before, which lacks its
// parentheses.
bool PinMapReader::ReadStrayPin() {
    const ValueToken& next = list_.Next();
    const bool stray = list_.Current().IsWord() && (next.Is(',') || next.Is(')') || next.IsEnd());
    if (!stray || map_.entries.empty() || source_.ports.names.Contains(list_.Current().word.text)) {
        return false;
    }
    PinMapEntry& entry = map_.entries.back();
    if (!list_opened_ && !entry.pins.empty()) {
        const Word& first = entry.pins.front();
        reading_.found.Add(Rule::kParenthesisMissing, first,
                           "`(` is missing before " + Quoted(first.text),
                           "write the pins of " + Quoted(entry.port.port.text) + " in parentheses");
    }
    list_opened_ = true;
    entry.pins.push_back(list_.TakeWord());
    list_.Accept(')');
    return true;
}

void PinMapReader::Keep(PinMapEntry&& entry) {
    std::string name(entry.port.port.text);
    if (!entry.port.port.Exists()) {
        reading_.doubts.pin_maps = true;
        return;
    }
    if (entry.port.index) name += '(' + std::to_string(*entry.port.index) + ')';
    if (entries_.Add(name)) {
        map_.entries.push_back(std::move(entry));
        return;
    }
    const PinMapEntry& first = map_.entries[static_cast<std::size_t>(entries_.Find(name))];
    const bool same =
        std::equal(first.pins.begin(), first.pins.end(), entry.pins.begin(), entry.pins.end(),
                   [](const Word& a, const Word& b) { return EqualIgnoringCase(a.text, b.text); });
    reading_.found.Add(same ? Rule::kSaidTwice : Rule::kPinMapEntryTwice, entry.port.port,
                       "the map has pins for " + Quoted(name) + " already", "leave one out");
}

void PinMapReader::Read() {
    while (list_.NextEntry()) {
        if (ReadStrayPin()) {
            list_.EndEntry();
            continue;
        }
        PinMapEntry entry;
        ReadPort(entry);
        list_.Expect(':', Rule::kColonMissing);
        ReadPins(entry);
        if (entry.pins.empty() && entry.port.port.Exists()) {
            reading_.found.Add(Rule::kPinMissing, entry.port.port,
                               "the entry of " + Quoted(entry.port.port.text) + " has no pin");
        }
        if (slice_) {
            KeepSlice(entry);
        } else {
            Keep(std::move(entry));
        }
        list_.EndEntry();
    }
}

}  // namespace

void ReadPinMap(SourceReader& source, PinMap& map) { PinMapReader(source, map).Read(); }

}  // namespace bscan::detail
