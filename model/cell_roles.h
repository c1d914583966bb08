// What cell functions and port modes mean for each other.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/object_list.h>
#include <bscan/signal.h>

#include <optional>
#include <string_view>

namespace bscan::detail {

// The cells of a port element by their roles; null where it has none.
struct CellRoles {
    LBScanCell* input = nullptr;    // the first that can receive
    LBScanCell* output = nullptr;   // the first that can drive
    LBScanCell* control = nullptr;  // the control cell of the last that can drive
    LBScanCell* observe = nullptr;  // the first that only observes
};

// A level as a cell's bit holds it: SIG_1, or SIG_0 for everything else.
inline eSignal BitOf(eSignal level) { return level == SIG_1 ? SIG_1 : SIG_0; }

// What the output cell of a driver that is off holds: the level that its disable result pulls the
// pin to, SIG_0 when it pulls to none.
inline eSignal IdleBit(eSignal disable_result) {
    return disable_result == SIG_PULL1 || disable_result == SIG_WEAK1 ? SIG_1 : SIG_0;
}

// The roles in a list of cells, which may be null.
CellRoles PickRoles(const LObjList* cells);

// Lets a port of some mode receive, or drive, through its cells: 0, or -1 when one that it needs is
// missing.
int Receive(PortType mode, const CellRoles& roles, eSignal level);
int Drive(PortType mode, const CellRoles& roles, eSignal level);

// Receives for PORT_IN and drives for PORT_OUT where the mode allows it; else -1.
int Request(PortType mode, const CellRoles& roles, PortType direction, eSignal level);

// Whether a port of this mode can be served by a cell of this function.
bool Accepts(PortType mode, CellFunction function);

// The mode that a text names; `otherwise` for any other text.
PortType ModeFromText(std::string_view text, PortType otherwise);

// The function that a text names, letter case ignored; none for any other text.
std::optional<CellFunction> FunctionFromText(std::string_view text);

// The cell type that a text names, letter case ignored.
CellType CellTypeFromText(std::string_view text);

}  // namespace bscan::detail
