/// @file
/// From the words of an interconnection test to the faults that explain them.
#pragma once

#include <bscan/board/test_record.h>
#include <bscan/export.h>

#include <optional>
#include <string>
#include <vector>

namespace bscan {

enum class FaultKind {
    kOpen,   ///< a pin has lost its net
    kStuck,  ///< a net has one level, whatever drives it
    kShort,  ///< nets touch
};

/// How the level of touching nets comes about while their drivers differ.
enum class ShortWinner {
    kAnd,    ///< 0 wins
    kOr,     ///< 1 wins
    kOneNet  ///< one net wins, the first of Fault::nets
};

/// One fault of a board.
struct Fault {
    FaultKind kind = FaultKind::kOpen;
    std::vector<int> nets;          ///< of the record; for kOneNet the winner first
    std::vector<std::string> pins;  ///< of an open: the pins between which it lies, or the one pin
    bool level = false;             ///< of a stuck net
    ShortWinner winner = ShortWinner::kAnd;

    friend bool operator==(const Fault& a, const Fault& b) {
        return a.kind == b.kind && a.nets == b.nets && a.pins == b.pins && a.level == b.level &&
               a.winner == b.winner;
    }
    friend bool operator!=(const Fault& a, const Fault& b) { return !(a == b); }
};

/// What was found: the likeliest fault first, and those that would give the same words.
struct DiagnosedFault {
    std::vector<Fault> one_of;  ///< at least one; the likeliest first
    bool certain = true;        ///< false when no small number of faults explains every word

    const Fault& Likeliest() const { return one_of.front(); }
};

/// Explains a test.
///
/// Every word of every receiver is explained by as few faults as do it; those that explain it
/// equally well are given together. An input that nothing drives may read 0 or 1 throughout a
/// group. Time grows with the size of the record and the number of deviating nets.
///
/// @return the faults in the order of certainty; empty for a sound board.
BSCAN_EXPORT std::vector<DiagnosedFault> Diagnose(const TestRecord& record);

}  // namespace bscan
