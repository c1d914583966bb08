/// @file
/// Takes texts apart as the readers do. The first byte of an input chooses the kind of text.

#include <bscan/result.h>

#include "fuzz/input.h"
#include "parser/constant_text.h"
#include "parser/name_list_text.h"
#include "parser/pin_map_text.h"
#include "parser/port_group_text.h"
#include "parser/port_text.h"
#include "parser/register_text.h"
#include "parser/statement_reader.h"
#include "support/read_device.h"

#include <iterator>

using namespace bscan::detail;
using bscan::fuzz::IsWithin;
using bscan::fuzz::Require;

namespace {

void CutPinMap(std::string_view text) {
    PinMapCutter cutter(text);
    std::size_t entries = 0;
    for (PinMapEntry entry; cutter.Next(entry); ++entries) {
        Require(entries <= text.size(), "entries end");
        Require(IsWithin(entry.port, text) && IsWithin(entry.pins, text),
                "entries are of the text");
        const std::string_view all = entry.pins;
        for (std::string_view pin; TakePin(entry.pins, pin);) {
            Require(!pin.empty() && IsWithin(pin, all), "pins are of their entry");
            Require(pin.find(',') == pin.npos || pin.front() == ',', "pins end at commas");
        }
    }
}

void CutBoundaryRegister(std::string_view text) {
    std::vector<RegisterEntry> entries;
    const bool good = CutRegister(text, entries);
    Require(!good || !entries.empty(), "a register has an entry");
    std::size_t behind = 0;
    for (const RegisterEntry& entry : entries) {
        Require(entry.number.begin >= behind && entry.number.begin <= entry.number.end &&
                    entry.number.end <= entry.columns.begin &&
                    entry.columns.begin <= entry.columns.end && entry.columns.end < text.size(),
                "entries are in order");
        behind = entry.columns.end;
        Require(text[behind] == ')', "an entry ends with its parenthesis");
        const std::string_view comment = entry.remark.In(text);
        Require(comment.empty() || entry.remark.begin > behind, "a remark is behind");
        std::string remark;
        AppendRemark(comment, remark);
        Require(remark.find_first_of("- \t\r\n") == remark.npos, "a remark is one word");
        CellFields fields;
        if (!CutRegisterEntry(text, entry, fields)) continue;
        Require(IsWithin(fields.port, entry.columns.In(text)), "a port is of its entry");
        Require(fields.type.has_value(), "an entry has a type");
        Require(fields.safe == SIG_0 || fields.safe == SIG_1 || fields.safe == SIG_X, "safe value");
        Require(fields.disable_value == SIG_0 || fields.disable_value == SIG_1, "disable value");
        Require(fields.disable_result >= SIG_Z && fields.disable_result <= SIG_WEAK1, "result");
    }
}

void CutNameList(std::string_view text) {
    NameListCutter cutter(text, bscan::kBadOpcode);
    NameListEntry entry;
    for (std::size_t entries = 0; !cutter.IsAtEnd(); ++entries) {
        Require(entries <= text.size(), "entries end");
        const int result = cutter.Next(entry);
        if (result != bscan::kOk) {
            Require(result == bscan::kBadOpcode || result == bscan::kBadValue, "the code is known");
            return;
        }
        Require(!entry.name.empty() && !entry.items.empty(), "an entry has a name and items");
        for (const std::string& item : entry.items) {
            Require(!item.empty() && item.find_first_of(" \t\n\"&,)") == item.npos,
                    "items are words");
        }
    }
}

void CutPorts(std::string_view text) {
    const PortDeclaration declaration = CutPortDeclaration(text);
    Require(IsWithin(declaration.names, text) && IsWithin(declaration.mode, text),
            "a declaration is of the text");
    std::string_view names = declaration.names;
    std::string_view name;
    for (std::size_t count = 0; TakePortName(names, name); ++count) {
        Require(count <= text.size(), "names end");
        Require(IsWithin(name, declaration.names) && name.find(',') == name.npos,
                "names are between commas");
    }
    PortClauseEnd end;
    end.BeginWith(text);
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = std::min(rest.find('\n'), rest.size());
        end.GoOnWith(rest.substr(0, length));
        PortClauseEnd::IsEndLine(rest.substr(0, length));
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
}

void CutPortGrouping(std::string_view text) {
    std::vector<std::string_view> groups;
    const bool sound = CutPortGroups(text, groups);
    Require(!sound || !groups.empty(), "a grouping has groups");
    groups.push_back(text);
    for (const std::string_view group : groups) {
        std::string_view pairs;
        if (!CutPortGroup(group, pairs)) continue;
        PairNames names;
        for (std::size_t count = 0; TakePair(pairs, names) == Taken::kItem; ++count) {
            Require(count <= text.size(), "pairs end");
            Require(!names.positive.empty() && IsWithin(names.positive, group), "a positive leg");
            Require(!names.negative.empty() && IsWithin(names.negative, group), "a negative leg");
        }
    }
}

void CutConstant(std::string_view text) {
    Require(IsWithin(ConstantName(text), text), "a name is of its statement");
    Require(!Contains(text, kPinMapString) || IsWithin(TypeWord(text, kPinMapString), text),
            "a type is of its statement");
    Require(IsWithin(ValueStart(text), text), "a value begins in its statement");
}

/// The first line is what the statement holds of the value, the rest is to be read.
void ReadStringValue(std::string_view text) {
    const Parts parts = CutAt(text, '\n');
    const auto read = [&](Comments comments, std::string& value) {
        const bscan::test::Stream stream(parts.after);
        std::int64_t lines = 0;
        const int result = StatementReader(stream, lines)
                               .ReadStringValue(ValueStart(parts.before), comments, value);
        Require(lines >= 0 && lines <= static_cast<std::int64_t>(text.size()) + 1, "lines counted");
        return result;
    };
    std::string plain;
    std::string remarked;
    const int result = read(Comments::kDrop, plain);
    Require(result <= bscan::kOk && result >= bscan::kEndOfFile, "the code is known");
    Require(read(Comments::kKeep, remarked) == result, "comments do not change the result");
    Require(plain.size() <= remarked.size(), "comments are added");
    Require(plain.size() <= 2 * text.size() + 2, "a value is of the text");
    Require(plain.find('"') == plain.npos, "a value has no quotes");
}

constexpr void (*kCutters[])(std::string_view) = {CutPinMap,      CutBoundaryRegister, CutNameList,
                                                  CutPorts,       CutPortGrouping,     CutConstant,
                                                  ReadStringValue};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // A copy of its own, so that a step beyond the text is a step beyond its memory.
    const std::vector<char> text(data + 1, data + size);
    kCutters[data[0] % std::size(kCutters)]({text.data(), text.size()});
    return 0;
}
