#include "model/cell_index.h"

#include <bscan/boundary_cell.h>

#include "support/text_view.h"

#include <algorithm>
#include <functional>

namespace bscan::detail {
namespace {

int Walk(CellColumn::Getter name, std::string_view sought, const LBScanCell* cells, int count) {
    for (int position = 0; position < count; ++position) {
        if (EqualIgnoringCase(name(cells[position]), sought)) return position;
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
    const int number = names_.Add(name);
    if (static_cast<std::size_t>(number) == bearers_.size()) bearers_.emplace_back();
    name_numbers_[static_cast<std::size_t>(position)] = number;
    return number;
}

void CellColumn::Learn(const LBScanCell* cells, int count) {
    Forget();
    const auto size = static_cast<std::size_t>(count);
    name_numbers_.resize(size);
    next_.resize(size);
    if (mostly_own_) names_.Reserve(size);
    // From the last cell, so that each comes in front of those that it is to lead to.
    for (int position = count - 1; position >= 0; --position) {
        const int number = Bear(Folded(name_(cells[position])), position);
        int& learned = bearers_[static_cast<std::size_t>(number)].learned;
        next_[static_cast<std::size_t>(position)] = learned;
        learned = position;
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

bool CellColumn::Bears(int position, int number) const {
    return name_numbers_[static_cast<std::size_t>(position)] == number;
}

void CellColumn::Renamed(const LBScanCell* cells, int position) noexcept {
    if (!known_) return;
    try {
        const std::string_view name = Folded(name_(cells[position]));
        if (names_.Is(name_numbers_[static_cast<std::size_t>(position)], name)) return;
        if (++renamings_ > 4 * next_.size()) return Forget();
        AddRenamed(Bear(name, position), position);
    } catch (...) {
        Forget();
    }
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
    int& first = bearers_[static_cast<std::size_t>(number)].learned;
    while (first >= 0 && !Bears(first, number)) first = next_[static_cast<std::size_t>(first)];
    return first;
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
    if (number == NameTable::kNone) return kNone;
    const int learned = FirstLearned(number);
    const int renamed = FirstRenamed(number);
    return learned < 0 || renamed < 0 ? std::max(learned, renamed) : std::min(learned, renamed);
}

CellIndex::CellIndex() : pin_names_(PinName, true), original_names_(OriginalName, false) {}

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
