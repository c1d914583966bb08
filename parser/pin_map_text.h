// The text of pin map strings.
#pragma once

#include "support/search.h"

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
    using Separators = Marks<':', ','>;

    // The next place of a separator; kNone, and `any` cleared, when there is none.
    std::size_t Next(char separator, bool& any);
    std::string_view Rest(std::size_t length) const { return value_.substr(at_, length); }
    void SkipBlanks();

    std::string_view value_;
    Separators separators_;
    std::size_t at_ = 0;
    std::string_view port_;
    bool any_colon_ = true;  // in what is left
    bool any_comma_ = true;
};

// Takes the next designator off the pins of an entry; false when none is left.
bool TakePin(std::string_view& pins, std::string_view& pin);

}  // namespace bscan::detail
