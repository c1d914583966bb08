#include "model/cell_index.h"

#include <bscan/boundary_cell.h>

#include "support/text_view.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace bscan::detail {
namespace {

int Walk(CellColumn::Getter name, std::string_view sought, const LBScanCell* cells, int count) {
    for (int position = 0; position < count; ++position) {
        if (EqualIgnoringCase(name(cells[position]), sought)) return position;
    }
    return -1;
}

// A name in upper case, which most are already; the others are turned in a text of their own.
std::string_view Folded(std::string_view name, std::string& text) {
    if (IsUpperCase(name)) return name;
    text.assign(name);
    UpperCase(text);
    return text;
}

}  // namespace

int CellColumn::NumberOf(std::string_view name) {
    const int number = names_.Add(name);
    if (static_cast<std::size_t>(number) == bearers_.size()) bearers_.emplace_back();
    return number;
}

bool CellColumn::Bears(int position, int number) const {
    return name_numbers_[static_cast<std::size_t>(position)] == number;
}

// Learns cells through the first that bears a name: its position, or kNone when no more do.
int CellColumn::LearnUpTo(std::string_view name, const LBScanCell* cells, int count) {
    name_numbers_.reserve(static_cast<std::size_t>(count));
    next_.reserve(static_cast<std::size_t>(count));
    for (int position = Learned(); position < count; ++position) {
        const std::string_view borne = Folded(name_(cells[position]), borne_);
        const int number = NumberOf(borne);
        name_numbers_.push_back(number);
        next_.push_back(position);
        AddLearned(number, position);
        if (borne == name) return position;
    }
    return kNone;
}

void CellColumn::Forget() {
    names_.Clear();
    bearers_.clear();
    name_numbers_.clear();
    next_.clear();
    heaps_.clear();
    renamings_ = 0;
}

void CellColumn::Renamed(const LBScanCell* cells, int position) noexcept {
    if (position >= Learned()) return;
    try {
        const std::string_view name = Folded(name_(cells[position]), borne_);
        int& borne = name_numbers_[static_cast<std::size_t>(position)];
        if (names_.Is(borne, name)) return;
        if (++renamings_ > 4 * name_numbers_.size()) return Forget();
        borne = NumberOf(name);
        AddRenamed(borne, position);
    } catch (...) {
        Forget();
    }
}

void CellColumn::AddLearned(int number, int position) {
    int& highest = bearers_[static_cast<std::size_t>(number)].learned;
    if (highest != kNone) {
        std::swap(next_[static_cast<std::size_t>(highest)],
                  next_[static_cast<std::size_t>(position)]);
    }
    highest = position;
}

void CellColumn::AddRenamed(int number, int position) {
    int& renamed = bearers_[static_cast<std::size_t>(number)].renamed;
    if (renamed == kNone || renamed == position || (renamed >= 0 && !Bears(renamed, number))) {
        renamed = position;
        return;
    }
    if (renamed >= 0) {
        heaps_.push_back({renamed});
        renamed = kFirstHeap - static_cast<int>(heaps_.size() - 1);
    }
    Heap& heap = HeapOf(renamed);
    heap.push_back(position);
    std::push_heap(heap.begin(), heap.end(), std::greater<>());
}

CellColumn::Heap& CellColumn::HeapOf(int renamed) {
    return heaps_[static_cast<std::size_t>(kFirstHeap - renamed)];
}

// The lowest of the cells that were learned under a name and still bear it.
int CellColumn::FirstLearned(int number) {
    int& highest = bearers_[static_cast<std::size_t>(number)].learned;
    while (highest != kNone) {
        int& lowest = next_[static_cast<std::size_t>(highest)];
        if (Bears(lowest, number)) return lowest;
        if (lowest == highest) {
            highest = kNone;
        } else {
            lowest = next_[static_cast<std::size_t>(lowest)];
        }
    }
    return kNone;
}

// The lowest of the cells that have got a name since and still bear it.
int CellColumn::FirstRenamed(int number) {
    const int renamed = bearers_[static_cast<std::size_t>(number)].renamed;
    if (renamed == kNone) return kNone;
    if (renamed >= 0) return Bears(renamed, number) ? renamed : kNone;
    Heap& heap = HeapOf(renamed);
    while (!heap.empty()) {
        if (Bears(heap.front(), number)) return heap.front();
        std::pop_heap(heap.begin(), heap.end(), std::greater<>());
        heap.pop_back();
    }
    return kNone;
}

int CellColumn::First(std::string_view name, const LBScanCell* cells, int count) {
    // Learning a table costs as much as some walks over it.
    constexpr int kWalks = 8;
    if (walks_ < kWalks) {
        ++walks_;
        return Walk(name_, name, cells, count);
    }
    try {
        const std::string_view sought = Folded(name, sought_);
        if (const int number = names_.Find(sought); number != NameTable::kNone) {
            const int learned = FirstLearned(number);
            const int renamed = FirstRenamed(number);
            if (learned != kNone && renamed != kNone) return std::min(learned, renamed);
            if (learned != kNone || renamed != kNone) return std::max(learned, renamed);
        }
        return LearnUpTo(sought, cells, count);
    } catch (...) {
        Forget();
        return Walk(name_, name, cells, count);
    }
}

CellIndex::CellIndex() : pin_names_(PinName), original_names_(OriginalName) {}

std::string_view CellIndex::PinName(const LBScanCell& cell) { return cell.pin_name_.View(); }

std::string_view CellIndex::OriginalName(const LBScanCell& cell) {
    return cell.original_pin_name_.View();
}

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
