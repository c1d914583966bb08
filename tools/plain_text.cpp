#include "plain_text.h"

#include "printable.h"

#include <algorithm>
#include <iterator>

namespace tool {
namespace {

struct Likeness {
    char32_t first, last;
    const char* text;
};

constexpr Likeness kLikenesses[] = {
    {0xA0, 0xA0, " "},       {0xA9, 0xA9, "(C)"},     {0xAB, 0xAB, "'"},
    {0xAD, 0xAD, "-"},       {0xAE, 0xAE, "(R)"},     {0xB0, 0xB0, " deg"},
    {0xB1, 0xB1, "+/-"},     {0xB2, 0xB2, "2"},       {0xB3, 0xB3, "3"},
    {0xB4, 0xB4, "'"},       {0xB5, 0xB5, "u"},       {0xB7, 0xB7, "*"},
    {0xB9, 0xB9, "1"},       {0xBB, 0xBB, "'"},       {0xBC, 0xBC, "1/4"},
    {0xBD, 0xBD, "1/2"},     {0xBE, 0xBE, "3/4"},     {0xC0, 0xC3, "A"},
    {0xC4, 0xC4, "Ae"},      {0xC5, 0xC5, "A"},       {0xC6, 0xC6, "Ae"},
    {0xC7, 0xC7, "C"},       {0xC8, 0xCB, "E"},       {0xCC, 0xCF, "I"},
    {0xD1, 0xD1, "N"},       {0xD2, 0xD5, "O"},       {0xD6, 0xD6, "Oe"},
    {0xD7, 0xD7, "x"},       {0xD8, 0xD8, "O"},       {0xD9, 0xDB, "U"},
    {0xDC, 0xDC, "Ue"},      {0xDD, 0xDD, "Y"},       {0xDF, 0xDF, "ss"},
    {0xE0, 0xE3, "a"},       {0xE4, 0xE4, "ae"},      {0xE5, 0xE5, "a"},
    {0xE6, 0xE6, "ae"},      {0xE7, 0xE7, "c"},       {0xE8, 0xEB, "e"},
    {0xEC, 0xEF, "i"},       {0xF1, 0xF1, "n"},       {0xF2, 0xF5, "o"},
    {0xF6, 0xF6, "oe"},      {0xF7, 0xF7, "/"},       {0xF8, 0xF8, "o"},
    {0xF9, 0xFB, "u"},       {0xFC, 0xFC, "ue"},      {0xFD, 0xFD, "y"},
    {0xFF, 0xFF, "y"},       {0x3A9, 0x3A9, "Ohm"},   {0x3BC, 0x3BC, "u"},
    {0x2010, 0x2015, "-"},   {0x2018, 0x201B, "'"},   {0x201C, 0x201F, "'"},
    {0x2022, 0x2022, "*"},   {0x2026, 0x2026, "..."}, {0x2122, 0x2122, "(TM)"},
    {0x2126, 0x2126, "Ohm"}, {0x2212, 0x2212, "-"},   {0x2264, 0x2264, "<="},
    {0x2265, 0x2265, ">="},  {0xFEFF, 0xFEFF, ""},
};

const char* LikenessOf(char32_t code) {
    // Controls, among them those that Latin-1 has behind ASCII.
    if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return " ";
    const auto* const found =
        std::find_if(std::begin(kLikenesses), std::end(kLikenesses),
                     [&](const Likeness& row) { return code >= row.first && code <= row.last; });
    return found == std::end(kLikenesses) ? "?" : found->text;
}

}  // namespace

std::string PlainText(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        Character character = FirstCharacter(text);
        if (character.length == 0) character = {static_cast<unsigned char>(text.front()), 1};
        text.remove_prefix(character.length);
        if (character.code >= ' ' && character.code < 0x7F) {
            plain += static_cast<char>(character.code);
        } else {
            plain += LikenessOf(character.code);
        }
    }
    return plain;
}

std::vector<std::string_view> CutText(std::string_view text, std::size_t width, bool cut_words) {
    std::vector<std::string_view> parts;
    while (text.size() > width) {
        std::size_t size = text.find_last_of(' ', width - 1);
        const bool blank_only = text.substr(0, size).find_first_not_of(' ') == text.npos;
        if (size == text.npos || blank_only) size = cut_words ? width - 1 : text.find(' ', width);
        if (size == text.npos) break;
        parts.push_back(text.substr(0, size + 1));
        text.remove_prefix(size + 1);
    }
    if (!text.empty() || parts.empty()) parts.push_back(text);
    return parts;
}

}  // namespace tool
