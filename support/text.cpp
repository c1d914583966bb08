#include <bscan/text.h>

#include "support/text_view.h"

#include <algorithm>
#include <cstring>

using bscan::detail::CompareIgnoringCase;
using bscan::detail::ToLower;
using bscan::detail::View;

namespace {

int Position(std::size_t found) {
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

// Moves a text, which may overlap its destination, and terminates it.
void Place(char* destination, std::string_view text) {
    std::memmove(destination, text.data(), text.size());
    destination[text.size()] = '\0';
}

// A count from a host, not below 0 and not above the length of a text.
std::size_t Bounded(int count, std::string_view text) {
    return count <= 0 ? 0 : std::min(static_cast<std::size_t>(count), text.size());
}

// A count that is not above 0 takes the whole source.
void Copy(char* destination, const char* source, int count) {
    if (destination == nullptr || source == nullptr) return;
    const std::string_view text = source;
    Place(destination, count <= 0 ? text : text.substr(0, Bounded(count, text)));
}

void Append(char* destination, const char* source, int count) {
    if (destination != nullptr) Copy(destination + std::strlen(destination), source, count);
}

}  // namespace

LString::LString() = default;
LString::~LString() = default;

int LString::Find(const char* text, const char* sought) {
    return Position(View(text).find(View(sought)));
}

int LString::Find(const char* text, char character) { return Position(View(text).find(character)); }

int LString::FindOneOf(const char* text, const char* set) {
    return Position(View(text).find_first_of(View(set)));
}

int LString::ReverseFind(const char* text, char character) {
    return Position(View(text).rfind(character));
}

int LString::ReverseFindOneOf(const char* text, const char* set) {
    return Position(View(text).find_last_of(View(set)));
}

void LString::Left(char* destination, const char* source, int count) {
    if (destination == nullptr || source == nullptr) return;
    const std::string_view text = source;
    Place(destination, text.substr(0, Bounded(count, text)));
}

void LString::Right(char* destination, const char* source, int count) {
    if (destination == nullptr || source == nullptr) return;
    const std::string_view text = source;
    Place(destination, text.substr(text.size() - Bounded(count, text)));
}

void LString::TrimLeft(char* text) {
    if (text != nullptr) Place(text, bscan::detail::TrimLeft(text));
}

void LString::TrimRight(char* text) {
    if (text != nullptr) Place(text, bscan::detail::TrimRight(text));
}

void util_strncpy(char* destination, const char* source, int count, int) {
    Copy(destination, source, count);
}

void util_strncpy(char* destination, char* source, int count, int) {
    Copy(destination, source, count);
}

void util_strncat(char* destination, const char* source, int count, int) {
    Append(destination, source, count);
}

void util_strncat(char* destination, char* source, int count, int) {
    Append(destination, source, count);
}

int stricmp(const char* left, const char* right) {
    return CompareIgnoringCase(View(left), View(right));
}

int strcmpi(char* left, char* right) { return CompareIgnoringCase(View(left), View(right)); }

char* strlwr(char* text) {
    for (char* at = text; at != nullptr && *at != '\0'; ++at) *at = ToLower(*at);
    return text;
}

char* strupr(char* text) {
    if (text != nullptr) bscan::detail::UpperCase(text, std::strlen(text));
    return text;
}
