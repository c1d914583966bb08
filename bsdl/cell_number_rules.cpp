// Rules about the numbers of the cells: one entry for each from 0 to below BOUNDARY_LENGTH.

#include "bsdl/checks.h"
#include "bsdl/number.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

bool Observes(CellFunction function) {
    return function == INPUT || function == CLOCK || function == OBSERVE_ONLY ||
           function == BIDIR_IN;
}

// One cell may serve two ports: it observes one and drives the other, or its driver.
bool AreMerged(const Cell& one, const Cell& other) {
    const bool unknown = one.function == FUNCTION_NONE || other.function == FUNCTION_NONE;
    return unknown || Observes(one.function) != Observes(other.function);
}

class NumberCheck {
public:
    NumberCheck(Checks& checks, const CellTable& table)
        : checks_(checks),
          table_(table),
          told_(checks.facts.cells.size(), false),
          length_(checks.facts.boundary_length) {}

    void Run() {
        SettleLength();
        if (table_.IsPlain() && table_.Size() == length_) return;
        if (!checks_.doubts.cells) CheckHoles();
        CheckOutside();
        CheckTwice();
    }

private:
    const std::vector<Cell>& Cells() const { return checks_.facts.cells; }

    bool HasTwice() const {
        for (const Cell& cell : Cells()) {
            const Cell* next = table_.Next(cell);
            if (next != nullptr && !AreMerged(cell, *next)) return true;
        }
        return false;
    }

    // Cells without a gap are believed rather than the length, unless one stands twice, which
    // may have been meant as the one that is missing at the end.
    void SettleLength() {
        const int complete = table_.IsComplete() ? table_.Size() : 0;
        const Word& word = checks_.facts.boundary_length_word;
        if (!word.Exists()) {
            length_ = table_.Size();
            ReportNoLength();
        } else if (!ParseInteger(word.text)) {
            length_ = table_.Size();  // told already
        } else if (complete > 0 && complete != length_ && !checks_.doubts.cells &&
                   !(complete + 1 == length_ && HasTwice())) {
            checks_.found.Add(Rule::kBoundaryLength, word,
                              "BOUNDARY_LENGTH is " + Quoted(word) + ", but the cells are 0 to " +
                                  std::to_string(complete - 1),
                              "write `" + std::to_string(complete) + "`");
            length_ = complete;
        }
        checks_.boundary_length = length_;
    }

    void ReportNoLength() {
        if (checks_.doubts.statements || checks_.doubts.cells) return;
        const bool has_cells = !Cells().empty();
        if (!has_cells && !checks_.facts.register_attribute.Exists()) {
            checks_.found.Add(Rule::kBoundaryMissing, checks_.facts.entity,
                              "the file describes no boundary register",
                              "write BOUNDARY_LENGTH and BOUNDARY_REGISTER");
            return;
        }
        checks_.found.Add(Rule::kBoundaryLengthMissing,
                          has_cells ? checks_.facts.register_attribute : checks_.facts.entity,
                          "the file has no BOUNDARY_LENGTH",
                          has_cells ? "write `attribute BOUNDARY_LENGTH of " +
                                          std::string(checks_.facts.entity.text) + " : entity is " +
                                          std::to_string(length_) + ";`"
                                    : "");
    }

    bool IsHole(int number) const { return table_.First(number) == nullptr; }
    bool IsOutside(const Cell& cell) const { return cell.number >= length_; }

    // A hole is filled by an entry with a wrong number, or it is missing from the file. One whose
    // number cannot be read has been told.
    void CheckHoles() {
        std::size_t unreadable = table_.UnreadableCount();
        constexpr int kMostHoles = 1000;  // far more than the findings that are kept
        int holes = 0;
        for (int number = 0; number < length_ && holes < kMostHoles; ++number) {
            if (!IsHole(number)) continue;
            ++holes;
            if (unreadable > 0) {
                --unreadable;
                continue;
            }
            if (const Cell* cell = Misnumbered(number)) {
                ReportMisnumbered(*cell, number);
                continue;
            }
            int last = number;
            while (last + 1 < length_ && IsHole(last + 1)) ++last;
            ReportMissing(number, last);
            number = last;
        }
    }

    // The entry that stands where the missing one would, and has the number of another.
    const Cell* Misnumbered(int hole) {
        const Cell* best = nullptr;
        int best_gain = 0;
        for (const int neighbour : {hole - 1, hole + 1}) {
            int left = 4;  // entries of one number; more of them tell nothing
            for (const Cell* entry = table_.First(neighbour); entry != nullptr && left-- > 0;
                 entry = table_.Next(*entry)) {
                const std::size_t at = IndexOf(*entry);
                for (std::size_t i = at > 0 ? at - 1 : 0; i <= at + 1 && i < Cells().size(); ++i) {
                    const int gain = MayBeWrong(Cells()[i]) ? GainOf(Cells()[i], hole) : 0;
                    if (gain > best_gain) best = &Cells()[i];
                    best_gain = std::max(gain, best_gain);
                }
            }
        }
        return best != nullptr ? best : NextStray();
    }

