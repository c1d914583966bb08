// The text of pin map strings.
#pragma once

#include <cstddef>
#include <string_view>

namespace bscan::detail {

// One entry of a pin map string: a port and the pins of its elements.
struct PinMapEntry {
    std::string_view port;
    std::string_view pins;  // designators between commas
};

// Tells where a character comes next in a text. It searches no part of the text twice, so that a
// text without the character stays cheap.
class NextPlace {
public:
    NextPlace(std::string_view text, char character)
        : text_(text), character_(character), place_(text.find(character)) {}

    // The first place at or behind a position; npos without one. Positions may only grow.
    std::size_t From(std::size_t position) {
        if (place_ < position) place_ = text_.find(character_, position);
        return place_;
    }

private:
    std::string_view text_;
    char character_;
    std::size_t place_;
};

// Takes a pin map string such as "TDI : 5, D : (A1, A2, B1)" apart, entry by entry.
class PinMapCutter {
public:
    explicit PinMapCutter(std::string_view value);

    // False when no entry is left. An entry without a colon keeps the port of the one before.
    bool Next(PinMapEntry& entry);

private:
    void SkipTo(std::size_t position);

    std::string_view value_;
    NextPlace colon_;
    NextPlace comma_;
    std::size_t at_ = 0;
    std::string_view port_;
};

// Takes the next designator off the pins of an entry; false when none is left.
bool TakePin(std::string_view& pins, std::string_view& pin);

}  // namespace bscan::detail
