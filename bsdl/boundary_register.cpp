// The boundary register: its length and its cells.

#include <bscan/limits.h>

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"
#include "bsdl/number.h"
#include "support/keyword.h"

#include <algorithm>

namespace bscan::detail {
namespace {

constexpr Keyword<CellFunction> kFunctions[] = {
    {"input", INPUT},
    {"output3", OUTPUT3},
    {"output2", OUTPUT2},
    {"bidir", BIDIR},
    {"control", CONTROL},
    {"controlr", CONTROLR},
    {"internal", INTERNAL},
    {"clock", CLOCK},
    {"bidir_in", BIDIR_IN},
    {"bidir_out", BIDIR_OUT},
    {"observe_only", OBSERVE_ONLY},
};

constexpr Keyword<eSignal> kLevels[] = {{"x", SIG_X}, {"0", SIG_0}, {"1", SIG_1}};

// The model has no word for a keeper, which holds the last level.
constexpr Keyword<eSignal> kResults[] = {
    {"z", SIG_Z},         {"weak0", SIG_WEAK0}, {"weak1", SIG_WEAK1},
    {"pull0", SIG_PULL0}, {"pull1", SIG_PULL1}, {"keeper", SIG_Z},
};

// The fields of an entry, by their place.
enum Field : int { kType, kPort, kFunction, kSafe, kControl, kDisableValue, kDisableResult };

class RegisterReader {
public:
    explicit RegisterReader(SourceReader& source)
        : source_(source), cells_(source.reading.facts.cells), list_(source) {}

    void Reserve(const Value& value);
    void Read();

private:
    void ReadNumber(Cell& cell);
    void ReadFields(Cell& cell);
    void ReadField(Cell& cell);
    void ReadPort(Cell& cell);
    void JoinPort(ElementName& element);
    bool LacksPort() const;
    void TakeLackingPort(Cell& cell);
    bool NextField(const Cell& cell);
    void TakeRemark();

