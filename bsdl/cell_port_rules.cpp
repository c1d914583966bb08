// Rules about cells and their ports: which functions a port's mode allows.

#include <bscan/limits.h>

#include "bsdl/checks.h"

#include <algorithm>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

constexpr unsigned BitOf(CellFunction function) { return 1U << function; }

constexpr unsigned kInputs = BitOf(INPUT) | BitOf(CLOCK) | BitOf(OBSERVE_ONLY);
constexpr unsigned kOutputs = BitOf(OUTPUT2) | BitOf(OUTPUT3);
constexpr unsigned kBoth = BitOf(BIDIR) | BitOf(BIDIR_IN) | BitOf(BIDIR_OUT);
constexpr unsigned kWithoutPort = BitOf(CONTROL) | BitOf(CONTROLR) | BitOf(INTERNAL);
constexpr unsigned kDrivers = kOutputs | BitOf(BIDIR) | BitOf(BIDIR_OUT);

struct ModeRow {
    PortMode mode;
    unsigned functions;
    const char* name;
};

constexpr ModeRow kModes[] = {
    {PortMode::kIn, kInputs, "in"},
    {PortMode::kOut, kOutputs, "out"},
    {PortMode::kInout, (kInputs & ~BitOf(CLOCK)) | kOutputs | kBoth, "inout"},
    {PortMode::kBuffer, BitOf(OUTPUT2), "buffer"},
};

unsigned FunctionsOf(PortMode mode) {
    for (const ModeRow& row : kModes) {
        if (row.mode == mode) return row.functions;
    }
    return 0;
}

// A cell that only looks at what is there does no harm.
bool IsHarmless(CellFunction function, PortMode mode) {
    const bool both_ways = mode == PortMode::kInout || mode == PortMode::kBuffer;
    return function == OBSERVE_ONLY || (both_ways && (BitOf(function) & kInputs) != 0);
}

// The mode that allows all of some functions.
const char* ModeFor(unsigned functions) {
    for (const ModeRow& row : kModes) {
        if ((functions & ~row.functions) == 0) return row.name;
    }
    return nullptr;
}

class PortCheck {
public:
    explicit PortCheck(Checks& checks) : checks_(checks), uses_(checks.ports.Count()) {}

    void Run() {
        FindElements();
        FindTapPorts();
        for (const Cell& cell : checks_.facts.cells) {
            if (cell.field_count >= 4 || cell.function != FUNCTION_NONE) Look(cell);
        }
        ReportModes();
    }

private:
    // What the register does with a port.
    struct Use {
        unsigned functions = 0;  // a bit for each
        int cells = 0;
        int misfits = 0;               // cells that the mode does not allow
        const Cell* misfit = nullptr;  // the first of them
        const TapPort* tap = nullptr;  // what it is in the TAP
        int first_element = -1;        // of its elements among all; -1 past the ceiling
    };

    Use& UseOf(int port) { return uses_[static_cast<std::size_t>(port)]; }

    void FindElements() {
        std::size_t count = 0;
        for (std::size_t i = 0; i < uses_.size(); ++i) {
            const std::optional<IndexRange>& range = checks_.ports.At(static_cast<int>(i)).range;
            const std::size_t elements = range ? static_cast<std::size_t>(range->Count()) : 1;
            if (elements > kMaxPortElements - count) break;
            uses_[i].first_element = static_cast<int>(count);
            count += elements;
        }
        drivers_.assign(count, nullptr);
    }

    void FindTapPorts() {
        for (const TapPort& tap : checks_.tap_ports) {
            if (!tap.signal->index) UseOf(tap.port).tap = &tap;
        }
    }

    void Look(const Cell& cell) {
        if (!cell.port.port.Exists()) {
            if (cell.function != FUNCTION_NONE && (BitOf(cell.function) & kWithoutPort) == 0) {
                checks_.found.Add(Rule::kCellWithoutPort, cell.entry,
                                  "the cell " + Quoted(cell.entry) + " is " +
                                      Quoted(cell.function_word) + ", but serves no port",
                                  "name its port, or write `internal`");
            }
            return;
        }
        const int port = checks_.ports.ResolveElement(cell.port, kBoundarySubject);
        if (port == PortReferences::kNone || cell.function == FUNCTION_NONE) return;
        if ((BitOf(cell.function) & kWithoutPort) != 0) {
            checks_.found.Add(Rule::kCellWithPort, cell.port.port,
                              "the cell " + Quoted(cell.entry) + " is " +
                                  Quoted(cell.function_word) + " and serves no port, but names " +
                                  Quoted(cell.port),
                              "write `*`");
            return;
        }
        if (const TapPort* tap = UseOf(port).tap) {
            ReportTap(cell, *tap);
            return;
        }
        NoteFunction(cell, port);
        NoteDriver(cell, port);
    }

