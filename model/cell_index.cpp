#include "model/cell_index.h"

#include <bscan/boundary_cell.h>

#include "support/text_view.h"

#include <algorithm>
#include <functional>

namespace bscan::detail {
namespace {

int Walk(CellColumn::Name name, std::string_view sought, const LBScanCell* cells, int count) {
    for (int position = 0; position < count; ++position) {
        if (EqualIgnoringCase((cells[position].*name)(), sought)) return position;
    }
    return -1;
}

}  // namespace

CellColumn::Bearers& CellColumn::Under(std::string_view name) {
    folded_.assign(name);
    LowerCase(folded_);
    const auto number = static_cast<std::size_t>(names_.Add(folded_));
    if (number == bearers_.size()) bearers_.emplace_back();
    return bearers_[number];
}

bool CellColumn::Bears(const LBScanCell& cell, std::string_view folded) const {
    return EqualIgnoringCase((cell.*name_)(), folded);
}

void CellColumn::Learn(const LBScanCell* cells, int count) {
    Forget();
    next_.assign(static_cast<std::size_t>(count), -1);
    for (int position = 0; position < count; ++position) {
        Bearers& bearers = Under((cells[position].*name_)());
        (bearers.last < 0 ? bearers.first : next_[static_cast<std::size_t>(bearers.last)]) =
            position;
        bearers.last = position;
    }
    known_ = true;
}

void CellColumn::Forget() {
    known_ = false;
    renamed_ = 0;
    names_.Clear();
    bearers_.clear();
    next_.clear();
}

void CellColumn::Renamed(const LBScanCell* cells, int position) noexcept {
    if (!known_) return;
    if (++renamed_ > 4 * next_.size()) return Forget();
    try {
        std::vector<int>& later = Under((cells[position].*name_)()).later;
        later.push_back(position);
        std::push_heap(later.begin(), later.end(), std::greater<>());
    } catch (...) {
        Forget();
    }
}

int CellColumn::First(std::string_view name, const LBScanCell* cells, int count) {
    try {
        if (!known_) Learn(cells, count);
        folded_.assign(name);
        LowerCase(folded_);
    } catch (...) {
        Forget();
        return Walk(name_, name, cells, count);
    }
    const int number = names_.Find(folded_);
    if (number == NameTable::kNone) return -1;
    Bearers& bearers = bearers_[static_cast<std::size_t>(number)];
    if (renamed_ == 0) return bearers.first;
    int& first = bearers.first;
    while (first >= 0 && !Bears(cells[first], folded_)) {
        first = next_[static_cast<std::size_t>(first)];
    }
    std::vector<int>& later = bearers.later;
    while (!later.empty() && !Bears(cells[later.front()], folded_)) {
        std::pop_heap(later.begin(), later.end(), std::greater<>());
        later.pop_back();
    }
    if (later.empty()) return first;
    return first < 0 ? later.front() : std::min(first, later.front());
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
