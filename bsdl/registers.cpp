// Identification codes and the registers that instructions select.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"
#include "bsdl/number.h"
#include "bsdl/spelling.h"

#include <utility>
#include <vector>

namespace bscan::detail {
namespace {

// Alternatives stand behind each other with commas.
void ReadCodes(SourceReader& source, std::vector<Word>& codes) {
    ListReader list(source);
    while (list.NextEntry()) {
        const Word code = list.TakeBits();
        if (!code.Exists()) break;
        codes.push_back(code);
        list.EndEntry();
    }
    list.ExpectEnd();
}

// "NAME9]" lost its bracket: the name ends where the digits begin.
bool CutLength(ListReader& list, RegisterAccess& access) {
    if (!list.Current().Is(']')) return false;
    const std::string_view name = access.name.text;
    const std::string_view digits = name.substr(name.find_last_not_of("0123456789") + 1);
    access.length = ParseInteger(digits);
    access.length_word = {digits, access.name.line, access.name.column};
    access.length_word.column += static_cast<int>(name.size() - digits.size());
    access.name.text.remove_suffix(digits.size());
    FindMissing(list.GetReading(), Rule::kParenthesisMissing, access.name, "[");
    list.Advance();
    return true;
}

// "[9]" behind the name of a register.
// "(16)" before the list of instructions.
bool HasLengthInParentheses(const ListReader& list) {
    if (!list.Current().Is('(') || !ParseInteger(list.Next().word.text)) return false;
    ValueLexer ahead = list.Ahead();
    ahead.Advance();
    ahead.Advance();
    return ahead.Current().Is(')') && ahead.Next().Is('(');
}

void ReadRegisterLength(ListReader& list, RegisterAccess& access) {
    if (HasLengthInParentheses(list)) {
        FindInstead(list.GetReading(), Rule::kParenthesisMissing, list.Current().word, "[");
        list.Advance();
        access.length = list.TakeInteger();
        return list.Advance();
    }
    const bool unopened = list.Current().IsWord() && list.Next().Is(']');
    if (CutLength(list, access) || (!list.Current().Is('[') && !unopened)) return;
    list.Expect('[', Rule::kParenthesisMissing);
    if (list.Current().IsWord()) access.length_word = list.Current().word;
    // "[*]" leaves the length to other attributes.
    if (list.Current().Is("*")) {
        list.Advance();
    } else {
        access.length = list.TakeInteger();
    }
    list.Expect(']', Rule::kParenthesisMissing);
}

bool AcceptCaptures(ListReader& list) {
    if (!list.Current().IsWord()) return false;
    const Word word = list.Current().word;
    constexpr std::string_view kKeyword = "CAPTURES";
    const bool misspelt = IsMisspelt(word.text, kKeyword);
    if (misspelt) FindMisspelt(list.GetReading(), word, kKeyword);
    if (!misspelt && !list.Current().Is(kKeyword)) return false;
    list.Advance();
    return true;
}

void ReadInstructions(ListReader& list, RegisterAccess& access) {
    list.Open();
    do {
        RegisterInstruction instruction;
        instruction.name = list.TakeWord();
        if (AcceptCaptures(list)) instruction.captures = list.TakeBits();
        // The domain in which a register is powered is known since 2013.
        if (list.Current().Is("DOMAIN") && list.Next().IsWord()) {
            list.Advance();
            instruction.domain = list.TakeWord();
        }
        if (instruction.name.Exists()) access.instructions.push_back(instruction);
    } while (list.NextItem("(["));
    list.Close();
}

}  // namespace

void ReadIdcodes(SourceReader& source, const Attribute&) {
    ReadCodes(source, source.reading.facts.idcodes);
}

void ReadUsercodes(SourceReader& source, const Attribute&) {
    ReadCodes(source, source.reading.facts.usercodes);
}

// "NAME[length] (INSTRUCTION CAPTURES bits, INSTRUCTION), ..."
void ReadRegisterAccess(SourceReader& source, const Attribute&) {
    ListReader list(source);
    while (list.NextEntry()) {
        RegisterAccess access;
        access.name = list.TakeWord();
        ReadRegisterLength(list, access);
        ReadInstructions(list, access);
        source.reading.facts.registers.push_back(std::move(access));
        list.EndEntry();
    }
}

}  // namespace bscan::detail
