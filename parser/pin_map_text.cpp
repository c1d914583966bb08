#include "parser/pin_map_text.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

}  // namespace

PinMapCutter::PinMapCutter(std::string_view value)
    : value_(TrimRight(value)), colon_(value_, ':'), comma_(value_, ',') {}

// Goes on at a position, or behind the blanks there.
void PinMapCutter::SkipTo(std::size_t position) {
    at_ = std::min(position, value_.size());
    while (at_ < value_.size() && IsBlank(value_[at_])) ++at_;
}

bool PinMapCutter::Next(PinMapEntry& entry) {
    if (at_ >= value_.size()) return false;
    const std::size_t colon = colon_.From(at_);
    if (colon != kNone && colon > at_) {
        port_ = TrimRight(value_.substr(at_, colon - at_));
        SkipTo(colon + 1);
    }
    entry.port = port_;
    const bool is_group = at_ < value_.size() && value_[at_] == '(';
    if (is_group) {
        SkipTo(at_ + 1);
        // A group that is not closed is the rest of the value.
        const std::size_t closing = std::min(value_.find(')', at_), value_.size());
        entry.pins = TrimRight(value_.substr(at_, closing - at_));
        SkipTo(closing + 1);
    }
    const std::size_t comma = comma_.From(at_);
    const std::size_t end = std::min(comma, value_.size());
    if (!is_group) entry.pins = TrimRight(value_.substr(at_, end - at_));
    // What stands between a group and the next comma is dropped; when no comma is left, it is
    // another entry.
    if (!is_group || comma != kNone) SkipTo(end + 1);
    return true;
}

bool TakePin(std::string_view& pins, std::string_view& pin) {
    if (pins.empty()) return false;
    const std::size_t comma = pins.find(',');
    if (comma == kNone || comma == 0) {
        pin = pins;
        pins = {};
    } else {
        pin = TrimRight(pins.substr(0, comma));
        pins = TrimLeft(pins.substr(comma + 1));
    }
    return true;
}

}  // namespace bscan::detail