    // The attribute is wrong where it names a port that is not called like the signal; one that has
    // been told is believed no more.
    void ReportTap(const Cell& cell, const TapPort& tap) {
        if (tap.told) return;
        const std::string message = "the cell " + Quoted(cell.entry) + " serves " +
                                    Quoted(cell.port) + ", which is " + tap.name + " of the TAP";
        if (tap.named_so) {
            checks_.found.Add(Rule::kTapPortInRegister, cell.port.port, message,
                              "TAP ports have no cells");
        } else {
            checks_.found.Add(Rule::kTapPortInRegister, tap.signal->port, message,
                              std::string("name the port that is ") + tap.name);
            UseOf(tap.port).tap = nullptr;
        }
    }

    void NoteFunction(const Cell& cell, int port) {
        Use& use = UseOf(port);
        const PortMode mode = checks_.ports.At(port).mode;
        use.functions |= BitOf(cell.function);
        ++use.cells;
        if (mode == PortMode::kUnknown || (BitOf(cell.function) & FunctionsOf(mode)) != 0) return;
        if (IsHarmless(cell.function, mode)) {
            ReportObserver(cell, checks_.ports.At(port));
            return;
        }
        if (use.misfit == nullptr) use.misfit = &cell;
        ++use.misfits;
    }

    void ReportObserver(const Cell& cell, const Port& port) {
        checks_.found.Add(Rule::kObserverAgainstMode, cell.function_word,
                          "the cell " + Quoted(cell.entry) + " only observes " + Quoted(cell.port) +
                              ", but the function " + Quoted(cell.function_word) +
                              " is none for the mode " + Quoted(port.mode_word));
    }

    void NoteDriver(const Cell& cell, int port) {
        if ((BitOf(cell.function) & kDrivers) == 0) return;
        const Port& declared = checks_.ports.At(port);
        if (UseOf(port).first_element < 0) return;
        auto element = static_cast<std::size_t>(UseOf(port).first_element);
        if (declared.range && cell.port.index) {
            element += static_cast<std::size_t>(*cell.port.index - declared.range->Lowest());
        }
        const Cell*& driver = drivers_[element];
        if (driver != nullptr) ReportSecondDriver(*driver, cell);
        driver = &cell;
    }

    // One without control cell beside one with it was meant to observe.
    void ReportSecondDriver(const Cell& first, const Cell& second) {
        const bool first_is_wrong = first.field_count < second.field_count;
        const Cell& wrong = first_is_wrong ? first : second;
        const Cell& other = first_is_wrong ? second : first;
        checks_.found.Add(Rule::kPortDrivenTwice, wrong.port.port,
                          "the cell " + Quoted(wrong.entry) + " drives " + Quoted(wrong.port) +
                              ", as the cell " + Quoted(other.entry) + " in line " +
                              std::to_string(other.entry.line) + " does");
    }

    // The mode is wrong where another one suits all cells, and several of them speak against it, or
    // one with a control cell, or one that makes a whole with the others; otherwise the cell is.
    bool ModeIsGuilty(const Use& use, const Port& port) const {
        const bool completes = !port.range && use.cells > 1 && use.misfit->function != OUTPUT2;
        const bool strong = use.misfits > 1 || use.misfit->field_count > 4 || completes;
        return strong && ModeFor(use.functions) != nullptr;
    }

    void ReportModes() {
        bool single_cells = false;
        for (std::size_t i = 0; i < uses_.size(); ++i) {
            Use& use = uses_[i];
            if (use.misfits == 0) continue;
            const Port& port = checks_.ports.At(static_cast<int>(i));
            if (!ModeIsGuilty(use, port)) {
                single_cells = true;
                continue;
            }
            checks_.found.Add(Rule::kModeAgainstCells, port.mode_word,
                              "the mode of " + Quoted(port.name) + " is " + Quoted(port.mode_word) +
                                  ", but the cell " + Quoted(use.misfit->entry) + " serves it as " +
                                  Quoted(use.misfit->function_word),
                              std::string("write `") + ModeFor(use.functions) + "`");
            use.misfits = 0;
        }
        if (single_cells) ReportMisfits();
    }

    void ReportMisfits() {
        for (const Cell& cell : checks_.facts.cells) {
            if (cell.function == FUNCTION_NONE) continue;
            const int number = checks_.ports.Find(cell.port.port.text);
            if (number == PortReferences::kNone || UseOf(number).misfits == 0) continue;
            const Port& port = checks_.ports.At(number);
            if (IsHarmless(cell.function, port.mode)) continue;
            if ((BitOf(cell.function) & (FunctionsOf(port.mode) | kWithoutPort)) != 0) continue;
            checks_.found.Add(Rule::kFunctionAgainstMode, cell.function_word,
                              "the function " + Quoted(cell.function_word) + " of cell " +
                                  Quoted(cell.entry) + " does not suit " + Quoted(cell.port) +
                                  ", whose mode is " + Quoted(port.mode_word));
        }
    }

    Checks& checks_;
    std::vector<Use> uses_;             // by port
    std::vector<const Cell*> drivers_;  // by element
};

}  // namespace

void CheckCellPorts(Checks& checks) { PortCheck(checks).Run(); }

}  // namespace bscan::detail
