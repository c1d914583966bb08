// Rules about control cells and the drivers that they turn on and off.

#include "bsdl/checks.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

bool IsControl(const Cell& cell) { return cell.function == CONTROL || cell.function == CONTROLR; }

bool IsBit(eSignal value) { return value == SIG_0 || value == SIG_1; }

class ControlCheck {
public:
    ControlCheck(Checks& checks, const CellTable& table)
        : checks_(checks), table_(table), uses_(static_cast<std::size_t>(table.Size())) {}

    void Run() {
        for (const Cell& cell : checks_.facts.cells) Note(cell);
        if (!is_doubtful_) return;
        for (const Cell& cell : checks_.facts.cells) Check(cell);
    }

private:
    // What is said of a cell number by those that it controls.
    struct Use {
        int drivers = 0;
        int turned_on = 0;  // drivers that its safe value turns on
        bool told = false;
    };

    Use& UseOf(int number) { return uses_[static_cast<std::size_t>(number)]; }

    // The entry of the control cell that a driver names; null when that cell has another function
    // or is missing.
    const Cell* ControlOf(const Cell& driver) const {
        constexpr int kMostEntries = 8;  // of one number; a merged cell has two
        const Cell* entry = table_.First(driver.control);
        for (int i = 0; entry != nullptr && i < kMostEntries; ++i, entry = table_.Next(*entry)) {
            if (IsControl(*entry)) return entry;
        }
        return nullptr;
    }

    static bool NamesControl(const Cell& cell) {
        return cell.field_count == 7 && cell.control >= 0;
    }

    // An open-drain driver turns itself off.
    static bool ControlsItself(const Cell& cell) { return cell.control == cell.number; }

    bool TurnsOn(const Cell& control, const Cell& driver) const {
        return IsBit(control.safe) && driver.disable_value_word.Exists() &&
               IsBit(driver.disable_value) && control.safe != driver.disable_value;
    }

    void Note(const Cell& cell) {
        if (!NamesControl(cell)) return;
        const Cell* control = ControlOf(cell);
        is_doubtful_ |= control == nullptr && !ControlsItself(cell);
        if (table_.First(cell.control) == nullptr) return;
        ++UseOf(cell.control).drivers;
        if (cell.disable_value == SIG_0) ++disabled_by_0_;
        if (cell.disable_value == SIG_1) ++disabled_by_1_;
        if (control == nullptr || !TurnsOn(*control, cell)) return;
        ++UseOf(cell.control).turned_on;
        is_doubtful_ = true;
    }

    void Check(const Cell& cell) {
        if (!NamesControl(cell) || ControlsItself(cell)) return;
        if (table_.First(cell.control) == nullptr) {
            CheckOutside(cell);
        } else if (const Cell* control = ControlOf(cell)) {
            if (TurnsOn(*control, cell)) CheckSafe(*control, cell);
        } else {
            CheckFunction(*table_.First(cell.control), cell);
        }
    }

    // A cell that is missing inside the register has been told.
    void CheckOutside(const Cell& cell) {
        if (cell.control < checks_.boundary_length || checks_.boundary_length == 0) return;
        checks_.found.Add(Rule::kControlOutside, cell.control_word,
                          "the control cell " + Quoted(cell.control_word) + " of cell " +
                              Quoted(cell.entry) + " is outside the register of " +
                              std::to_string(checks_.boundary_length) + " cells");
    }

    // Either the driver names the wrong cell, or the cell that it names has the wrong function.
    void CheckFunction(const Cell& named, const Cell& driver) {
        if (named.function == FUNCTION_NONE) return;  // told already
        Use& use = UseOf(driver.control);
        const bool named_is_guilty =
            use.drivers > 1 || (!named.port.port.Exists() && !HasIdleControl(driver.control));
        if (!named_is_guilty) {
            checks_.found.Add(Rule::kControlIsNone, driver.control_word,
                              "the cell " + Quoted(driver.entry) + " is controlled by " +
                                  Quoted(driver.control_word) + ", whose function is " +
                                  Quoted(named.function_word),
                              "write the number of its control cell");
        } else if (!use.told) {
            use.told = true;
            checks_.found.Add(Rule::kControlIsNone, named.function_word,
                              "the cell " + Quoted(named.entry) + " is " +
                                  Quoted(named.function_word) + ", but the cell " +
                                  Quoted(driver.entry) + " in line " +
                                  std::to_string(driver.entry.line) + " is controlled by it",
                              "write `control`");
        }
    }

    // Whether a control cell near by controls nothing: it may be the one that was meant.
    bool HasIdleControl(int number) {
        constexpr int kNear = 3;
        for (int other = std::max(number - kNear, 0);
             other < std::min(number + kNear + 1, table_.Size()); ++other) {
            const Cell* cell = table_.First(other);
            if (cell != nullptr && IsControl(*cell) && UseOf(other).drivers == 0) return true;
        }
        return false;
    }

    // Either the safe value is wrong, or the disable value of the driver. Other drivers of the same
    // control cell tell, or else what is usual in this register.
    void CheckSafe(const Cell& control, const Cell& driver) {
        Use& use = UseOf(driver.control);
        const bool unusual = driver.disable_value == SIG_0 ? disabled_by_0_ < disabled_by_1_
                                                           : disabled_by_1_ < disabled_by_0_;
        const bool driver_is_guilty = use.turned_on < use.drivers || (use.drivers == 1 && unusual);
        const std::string message = "the safe value " + Quoted(control.safe_word) +
                                    " of control cell " + Quoted(control.entry) +
                                    " turns on the driver of cell " + Quoted(driver.entry) +
                                    ", which " + Quoted(driver.disable_value_word) + " turns off";
        if (driver_is_guilty) {
            checks_.found.Add(Rule::kSafeTurnsOn, driver.disable_value_word, message);
        } else if (!use.told) {
            use.told = true;
            checks_.found.Add(Rule::kSafeTurnsOn, control.safe_word, message,
                              "write " + Quoted(driver.disable_value_word));
        }
    }

    Checks& checks_;
    const CellTable& table_;
    std::vector<Use> uses_;  // by cell number
    std::size_t disabled_by_0_ = 0;
    std::size_t disabled_by_1_ = 0;
    bool is_doubtful_ = false;
};

}  // namespace

void CheckControlCells(Checks& checks, const CellTable& cells) {
    ControlCheck(checks, cells).Run();
}

}  // namespace bscan::detail
