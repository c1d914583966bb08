#include "model/cell_index.h"

#include <bscan/boundary_cell.h>

#include "support/text_view.h"

#include <algorithm>
#include <functional>

namespace bscan::detail {
namespace {

int Walk(CellColumn::Getter name, std::string_view sought, const LBScanCell* cells, int count) {
    for (int position = 0; position < count; ++position) {
        if (EqualIgnoringCase((cells[position].*name)(), sought)) return position;
    }
    return -1;
}

}  // namespace

// Most names are in upper case already.
std::string_view CellColumn::Folded(std::string_view name) {
    if (IsUpperCase(name)) return name;
    folded_.assign(name);
    UpperCase(folded_);
    return folded_;
}

int CellColumn::Bear(std::string_view name, int position) {
    const int number = names_.Add(Folded(name));
    if (static_cast<std::size_t>(number) == bearers_.size()) bearers_.emplace_back();
    name_numbers_[static_cast<std::size_t>(position)] = number;
    return number;
}

void CellColumn::Learn(const LBScanCell* cells, int count) {
    Forget();
    const auto size = static_cast<std::size_t>(count);
    name_numbers_.resize(size);
    next_.assign(size, -1);
    for (int position = 0; position < count; ++position) {
        const int number = Bear((cells[position].*name_)(), position);
        Bearers& bearers = bearers_[static_cast<std::size_t>(number)];
        (bearers.last < 0 ? bearers.first : next_[static_cast<std::size_t>(bearers.last)]) =
            position;
        bearers.last = position;
    }
    known_ = true;
}

void CellColumn::Forget() {
    known_ = false;
    names_.Clear();
    bearers_.clear();
    name_numbers_.clear();
    next_.clear();
    heaps_.clear();
    renamings_ = 0;
}

void CellColumn::Renamed(const LBScanCell* cells, int position) noexcept {
    if (!known_) return;
    if (++renamings_ > 4 * next_.size()) return Forget();
    try {
        const int number = Bear((cells[position].*name_)(), position);
        int& number_of_heap = bearers_[static_cast<std::size_t>(number)].heap;
        if (number_of_heap < 0) {
            heaps_.emplace_back();
            number_of_heap = static_cast<int>(heaps_.size()) - 1;
        }
        Heap& heap = heaps_[static_cast<std::size_t>(number_of_heap)];
        heap.push_back(position);
        std::push_heap(heap.begin(), heap.end(), std::greater<>());
    } catch (...) {
        Forget();
    }
}

// The lowest of the cells that were learned under a name and still bear it; -1 without one.
int CellColumn::FirstLearned(int number) {
    int& first = bearers_[static_cast<std::size_t>(number)].first;
    while (first >= 0 && name_numbers_[static_cast<std::size_t>(first)] != number) {
        first = next_[static_cast<std::size_t>(first)];
    }
    return first;
}

// The lowest of the cells that have got a name since and still bear it; -1 without one.
int CellColumn::FirstRenamed(int number) {
    const int number_of_heap = bearers_[static_cast<std::size_t>(number)].heap;
    if (number_of_heap < 0) return -1;
    Heap& heap = heaps_[static_cast<std::size_t>(number_of_heap)];
    while (!heap.empty()) {
        if (name_numbers_[static_cast<std::size_t>(heap.front())] == number) return heap.front();
        std::pop_heap(heap.begin(), heap.end(), std::greater<>());
        heap.pop_back();
    }
    return -1;
}

int CellColumn::First(std::string_view name, const LBScanCell* cells, int count) {
    // Learning a table costs as much as some walks over it.
    constexpr int kWalks = 8;
    if (!known_ && walks_ < kWalks) {
        ++walks_;
        return Walk(name_, name, cells, count);
    }
    int number = NameTable::kNone;
    try {
        if (!known_) Learn(cells, count);
        number = names_.Find(Folded(name));
    } catch (...) {
        Forget();
        return Walk(name_, name, cells, count);
    }
    if (number == NameTable::kNone) return -1;
    const int learned = FirstLearned(number);
    const int renamed = FirstRenamed(number);
    return learned < 0 || renamed < 0 ? std::max(learned, renamed) : std::min(learned, renamed);
}

CellIndex::CellIndex()
    : pin_names_(&LBScanCell::GetPinName), original_names_(&LBScanCell::GetOriginalPinName) {}

void CellIndex::SetTable(const LBScanCell* cells, int count) {
    cells_ = cells;
    count_ = count;
    pin_names_.Forget();
    original_names_.Forget();
}

int CellIndex::WithPinName(std::string_view name) { return pin_names_.First(name, cells_, count_); }

int CellIndex::WithOriginalName(std::string_view name) {
    return original_names_.First(name, cells_, count_);
}

int CellIndex::PositionOf(const LBScanCell& cell) const { return static_cast<int>(&cell - cells_); }

void CellIndex::PinNameSet(const LBScanCell& cell) noexcept {
    pin_names_.Renamed(cells_, PositionOf(cell));
}

void CellIndex::OriginalNameSet(const LBScanCell& cell) noexcept {
    original_names_.Renamed(cells_, PositionOf(cell));
}

}  // namespace bscan::detail
