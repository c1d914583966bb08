// Finding boundary-scan cells by their names without walking over the cell table.
#pragma once

#include "support/name_table.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

class LBScanCell;

namespace bscan::detail {

// The positions of cells by one kind of their names, letter case ignored.
class CellsByName {
public:
    // The lowest position of a cell of that name; -1 without one.
    int First(std::string_view name) const;
    void Add(std::string_view name, int position);
    void Remove(std::string_view name, int position);

private:
    NameTable names_;                       // in upper case
    std::vector<std::set<int>> positions_;  // by the number of the name
};

// The cells of one table by both of their names. It learns them at the first lookup and
// hears of each change from then on. When memory is short it forgets them, and a lookup walks.
class CellNames {
public:
    // A fresh table, which takes the place of the one before.
    void SetTable(const LBScanCell* cells, int count);

    // Positions as CellsByName::First gives them.
    int WithPinName(std::string_view name);
    int WithOriginalName(std::string_view name);

    // A cell of the table that gets other names is removed before and added after.
    void Remove(const LBScanCell& cell) noexcept;
    void Add(const LBScanCell& cell) noexcept;

private:
    using Name = std::string LBScanCell::*;

    int First(const CellsByName& names, Name kind, std::string_view sought);
    int Walk(Name kind, std::string_view sought) const;
    void Learn();
    void Forget();
    int PositionOf(const LBScanCell& cell) const;

    const LBScanCell* cells_ = nullptr;
    int count_ = 0;
    bool learned_ = false;
    CellsByName pin_names_;
    CellsByName original_names_;
};

}  // namespace bscan::detail
