#include "parser/pin_map_text.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {

PinMapCutter::PinMapCutter(std::string_view value)
    : value_(TrimRight(value)), separators_(value_) {}

void PinMapCutter::SkipBlanks() {
    while (at_ < value_.size() && IsBlank(value_[at_])) ++at_;
}

std::size_t PinMapCutter::Next(char separator, bool& any) {
    if (!any) return Separators::kNone;
    separators_.SkipTo(at_);
    for (;;) {
        const std::size_t place = separators_.Next();
        if (place == Separators::kNone) break;
        if (value_[place] == separator) return place;
    }
    // The others may be wanted yet.
    separators_ = Separators(value_);
    any = false;
    return Separators::kNone;
}

bool PinMapCutter::Next(PinMapEntry& entry) {
    if (at_ >= value_.size()) return false;
    constexpr std::size_t kNone = Separators::kNone;
    if (const std::size_t colon = Next(':', any_colon_); colon != kNone && colon > at_) {
        port_ = TrimRight(Rest(colon - at_));
        at_ = colon + 1;
        SkipBlanks();
    }
    entry.port = port_;
    const bool is_group = at_ < value_.size() && value_[at_] == '(';
    if (is_group) {
        ++at_;
        SkipBlanks();
        const std::size_t closing = std::min(value_.find(')', at_), value_.size());
        entry.pins = TrimRight(Rest(closing - at_));
        at_ = std::min(closing + 1, value_.size());
        SkipBlanks();
    }
    const std::size_t comma = Next(',', any_comma_);
    if (!is_group) entry.pins = TrimRight(Rest(comma == kNone ? kNone : comma - at_));
    if (comma != kNone) {
        at_ = comma + 1;
        SkipBlanks();
    } else if (!is_group) {
        at_ = value_.size();
    }
    return true;
}

bool TakePin(std::string_view& pins, std::string_view& pin) {
    if (pins.empty()) return false;
    const std::size_t comma = Find(pins, ',');
    if (comma == std::string_view::npos || comma == 0) {
        pin = pins;
        pins = {};
    } else {
        pin = TrimRight(pins.substr(0, comma));
        pins = TrimLeft(pins.substr(comma + 1));
    }
    return true;
}

}  // namespace bscan::detail
