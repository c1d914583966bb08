#include "parser/constant_text.h"

#include "support/text_view.h"

namespace bscan::detail {
namespace {

constexpr std::string_view kWordEnds = " \n\t:";

// Nothing when the text ends with the word.
std::string_view UpToWordEnd(std::string_view text) {
    return CutAt(text, text.find_first_of(kWordEnds)).before;
}

}  // namespace

std::string_view TypeWord(std::string_view statement, std::string_view type) {
    return UpToWordEnd(statement.substr(statement.find(type)));
}

std::string_view ConstantName(std::string_view statement) {
    return TrimRight(UpToWordEnd(TrimLeft(CutAt(statement, ' ').after)));
}

}  // namespace bscan::detail
