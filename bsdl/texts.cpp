// Attributes whose value is a text or one number.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"

namespace bscan::detail {
namespace {

struct TextRow {
    std::string_view attribute;
    Word Facts::*text;
};

constexpr TextRow kTexts[] = {
    {"RUNBIST_EXECUTION", &Facts::runbist},
    {"INTEST_EXECUTION", &Facts::intest},
    {"COMPONENT_CONFORMANCE", &Facts::conformance},
    {"DESIGN_WARNING", &Facts::design_warning},
};

}  // namespace

void ReadTextValue(SourceReader& source, const Attribute& attribute) {
    if (!source.value.quoted) {
        const Word& begin = source.value.begin;
        source.reading.found.Add(Rule::kStringNotOpened, begin,
                                 "`\"` is missing before " + Quoted(begin.text),
                                 "write the text in double quotes");
    }
    for (const TextRow& row : kTexts) {
        if (row.attribute != attribute.standard_name) continue;
        source.reading.facts.*row.text = JoinedText(source.value, source.reading.joined);
    }
}

int ReadLength(SourceReader& source, Word& word) {
    ListReader list(source);
    word = list.Current().word;
    const int length = list.TakeInteger().value_or(0);
    if (source.value.quoted) {
        source.reading.found.Add(Rule::kNumberInQuotes, word,
                                 "the number " + Quoted(word.text) + " stands in quotes",
                                 "write it without them");
    }
    list.ExpectEnd();
    return length;
}

}  // namespace bscan::detail
