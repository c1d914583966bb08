// Rules about the fields of one cell.

#include "bsdl/checks.h"
#include "bsdl/nearest_name.h"
#include "support/text_view.h"

#include <algorithm>
#include <string>

namespace bscan::detail {
namespace {

constexpr std::string_view kFunctions[] = {"input",    "clock",   "output2",
                                           "output3",  "control", "controlr",
                                           "internal", "bidir",   "observe_only"};

constexpr int kPlainFields = 4;
constexpr int kInputFields = 5;   // with what an input shows when nothing drives it; since 2013
constexpr int kDriverFields = 7;  // with a control cell

bool DrivesWithControl(CellFunction function) {
    return function == OUTPUT3 || function == BIDIR || function == BIDIR_OUT;
}

class FieldCheck {
public:
    explicit FieldCheck(Checks& checks) : checks_(checks) {
        for (const Word& use : checks.facts.use_clauses) {
            constexpr std::string_view kStandard = "STD_";
            if (!EqualIgnoringCase(use.text.substr(0, kStandard.size()), kStandard)) {
                has_user_package_ = true;
            }
        }
    }

    void Check(const Cell& cell) {
        if (!CheckCount(cell)) return;
        CheckType(cell);
        CheckFunction(cell);
        if (!EqualIgnoringCase(cell.safe_word.text, "X")) {
            CheckValue(cell, Rule::kCellSafe, cell.safe, cell.safe_word, "safe value", "0, 1 or X");
        }
        if (cell.field_count == kDriverFields) CheckDriver(cell);
        if (cell.field_count == kPlainFields && DrivesWithControl(cell.function)) {
            checks_.found.Add(Rule::kControlMissing, cell.function_word,
                              "the cell " + Quoted(cell.entry) + " is " +
                                  Quoted(cell.function_word) + ", but names no control cell",
                              "add the control cell, its disable value and the result, such as "
                              "`12, 1, Z`");
        }
    }

private:
    bool CheckCount(const Cell& cell) {
        const int count = cell.field_count;
        if (count == kPlainFields || count == kDriverFields) return true;
        if (count == kInputFields && checks_.edition == Edition::k2013) return true;
        checks_.found.Add(Rule::kCellFields, cell.entry,
                          "the entry of cell " + Quoted(cell.entry) + " has " +
                              Counted(static_cast<std::size_t>(count), "field"),
                          "write four: cell type, port, function, safe value; or seven, with the "
                          "control cell, its disable value and the result");
        return false;
    }

    void CheckType(const Cell& cell) {
        // Neighbours have the same type mostly.
        if (cell.type.text == known_type_ || has_user_package_ || !cell.type.Exists()) return;
        if (IsStandardType(cell.type.text)) {
            known_type_ = cell.type.text;
            return;
        }
        if (types_.Has(cell.type.text)) return;
        types_.Add(cell.type.text);
        checks_.found.Add(Rule::kCellType, cell.type,
                          Quoted(cell.type) +
                              " is no cell of the standard, and no package of the "
                              "user's is named",
                          "write one of BC_0 to BC_10, or the use clause of its package");
    }

    static bool IsStandardType(std::string_view type) {
        if (type.size() < 4 || type[2] != '_') return false;
        const std::string_view family = type.substr(0, 2);
        const std::string_view rest = type.substr(3);
        const bool analog = EqualIgnoringCase(family, "AC");
        if (!analog && !EqualIgnoringCase(family, "BC")) return false;
        if (analog && (EqualIgnoringCase(rest, "SELX") || EqualIgnoringCase(rest, "SELU"))) {
            return true;
        }
        return rest.find_first_not_of("0123456789") == std::string_view::npos &&
               DecimalValue(rest) <= 10;
    }

    void CheckFunction(const Cell& cell) {
        if (cell.function != FUNCTION_NONE || !cell.function_word.Exists()) return;
        NearestName nearest(cell.function_word.text);
        for (const std::string_view name : kFunctions) nearest.Try(name);
        checks_.found.Add(Rule::kCellFunction, cell.function_word,
                          "the function " + Quoted(cell.function_word) + " of cell " +
                              Quoted(cell.entry) + " is unknown",
                          nearest.Result().empty() ? "" : "write " + Quoted(nearest.Result()));
    }

    // A value that the language does not have has been read as X.
    void CheckValue(const Cell& cell, Rule rule, eSignal value, const Word& word, const char* field,
                    const char* choice) {
        if (value != SIG_X || !word.Exists()) return;
        checks_.found.Add(rule, word,
                          std::string("the ") + field + " " + Quoted(word) + " of cell " +
                              Quoted(cell.entry) + " is none",
                          std::string("write ") + choice);
    }

    void CheckDriver(const Cell& cell) {
        CheckValue(cell, Rule::kCellDisableValue, cell.disable_value, cell.disable_value_word,
                   "disable value", "0 or 1");
        CheckValue(cell, Rule::kCellDisableResult, cell.disable_result, cell.disable_result_word,
                   "disable result", "Z, WEAK0, WEAK1, PULL0, PULL1 or KEEPER");
        const bool drives = DrivesWithControl(cell.function) || cell.function == OUTPUT2 ||
                            cell.function == FUNCTION_NONE;
        if (drives) return;
        checks_.found.Add(Rule::kControlUnneeded, cell.function_word,
                          "the cell " + Quoted(cell.entry) + " is " + Quoted(cell.function_word) +
                              ", but names the control cell " + Quoted(cell.control_word),
                          "write `output3` or `bidir`, or leave out the last three fields");
    }

    Checks& checks_;
    bool has_user_package_ = false;
    std::string_view known_type_;
    NameIndex types_;  // unknown ones that were told
};

}  // namespace

void CheckCellFields(Checks& checks) {
    FieldCheck check(checks);
    for (const Cell& cell : checks.facts.cells) check.Check(cell);
}

}  // namespace bscan::detail
