#include "oracle.h"

#include <set>

namespace bscan::test {

namespace {

std::string FindCellFault(BScanPinMap& map) {
    const int length = map.GetBScanLength();
    const LBScanCell* const table = map.GetBScanCellTable();
    if (length > 0 && (!table || !map.GetBScanBitArray())) return "no cells or no bits";
    std::set<const LPinNode*> nodes = {nullptr};
    for (int i = 0; i < map.GetNumberOfPins(); ++i) nodes.insert(NodeAt(map, i));
    for (int n = 0; n < length; ++n) {
        const int position = table[n].GetBoundaryCellPosition();
        const LBScanCell* const control = table[n].GetControlCell();
        const char* const fault = position != n && position != -1 ? " is at another position"
                                  : control && (control < table || control >= table + length)
                                      ? " has a control cell outside the table"
                                  : nodes.count(table[n].GetPinNode()) == 0 ? " is of no port"
                                                                            : nullptr;
        if (fault) return "cell " + std::to_string(n) + fault;
    }
    for (int n = length; n % 8 != 0; ++n) {
        if (BitAt(map, n)) return "a bit past the register is set";
    }
    return {};
}

/// Whether the bits of a port, just updated, are the values of its cells.
std::string FindPortCellFault(BScanPinMap& map, const LPinNode& node) {
    for (const LBScanCell* cell : RolesOf(node).All()) {
        const int n = cell ? cell->GetBoundaryCellPosition() : -1;
        if (n >= 0 && BitAt(map, n) != (cell->cellValue == SIG_1)) {
            return "bit " + std::to_string(n) + " is not the value of its cell";
        }
    }
    const LObjList* const cells = node.GetBScanCells();
    for (int i = 0; cells && i < cells->GetCount(); ++i) {
        const auto at = static_cast<LBScanCell*>(cells->GetAt(i)) - map.GetBScanCellTable();
        if (at < 0 || at >= map.GetBScanLength()) return "a port lists a cell outside the table";
    }
    return {};
}

std::string BitsOf(BScanPinMap& map) {
    const auto* const bits = reinterpret_cast<const char*>(map.GetBScanBitArray());
    return bits ? std::string(bits, static_cast<std::size_t>(map.GetBScanLength() + 7) / 8) : "";
}

std::string FindDriveFault(BScanPinMap& map, int pin, PortType direction, eSignal level) {
    const std::string before = BitsOf(map);
    const int result = map.setPort(pin, direction, level);
    map.GetPortValue(pin);
    map.GetPortDirection(pin);
    const LPinNode* const node = map.GetPort(pin);
    if (!node) return result == kFailed ? "" : "an unknown pin was driven";
    const RoleCells roles = RolesOf(*node);
    // Without an entry of its own a control cell has no bit, and the drive fails late.
    const bool late = roles.control && roles.control->GetBoundaryCellPosition() < 0;
    if (result != kOk && !late && BitsOf(map) != before) return "a failed drive changed a bit";
    if (result == kOk && direction == PORT_OUT && map.HasBScanCell(pin) &&
        (roles.output->cellValue == SIG_1) != (level == SIG_1)) {
        return "a driven port is not at its level";
    }
    return {};
}

}  // namespace

RoleCells RolesOf(const LPinNode& node) {
    RoleCells roles;
    const LObjList* const cells = node.GetBScanCells();
    for (int i = 0; cells && i < cells->GetCount(); ++i) {
        auto* const cell = static_cast<LBScanCell*>(cells->GetAt(i));
        if (!cell) continue;
        const CellFunction f = cell->GetFunction();
        const bool drives = f == OUTPUT2 || f == OUTPUT3 || f == BIDIR_OUT || f == BIDIR;
        if ((f == INPUT || f == BIDIR_IN || f == BIDIR) && !roles.input) roles.input = cell;
        if (drives && !roles.output) roles.output = cell;
        if (drives) roles.control = cell->GetControlCell();
        if (f == OBSERVE_ONLY && !roles.observe) roles.observe = cell;
    }
    return roles;
}

LBScanCell* WalkToCell(const BScanPinMap& map, const char* (LBScanCell::*name)() const,
                       const char* sought) {
    LBScanCell* const table = map.GetBScanCellTable();
    LBScanCell* const end = table + map.GetBScanLength();
    LBScanCell* const found = std::find_if(
        table, end, [&](const LBScanCell& cell) { return stricmp((cell.*name)(), sought) == 0; });
    return found == end ? nullptr : found;
}

std::string FindFault(BScanParser& parser) {
    BScanPinMap* const map = parser.GetPinMap();
    if (!map) return {};
    std::string fault = FindCellFault(*map);
    for (int i = 0; i < map->GetNumberOfPins() && fault.empty(); ++i) {
        LPinNode* const node = NodeAt(*map, i);
        map->UpdateBScanBitArray(node);
        fault = FindPortCellFault(*map, *node);
    }
    return fault;
}

std::string FindDriveFault(BScanParser& parser) {
    BScanPinMap* const map = parser.GetPinMap();
    if (!map) return {};
    for (int pin = -1; pin <= map->GetNumberOfPins() + 1; ++pin) {
        for (const PortType direction : {PORT_OUT, PORT_IN, PORT_INOUT}) {
            for (const eSignal level : {SIG_1, SIG_0, SIG_Z}) {
                const std::string fault = FindDriveFault(*map, pin, direction, level);
                if (!fault.empty()) return fault;
            }
        }
        map->setPort(pin, PORT_NONE, SIG_X, true);
    }
    map->ResetAllPort();
    const bool cleared = BitsOf(*map).find_first_not_of('\0') == std::string::npos;
    return cleared ? "" : "a bit is left after the reset";
}

std::string FindPortFault(const BScanPinMap* part, const BScanPinMap* whole) {
    std::string cut = Ports(part) + ' ';
    std::string full = Ports(whole) + ' ';
    strupr(cut.data());
    strupr(full.data());
    return !part || cut == " " || full.starts_with(cut) ? "" : "a cut file has other ports";
}

}  // namespace bscan::test