    std::size_t IndexOf(const Cell& cell) const {
        return static_cast<std::size_t>(&cell - Cells().data());
    }

    // Whether an entry can be one with a wrong number: outside, or of a number that stands twice.
    bool MayBeWrong(const Cell& cell) const {
        if (cell.number < 0 || told_[IndexOf(cell)]) return false;
        const Cell* first = table_.First(cell.number);
        return IsOutside(cell) || (first != nullptr && table_.Next(*first) != nullptr);
    }

    // How much better an entry would fit in its place with the number of a hole than with its own.
    int GainOf(const Cell& cell, int hole) const {
        return FitOf(IndexOf(cell), hole) - FitOf(IndexOf(cell), cell.number);
    }

    // How many of the entries before and behind a place have a neighbouring number.
    int FitOf(std::size_t at, int number) const {
        int fit = 0;
        if (at > 0 && std::abs(Cells()[at - 1].number - number) == 1) ++fit;
        if (at + 1 < Cells().size() && std::abs(Cells()[at + 1].number - number) == 1) ++fit;
        return fit;
    }

    // The next entry that has a wrong number wherever it stands.
    const Cell* NextStray() {
        for (; stray_ < Cells().size(); ++stray_) {
            const Cell& cell = Cells()[stray_];
            if (cell.number < 0 || told_[stray_]) continue;
            if (IsOutside(cell) || IsSecond(cell)) return &cell;
        }
        return nullptr;
    }

    // Whether an entry has the number of an earlier one, without being merged with it.
    bool IsSecond(const Cell& cell) const {
        const Cell* first = table_.First(cell.number);
        return first != nullptr && first != &cell && !AreMerged(*first, cell);
    }

    void ReportMisnumbered(const Cell& cell, int hole) {
        told_[IndexOf(cell)] = true;
        const std::string number = Quoted(cell.entry);
        checks_.found.Add(Rule::kCellNumber, cell.entry,
                          IsOutside(cell) ? "the cell " + number + " is outside the register of " +
                                                std::to_string(length_) + " cells, and cell " +
                                                std::to_string(hole) + " is missing"
                                          : "the cell " + number + " stands twice, and cell " +
                                                std::to_string(hole) + " is missing",
                          "write `" + std::to_string(hole) + "`");
    }

    void ReportMissing(int first, int last) {
        if (Cells().empty() && checks_.doubts.statements) return;
        // Where it would have stood: registers are written upwards or downwards.
        const Cell* neighbour = table_.First(last + 1);
        const Cell* below = table_.First(first - 1);
        if (neighbour == nullptr || (below != nullptr && below > neighbour)) neighbour = below;
        const Word& where =
            neighbour != nullptr ? neighbour->entry : checks_.facts.boundary_length_word;
        const bool one = first == last;
        checks_.found.Add(Cells().empty() ? Rule::kBoundaryRegisterMissing : Rule::kCellMissing,
                          where,
                          Cells().empty() ? "the file has no BOUNDARY_REGISTER for the " +
                                                Counted(static_cast<std::size_t>(length_), "cell") +
                                                " of BOUNDARY_LENGTH"
                          : one ? "the cell " + std::to_string(first) + " is missing"
                                : "the cells " + std::to_string(first) + " to " +
                                      std::to_string(last) + " are missing");
    }

    void CheckOutside() {
        for (const Cell& cell : Cells()) {
            if (!IsOutside(cell) || told_[IndexOf(cell)]) continue;
            checks_.found.Add(Rule::kCellOutside, cell.entry,
                              "the cell " + Quoted(cell.entry) + " is outside the register of " +
                                  std::to_string(length_) + " cells");
        }
    }

    void CheckTwice() {
        for (const Cell& cell : Cells()) {
            if (cell.number < 0 || told_[IndexOf(cell)] || IsOutside(cell)) continue;
            const Cell* first = table_.First(cell.number);
            if (!IsSecond(cell) || told_[IndexOf(*first)]) continue;
            checks_.found.Add(Rule::kCellTwice, cell.entry,
                              "the cell " + Quoted(cell.entry) + " stands in line " +
                                  std::to_string(first->entry.line) +
                                  " already, and the two are not merged: one cell can observe one "
                                  "port and drive another, nothing else");
        }
    }

    Checks& checks_;
    const CellTable& table_;
    std::vector<bool> told_;  // by entry: its number has been found wrong
    int length_;
    std::size_t stray_ = 0;
};

}  // namespace

void CheckCellNumbers(Checks& checks, const CellTable& cells) {
    const bool nothing = checks.facts.cells.empty() && checks.facts.boundary_length == 0;
    if (nothing && checks.facts.boundary_length_word.Exists()) return;
    NumberCheck(checks, cells).Run();
}

}  // namespace bscan::detail
