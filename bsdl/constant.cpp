// Constants: pin maps, and others that are kept as they are.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/spelling.h"

#include <utility>

namespace bscan::detail {
namespace {

constexpr std::string_view kPinMapString = "PIN_MAP_STRING";

void KeepOther(SourceReader& source, const Word& name, const Word& type) {
    OtherStatement other;
    other.name = name;
    other.target_class = type;
    other.value = JoinedText(source.value, source.reading.joined).text;
    other.is_string = source.value.quoted;
    other.is_constant = true;
    source.reading.facts.others.push_back(other);
}

bool IsPinMapType(SourceReader& source, const Word& type) {
    if (EqualIgnoringCase(type.text, kPinMapString)) return true;
    if (!IsMisspelt(type.text, kPinMapString)) return false;
    FindMisspelt(source.reading, type, kPinMapString);
    return true;
}

}  // namespace

// "NAME : TYPE := value;"
void ReadConstant(SourceReader& source) {
    Lexer& lexer = source.lexer;
    const Word name = TakeWord(lexer);
    if (!name.Exists()) return SkipUnknown(source);
    ExpectMark(source, ':', Rule::kColonMissing);
    const Word type = TakeWord(lexer);
    if (!type.Exists()) {
        FindMissing(source.reading, Rule::kTypeMissing, lexer.Last(), kPinMapString);
    }
    ExpectAssignment(source);
    if (!ReadValue(source)) return;
    const std::string_view said = TextBehind(name, lexer);
    if (!source.constants.Add(source.reading, name, name.text, said, Rule::kConstantTwice)) return;
    if (type.Exists() && !IsPinMapType(source, type)) return KeepOther(source, name, type);
    if (source.value.doubtful) source.reading.doubts.pin_maps = true;
    PinMap map;
    map.name = name;
    ReadPinMap(source, map);
    source.reading.facts.pin_maps.push_back(std::move(map));
}

}  // namespace bscan::detail
