#include "parser/pin_map_text.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {

std::size_t PinMapCutter::Ahead::From(std::string_view text, std::size_t from) {
    if (!searched_ || position_ < from) {
        position_ = Find({text.data() + from, text.size() - from}, character_);
        if (position_ != std::string_view::npos) position_ += from;
    }
    searched_ = true;
    return position_;
}

PinMapCutter::PinMapCutter(std::string_view value) : value_(TrimRight(value)) {}

void PinMapCutter::SkipBlanks() {
    while (at_ < value_.size() && IsBlank(value_[at_])) ++at_;
}

bool PinMapCutter::Next(PinMapEntry& entry) {
    if (at_ >= value_.size()) return false;
    constexpr std::size_t kNone = std::string_view::npos;
    if (const std::size_t colon = colon_.From(value_, at_); colon != kNone && colon > at_) {
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
    const std::size_t comma = comma_.From(value_, at_);
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
