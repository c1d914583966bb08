#include "bsdl/cell_table.h"

#include <bscan/limits.h>

#include <algorithm>

namespace bscan::detail {

CellTable::CellTable(const std::vector<Cell>& cells) : cells_(cells), next_(cells_.size(), kNone) {
    // A number far above the count of cells must not make a small file take much memory.
    const std::size_t ceiling = std::min<std::size_t>(kMaxBoundaryLength, 8 * cells_.size() + 1024);
    std::size_t numbers = 0;
    for (std::size_t i = cells_.size(); i-- > 0;) {
        const auto number = static_cast<std::size_t>(cells_[i].number);
        if (cells_[i].number < 0) {
            ++unreadable_;
        } else if (number >= ceiling) {
            ++outside_;
        } else {
            if (number >= first_.size()) first_.resize(number + 1, kNone);
            next_[i] = first_[number];
            has_shared_ |= next_[i] != kNone;
            if (next_[i] == kNone) ++numbers;
            first_[number] = static_cast<int>(i);
        }
    }
    missing_ = first_.size() - numbers;
}

const Cell* CellTable::First(int number) const {
    if (number < 0 || number >= Size()) return nullptr;
    const int first = first_[static_cast<std::size_t>(number)];
    return first == kNone ? nullptr : &cells_[static_cast<std::size_t>(first)];
}

const Cell* CellTable::Next(const Cell& entry) const {
    const int next = next_[static_cast<std::size_t>(&entry - cells_.data())];
    return next == kNone ? nullptr : &cells_[static_cast<std::size_t>(next)];
}

}  // namespace bscan::detail
