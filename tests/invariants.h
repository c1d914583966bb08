/// @file
/// What holds of a device after any reading and any drive, for tests and fuzz targets alike.
///
/// Each function says in words what does not hold, and nothing when all does.
#pragma once

#include <bscan/bscan.h>

#include "support/read_device.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bscan::test {

inline LPinNode* NodeAt(const BScanPinMap& map, int i) {
    return static_cast<LPinNode*>(map.GetPinListArray()->GetAt(i));
}

/// The cells of a port that its drives and its bits are about.
struct RoleCells {
    LBScanCell* input = nullptr;
    LBScanCell* output = nullptr;
    LBScanCell* control = nullptr;
    LBScanCell* observe = nullptr;
};

inline RoleCells RolesOf(const LPinNode& node) {
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

inline bool Suits(PortType mode, CellFunction function) {
    const auto is_one_of = [&](std::initializer_list<CellFunction> functions) {
        return std::find(functions.begin(), functions.end(), function) != functions.end();
    };
    switch (mode) {
        case PORT_IN:
            return is_one_of({INPUT, CLOCK, OBSERVE_ONLY});
        case PORT_OUT:
            return is_one_of({OUTPUT2, OUTPUT3});
        case PORT_INOUT:
            return is_one_of({INPUT, OUTPUT2, OUTPUT3, BIDIR, BIDIR_IN, BIDIR_OUT, OBSERVE_ONLY});
        case PORT_BUFFER:
            return function == OUTPUT2;
        default:
            return false;
    }
}

/// Whether the bits of a port, just updated, are the values of its cells.
inline std::string FindRoleFault(BScanPinMap& map, const LPinNode& node) {
    const RoleCells roles = RolesOf(node);
    for (const LBScanCell* cell : {roles.input, roles.output, roles.control, roles.observe}) {
        const int n = cell ? cell->GetBoundaryCellPosition() : -1;
        if (n < 0) continue;
        const bool bit = (map.GetBScanBitArray()[n / 8] & (0x80 >> n % 8)) != 0;
        if (bit != (cell->cellValue == SIG_1)) {
            return "bit " + std::to_string(n) + " is not the value of its cell";
        }
    }
    return {};
}

/// Whether a port lists only cells for its mode. A cell that an entry did not tie to the port is
/// left out: another entry has filled it anew, or the completion of a pair has made it a copy,
/// which then bears one name twice.
inline std::string FindModeFault(const LPinNode& node) {
    const LObjList* const cells = node.GetBScanCells();
    for (int i = 0; cells && i < cells->GetCount(); ++i) {
        const auto& cell = *static_cast<const LBScanCell*>(cells->GetAt(i));
        if (cell.GetPinNode() != &node) continue;
        if (std::strcmp(cell.GetPinName(), cell.GetOriginalPinName()) == 0) continue;
        if (!Suits(node.GetPortType(), cell.GetFunction())) {
            return "a port lists cell " + std::to_string(cell.GetBoundaryCellPosition()) +
                   ", which its mode does not take";
        }
    }
    return {};
}

/// Looks through a device that a reading has left with `result`, and updates all its bits.
inline std::string FindContradiction(BScanParser& parser, int result) {
    std::string fault = FindFault(parser);
    BScanPinMap* const map = parser.GetPinMap();
    if (!map || !fault.empty()) return fault;
    const int count = map->GetNumberOfPins();
    std::vector<const LPinNode*> first(static_cast<std::size_t>(count) + 1, nullptr);
    for (int i = count - 1; i >= 0; --i) {
        const int number = NodeAt(*map, i)->GetPinNumber();
        if (number > 0 && number <= count) {
            first[static_cast<std::size_t>(number)] = NodeAt(*map, i);
        }
    }
    for (int i = 0; i < count && fault.empty(); ++i) {
        LPinNode* const node = NodeAt(*map, i);
        map->UpdateBScanBitArray(node);
        if (map->GetBScanBitArray()) fault = FindRoleFault(*map, *node);
        if (fault.empty() && result == kOk) fault = FindModeFault(*node);
        if (map->GetPort(i + 1) != first[static_cast<std::size_t>(i) + 1]) {
            fault = "not the first port of its number";
        }
    }
    return fault;
}

/// Drives, releases and observes every pin in every way, numbers of no pin included.
inline std::string FindDriveFault(BScanParser& parser) {
    BScanPinMap* const map = parser.GetPinMap();
    if (!map) return {};
    const auto bits = [&] {
        const auto* const all = reinterpret_cast<const char*>(map->GetBScanBitArray());
        const auto length = static_cast<std::size_t>(map->GetBScanLength() + 7) / 8;
        return all ? std::string(all, length) : std::string();
    };
    for (int pin = -1; pin <= map->GetNumberOfPins() + 1; ++pin) {
        for (const PortType direction : {PORT_OUT, PORT_IN, PORT_INOUT}) {
            for (const eSignal level : {SIG_1, SIG_0, SIG_Z}) {
                const std::string before = bits();
                const int result = map->setPort(pin, direction, level);
                LPinNode* const node = map->GetPort(pin);
                if (!node) {
                    if (result != kFailed) return "an unknown pin was driven";
                    continue;
                }
                const RoleCells roles = RolesOf(*node);
                const LBScanCell* const control = roles.control;
                // Without an entry of its own a control cell has no bit, and the drive fails late.
                const bool late = control && control->GetBoundaryCellPosition() < 0;
                if (result != kOk && !late && bits() != before) {
                    return "a failed drive changed a bit";
                }
                if (result == kOk && direction == PORT_OUT && map->HasBScanCell(pin) &&
                    (roles.output->cellValue == SIG_1) != (level == SIG_1)) {
                    return "a driven port is not at its level";
                }
                map->GetPortValue(pin);
                map->GetPortDirection(pin);
            }
        }
        map->setPort(pin, PORT_NONE, SIG_X, true);
    }
    map->ResetAllPort();
    const std::string cleared = bits();
    if (std::any_of(cleared.begin(), cleared.end(), [](char c) { return c != 0; })) {
        return "a bit is left after the reset";
    }
    return {};
}

/// Whether the ports of one device are the first ports of another, letter case aside.
inline std::string FindPortFault(const BScanPinMap* part, const BScanPinMap* whole) {
    if (!part) return {};
    if (!whole || part->GetNumberOfPins() > whole->GetNumberOfPins()) {
        return "a cut file has more ports than the whole one";
    }
    for (int i = 0; i < part->GetNumberOfPins(); ++i) {
        const LPinNode& cut = *NodeAt(*part, i);
        const LPinNode& full = *NodeAt(*whole, i);
        if (stricmp(PortName(cut), PortName(full)) != 0 ||
            cut.GetVectorIndex() != full.GetVectorIndex() ||
            cut.GetPortType() != full.GetPortType()) {
            return "a cut file has other ports than the whole one";
        }
    }
    return {};
}

}  // namespace bscan::test
