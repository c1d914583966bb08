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

// Takes a pin map string such as "TDI : 5, D : (A1, A2, B1)" apart, entry by entry.
class PinMapCutter {
public:
    explicit PinMapCutter(std::string_view value);

    // False when no entry is left. An entry without a colon keeps the port of the one before.
    bool Next(PinMapEntry& entry);

private:
    // Where a character comes next. A search that found nothing, or something far ahead, is not
    // repeated for every entry.
    class Ahead {
    public:
        explicit Ahead(char character) : character_(character) {}
        std::size_t From(std::string_view text, std::size_t from);

    private:
        char character_;
        bool searched_ = false;
        std::size_t position_ = 0;
    };

    std::string_view Rest(std::size_t length) const { return value_.substr(at_, length); }
    void SkipBlanks();

    std::string_view value_;
    std::size_t at_ = 0;
    std::string_view port_;
    Ahead colon_{':'};
    Ahead comma_{','};
};

// Takes the next designator off the pins of an entry; false when none is left.
bool TakePin(std::string_view& pins, std::string_view& pin);

}  // namespace bscan::detail
