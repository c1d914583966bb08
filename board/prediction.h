// What the receivers of some nets see while given faults are there.
#pragma once

#include <bscan/board/diagnosis.h>

#include <optional>
#include <vector>

namespace bscan::detail {

// A fault as something that can be played through. Several may stand for one fault: an open between
// two pins is an open at the one or at the other.
struct Suspect {
    Fault fault;
    int open_pin = -1;      // has lost its net
    int open_pull = -1;     // of the net's pulls
    int open_through = -1;  // of the net's through parts
};

// How well some suspects together explain the words of all nets that they touch.
struct Match {
    int wrong = 0;        // words that are not as predicted
    int coincidence = 0;  // words that the suspects leave to chance
};

// Plays the suspects through and compares with what was seen on the nets that they touch.
Match Compare(const TestRecord& record, const std::vector<const Suspect*>& suspects);

// What a sound board shows on a net in a group; nothing while it is released and has no pull.
std::optional<TestWord> SoundWord(const TestRecord& record, const TestGroup& group, int net);

}  // namespace bscan::detail
