// The cells of a boundary register by their number.
#pragma once

#include <bscan/facts.h>

#include <cstddef>
#include <vector>

namespace bscan::detail {

class CellTable {
public:
    explicit CellTable(const std::vector<Cell>& cells);

    // Numbers below this one are in the table; a lonely one far above the count of cells is not.
    int Size() const { return static_cast<int>(first_.size()); }
    // The first entry of a number; null without one. The others follow by Next().
    const Cell* First(int number) const;
    const Cell* Next(const Cell& entry) const;

    // Entries whose number cannot be read.
    std::size_t UnreadableCount() const { return unreadable_; }
    // Whether each number below Size() has an entry, and there is no other entry.
    bool IsComplete() const { return missing_ == 0 && outside_ == 0; }
    // Whether, beyond that, none has two.
    bool IsPlain() const { return IsComplete() && !has_shared_; }

private:
    static constexpr int kNone = -1;

    const std::vector<Cell>& cells_;
    std::vector<int> first_;  // by number
    std::vector<int> next_;   // by entry
    std::size_t unreadable_ = 0;
    std::size_t outside_ = 0;  // entries that are not in the table
    std::size_t missing_ = 0;  // numbers without entry
    bool has_shared_ = false;
};

}  // namespace bscan::detail
