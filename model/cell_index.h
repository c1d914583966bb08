// Finding boundary-scan cells by their names without walking the cell table.
#pragma once

#include "support/name_table.h"

#include <string_view>
#include <vector>

class LBScanCell;

namespace bscan::detail {

// The cells of a cell table by one of their two names. After a few lookups, which walk, it learns
// the cells from the first one on, as far as lookups have to go, and keeps what it has learned. A
// cell stands under each name that it gets; under one that it no longer bears, until a lookup or
// another cell comes upon it there. So the answer is always the lowest position that a walk would
// stop at. A lookup looks at no cell again: the column knows the name of each.
class CellColumn {
public:
    using Getter = std::string_view (*)(const LBScanCell& cell);

    explicit CellColumn(Getter name) : name_(name) {}

    // The lowest position of a cell that bears a name, letter case ignored; -1 without one.
    int First(std::string_view name, const LBScanCell* cells, int count);
    // A cell of the table has a new name.
    void Renamed(const LBScanCell* cells, int position) noexcept;
    void Forget();

private:
    static constexpr int kNone = -1;
    static constexpr int kFirstHeap = -2;

    // The cells under one name.
    struct Bearers {
        int learned = kNone;  // the highest of those learned; next_ leads from it to the lowest
        int renamed = kNone;  // one that got the name since; from kFirstHeap down, a heap of them
    };
    using Heap = std::vector<int>;  // the lowest position on top

    int Learned() const { return static_cast<int>(name_numbers_.size()); }
    int LearnUpTo(std::string_view name, const LBScanCell* cells, int count);
    // The number of the name of a cell.
    int NumberOf(std::string_view name);
    bool Bears(int position, int number) const;
    void AddLearned(int number, int position);
    void AddRenamed(int number, int position);
    Heap& HeapOf(int renamed);
    int FirstLearned(int number);
    int FirstRenamed(int number);

    Getter name_;
    int walks_ = 0;  // lookups before it began to learn
    NameTable names_;
    std::vector<Bearers> bearers_;   // by the number of the name
    std::vector<int> name_numbers_;  // by position, of the cells that it has learned
    std::vector<int> next_;          // by position: the next cell that was learned under the name
    std::vector<Heap> heaps_;
    std::size_t renamings_ = 0;  // since the column was learned; too many and it is learned anew
    std::string sought_;
    std::string borne_;
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
    static std::string_view PinName(const LBScanCell& cell);
    static std::string_view OriginalName(const LBScanCell& cell);
    int PositionOf(const LBScanCell& cell) const;

    const LBScanCell* cells_ = nullptr;
    int count_ = 0;
    CellColumn pin_names_;
    CellColumn original_names_;
};

}  // namespace bscan::detail
