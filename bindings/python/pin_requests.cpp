#include "pin_requests.h"

#include "problem.h"

#include <algorithm>

namespace bscan::python {

PinRequests::PinRequests(PinDriver& driver, Label label)
    : driver_(driver), label_(std::move(label)) {}

void PinRequests::StartAnew() {
    if (sample_.empty()) {
        driver_.Preset();
    } else {
        driver_.Preset(sample_);
    }
}

// Requests that a later one on the same element has replaced leave nothing behind.
void PinRequests::Redo() {
    std::vector<std::pair<std::uint64_t, PinRequest>> order;
    order.reserve(done_.size());
    for (const auto& [element, done] : done_) order.push_back({done.turn, {element, done.level}});
    std::sort(order.begin(), order.end());
    StartAnew();
    for (const auto& [turn, request] : order) driver_.Request(request.first, request.second);
}

void PinRequests::Preset(std::vector<eSignal> sample) {
    sample_ = std::move(sample);
    done_.clear();
    before_.clear();
    StartAnew();
}

void PinRequests::Drive(const std::vector<PinRequest>& requests) {
    for (const auto& [element, level] : requests) {
        const DriveCode code = driver_.Request(element, level);
        if (IsDone(code)) continue;
        const std::string reason = label_(element) + ": " + driver_.Explain(element, code);
        Redo();
        throw Problem("DriveError", static_cast<int>(code), reason);
    }
    before_.clear();
    for (const auto& [element, level] : requests) {
        Done& done = done_[element];
        before_.emplace(element, done);
        done = {turn_++, level};
    }
}

void PinRequests::Undo() {
    for (const auto& [element, done] : before_) {
        if (done.turn == 0) {
            done_.erase(element);
        } else {
            done_[element] = done;
        }
    }
    before_.clear();
    Redo();
}

}  // namespace bscan::python
