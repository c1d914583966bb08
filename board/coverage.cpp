// What a test sees of which pin.

#include <bscan/board/board_test.h>

#include "support/border.h"

#include <algorithm>

namespace bscan {
namespace detail {
namespace {

class CoverageFinder {
public:
    CoverageFinder(const Board& board, const BoardTest& test) : board_(board), test_(test) {
        drives_.resize(test.record.pins.size());
        for (const TestGroup& group : test.record.groups) {
            for (const int pin : group.drivers) {
                if (pin >= 0) drives_[static_cast<std::size_t>(pin)] = true;
            }
        }
    }

    std::vector<PinCoverage> Find() const {
        std::vector<PinCoverage> found(board_.pins.size());
        for (std::size_t i = 0; i < found.size(); ++i) {
            found[i].pin = static_cast<int>(i);
            const auto net = static_cast<std::size_t>(board_.pins[i].net);
            const bool tested = net < test_.tested_as.size() && test_.tested_as[net] >= 0;
            found[i].reason = tested                       ? Untested::kNoCell
                              : net < test_.reasons.size() ? test_.reasons[net]
                                                           : Untested::kClass;
        }
        for (std::size_t pin = 0; pin < test_.record.pins.size(); ++pin) {
            Cover(static_cast<int>(pin), found[static_cast<std::size_t>(test_.pin_of[pin])]);
        }
        return found;
    }

private:
    bool Drives(int pin) const { return drives_[static_cast<std::size_t>(pin)]; }
    bool Receives(int pin) const {
        return test_.record.pins[static_cast<std::size_t>(pin)].receives;
    }

    // A driver that has lost its net is missed by the other receivers; a receiver misses the other
    // drivers.
    void Cover(int pin, PinCoverage& found) const {
        const auto net =
            static_cast<std::size_t>(test_.record.pins[static_cast<std::size_t>(pin)].net);
        bool other_drives = false;
        bool other_receives = false;
        for (const int other : test_.record.nets[net].pins) {
            if (other == pin) continue;
            other_drives = other_drives || Drives(other);
            other_receives = other_receives || Receives(other);
        }
        found.open = (Drives(pin) && other_receives) || (Receives(pin) && other_drives);
        found.stuck = Drives(pin) || Receives(pin);
        found.short_ = found.stuck;
        const auto board_net = static_cast<std::size_t>(test_.net_of[net]);
        found.reason = found.open                               ? Untested::kNo
                       : !found.stuck                           ? Untested::kControl
                       : board_.nets[board_net].pins.size() < 2 ? Untested::kOnePin
                       : Drives(pin)                            ? Untested::kNoReceiver
                                                                : Untested::kNoDriver;
    }

    const Board& board_;
    const BoardTest& test_;
    std::vector<bool> drives_;  // by pin of the record, whether in any group
};

}  // namespace
}  // namespace detail

std::vector<PinCoverage> CoverBoard(const Board& board, const BoardTest& test) {
    return detail::Guarded([&] { return detail::CoverageFinder(board, test).Find(); },
                           std::vector<PinCoverage>());
}

}  // namespace bscan
