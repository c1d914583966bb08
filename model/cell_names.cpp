#include "model/cell_names.h"

#include <bscan/boundary_cell.h>

#include "support/text_view.h"

#include <new>

namespace bscan::detail {
namespace {

std::string InUpperCase(std::string_view name) {
    std::string text(name);
    UpperCase(text);
    return text;
}

}  // namespace

int CellsByName::First(std::string_view name) const {
    const int number = names_.Find(InUpperCase(name));
    if (number == NameTable::kNone) return -1;
    const std::set<int>& positions = positions_[static_cast<std::size_t>(number)];
    return positions.empty() ? -1 : *positions.begin();
}

void CellsByName::Add(std::string_view name, int position) {
    if (name.empty()) return;
    const auto number = static_cast<std::size_t>(names_.Add(InUpperCase(name)));
    if (number >= positions_.size()) positions_.resize(number + 1);
    std::set<int>& positions = positions_[number];
    positions.insert(positions.end(), position);  // the end is a hint: most belong there
}

void CellsByName::Remove(std::string_view name, int position) {
    if (name.empty()) return;
    positions_[static_cast<std::size_t>(names_.Find(InUpperCase(name)))].erase(position);
}

void CellNames::SetTable(const LBScanCell* cells, int count) {
    cells_ = cells;
    count_ = count;
    Forget();
}

int CellNames::WithPinName(std::string_view name) {
    return First(pin_names_, &LBScanCell::pin_name_, name);
}

int CellNames::WithOriginalName(std::string_view name) {
    return First(original_names_, &LBScanCell::original_pin_name_, name);
}

int CellNames::First(const CellsByName& names, Name kind, std::string_view sought) {
    if (sought.empty()) return Walk(kind, sought);
    try {
        Learn();
        return names.First(sought);
    } catch (const std::bad_alloc&) {
        return Walk(kind, sought);
    }
}

int CellNames::Walk(Name kind, std::string_view sought) const {
    for (int position = 0; position < count_; ++position) {
        if (EqualIgnoringCase(cells_[position].*kind, sought)) return position;
    }
    return -1;
}

void CellNames::Learn() {
    if (learned_) return;
    Forget();  // what a failed attempt has left
    for (int position = 0; position < count_; ++position) {
        pin_names_.Add(cells_[position].pin_name_, position);
        original_names_.Add(cells_[position].original_pin_name_, position);
    }
    learned_ = true;
}

void CellNames::Forget() {
    learned_ = false;
    pin_names_ = {};
    original_names_ = {};
}

int CellNames::PositionOf(const LBScanCell& cell) const { return static_cast<int>(&cell - cells_); }

void CellNames::Remove(const LBScanCell& cell) noexcept {
    if (!learned_) return;
    try {
        pin_names_.Remove(cell.pin_name_, PositionOf(cell));
        original_names_.Remove(cell.original_pin_name_, PositionOf(cell));
    } catch (const std::bad_alloc&) {
        Forget();
    }
}

void CellNames::Add(const LBScanCell& cell) noexcept {
    if (!learned_) return;
    try {
        pin_names_.Add(cell.pin_name_, PositionOf(cell));
        original_names_.Add(cell.original_pin_name_, PositionOf(cell));
    } catch (const std::bad_alloc&) {
        Forget();
    }
}

}  // namespace bscan::detail