    SourceReader& source_;
    std::vector<Cell>& cells_;
    ListReader list_;
};

// The length mostly stands before the register. Otherwise entries mostly have a line each. Short
// pieces do not make the cells cost more than their text.
void RegisterReader::Reserve(const Value& value) {
    constexpr std::size_t kShortEntry = 16;
    constexpr std::size_t kUsualEntry = 32;
    std::size_t size = 0;
    for (const Piece& piece : value.pieces) size += piece.text.size();
    const int length = list_.GetReading().facts.boundary_length;
    cells_.reserve(length > 0 ? std::min(static_cast<std::size_t>(length), size / kShortEntry + 1)
                              : std::min(value.pieces.size(), size / kUsualEntry + 1));
}

void RegisterReader::ReadNumber(Cell& cell) {
    cell.entry = list_.Current().word;
    if (list_.Current().IsWord()) {
        cell.number = list_.TakeInteger().value_or(-1);
        return;
    }
    list_.GetReading().found.Add(Rule::kCellNumberMissing, cell.entry,
                                 "the entry has no cell number", "write it before the `(`");
}

// "A", "A(3)" or "*".
void RegisterReader::ReadPort(Cell& cell) {
    cell.port = list_.TakeElement();
    JoinPort(cell.port);
    if (cell.port.port.text == "*") cell.port = {};
    const bool close = list_.Current().Is(')');
    const bool index = list_.Current().IsWord() && list_.Next().Is(')') &&
                       ParseInteger(list_.Current().word.text).has_value();
    if (index) {
        list_.Expect('(', Rule::kParenthesisMissing);
        cell.port.index = list_.TakeInteger();
        list_.Advance();
    } else if (close && list_.Next().Is(',')) {
        FindSurplus(source_.reading, Rule::kParenthesisSurplus, list_.Current().word);
        list_.Advance();
    }
}

// "RE SET" has a blank in the name of a port.
void RegisterReader::JoinPort(ElementName& element) {
    if (element.index || !list_.Current().IsWord()) return;
    const std::string whole = std::string(element.port.text).append(list_.Current().word.text);
    if (!source_.ports.names.Contains(whole)) return;
    Reading& reading = source_.reading;
    reading.found.Add(Rule::kBlankInBits, Behind(element.port),
                      "there is a blank within " + Quoted(whole), "leave it out");
    element.port.text = reading.joined.emplace_back(whole);
    list_.Advance();
}

void RegisterReader::ReadField(Cell& cell) {
    switch (cell.field_count++) {
        case kType:
            cell.type = list_.TakeWord();
            break;
        case kPort:
            ReadPort(cell);
            break;
        case kFunction:
            cell.function_word = list_.TakeWord();
            Keyword<CellFunction>::Find(kFunctions, cell.function_word.text, cell.function);
            break;
        case kSafe:
            cell.safe_word = list_.TakeWord();
            Keyword<eSignal>::Find(kLevels, cell.safe_word.text, cell.safe);
            break;
        case kControl:
            cell.control_word = list_.TakeWord();
            cell.control = ParseInteger(cell.control_word.text).value_or(-1);
            break;
        case kDisableValue:
            cell.disable_value_word = list_.TakeWord();
            Keyword<eSignal>::Find(kLevels, cell.disable_value_word.text, cell.disable_value);
            break;
        case kDisableResult:
            cell.disable_result_word = list_.TakeWord();
            Keyword<eSignal>::Find(kResults, cell.disable_result_word.text, cell.disable_result);
            break;
        default:
            list_.TakeWord();
    }
}

// A port may have an index; any other word before a `(` is the number of the next entry.
bool RegisterReader::NextField(const Cell& cell) {
    return list_.NextItem(cell.field_count == kPort ? "" : "(");
}

// "(BC_1, , input, X)": a function stands where a port belongs.
bool RegisterReader::LacksPort() const {
    if (!list_.Current().Is(',') || !list_.Next().Is(',')) return false;
    ValueLexer ahead = list_.Ahead();
    ahead.Advance();
    CellFunction function{};
    return ahead.Next().IsWord() &&
           Keyword<CellFunction>::Find(kFunctions, ahead.Next().word.text, function);
}

void RegisterReader::TakeLackingPort(Cell& cell) {
    list_.Advance();
    list_.GetReading().found.Add(Rule::kNameMissing, list_.Current().word,
                                 "the entry names no port", "write one, or `*`");
    ++cell.field_count;
}

void RegisterReader::ReadFields(Cell& cell) {
    list_.Open();
    do {
        ReadField(cell);
        if (cell.field_count == kPort && LacksPort()) TakeLackingPort(cell);
    } while (NextField(cell));
    list_.Close();
}

// A comment belongs to the last entry of its line.
void RegisterReader::TakeRemark() {
    const Piece* const piece = list_.LastPiece();
    if (piece == nullptr || piece->remark.empty()) return;
    if (cells_.size() > 1) {
        Cell& before = cells_[cells_.size() - 2];
        if (before.remark.data() == piece->remark.data()) before.remark = {};
    }
    cells_.back().remark = piece->remark;
}

void RegisterReader::Read() {
    while (list_.NextEntry() && cells_.size() < std::size_t{kMaxBoundaryLength}) {
        Cell& cell = cells_.emplace_back();
        ReadNumber(cell);
        ReadFields(cell);
        list_.EndEntry();
        TakeRemark();
    }
}

}  // namespace

void ReadBoundaryLength(SourceReader& source, const Attribute&) {
    Facts& facts = source.reading.facts;
    facts.boundary_length = ReadLength(source, facts.boundary_length_word);
}

void ReadBoundaryRegister(SourceReader& source, const Attribute& attribute) {
    source.reading.facts.register_attribute = attribute.name;
    RegisterReader reader(source);
    reader.Reserve(source.value);
    reader.Read();
}

}  // namespace bscan::detail
