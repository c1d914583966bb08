// Finding boundary-scan cells by their names without walking the cell table.
#pragma once

#include "support/name_table.h"

#include <string_view>
#include <vector>

class LBScanCell;

namespace bscan::detail {

// The cells of a cell table by one of their two names. It is learned after a few lookups, which
// walk, and then kept: every cell stands under each name that it has borne since, and a lookup
// drops those that no longer bear the name. So the answer is always the lowest position that a walk
// would stop at. A lookup looks at no cell: the column knows the name of each.
class CellColumn {
public:
    using Getter = const char* (LBScanCell::*)() const;

    explicit CellColumn(Getter name) : name_(name) {}

    // The lowest position of a cell that bears a name, letter case ignored; -1 without one.
    int First(std::string_view name, const LBScanCell* cells, int count);
    // A cell of the table has a new name.
    void Renamed(const LBScanCell* cells, int position) noexcept;
    void Forget();

private:
    struct Bearers {
        int first = -1;  // lowest of those learned; next_ leads on
        int last = -1;
        int heap = -1;  // of those that got the name since; -1 without any
    };
    using Heap = std::vector<int>;  // the lowest position on top

    void Learn(const LBScanCell* cells, int count);
    std::string_view Folded(std::string_view name);
    // Lets a cell bear a name, and tells the number of the name.
    int Bear(std::string_view name, int position);
    int FirstLearned(int number);
    int FirstRenamed(int number);

    Getter name_;
    bool known_ = false;
    int walks_ = 0;  // lookups before it was learned
    NameTable names_;
    std::vector<Bearers> bearers_;   // by the number of the name
    std::vector<int> name_numbers_;  // by position
    std::vector<int> next_;          // by position: the next cell that was learned under the name
    std::vector<Heap> heaps_;
    std::size_t renamings_ = 0;  // since the column was learned; too many and it is learned anew
    std::string folded_;
};

// Both columns, and the cells they are about.
class CellIndex {
public:
    CellIndex();

    void SetTable(const LBScanCell* cells, int count);

    int WithPinName(std::string_view name);
    int WithOriginalName(std::string_view name);

    // What a cell tells of itself.
    void PinNameSet(const LBScanCell& cell) noexcept;
    void OriginalNameSet(const LBScanCell& cell) noexcept;

private:
    int PositionOf(const LBScanCell& cell) const;

    const LBScanCell* cells_ = nullptr;
    int count_ = 0;
    CellColumn pin_names_;
    CellColumn original_names_;
};

}  // namespace bscan::detail
