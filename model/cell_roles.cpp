#include "model/cell_roles.h"

#include <bscan/result.h>

#include "support/keyword.h"
#include "support/list_access.h"

namespace bscan::detail {
namespace {

// A set of cell functions, one bit for each.
using FunctionSet = unsigned;

constexpr FunctionSet SetOf(CellFunction function) { return 1U << function; }

constexpr FunctionSet kReceive = SetOf(INPUT) | SetOf(BIDIR_IN) | SetOf(BIDIR);
constexpr FunctionSet kDrive = SetOf(OUTPUT2) | SetOf(OUTPUT3) | SetOf(BIDIR_OUT) | SetOf(BIDIR);

// A host may have set a function that is none.
bool Holds(FunctionSet set, CellFunction function) {
    static_assert(INPUT == 0);
    const auto bit = static_cast<unsigned>(function);
    return bit < FUNCTION_NONE && (set >> bit & 1U) != 0;
}

struct Mode {
    std::string_view text;
    PortType type;
    FunctionSet accepted;
};

constexpr Mode kModes[] = {
    {"in", PORT_IN, SetOf(INPUT) | SetOf(CLOCK) | SetOf(OBSERVE_ONLY)},
    {"out", PORT_OUT, SetOf(OUTPUT2) | SetOf(OUTPUT3)},
    {"inout", PORT_INOUT, kReceive | kDrive | SetOf(OBSERVE_ONLY)},
    {"buffer", PORT_BUFFER, SetOf(OUTPUT2)},
};

// What devices have most comes first.
constexpr Keyword<CellFunction> kFunctions[] = {
    {"INPUT", INPUT},
    {"OUTPUT3", OUTPUT3},
    {"CONTROL", CONTROL},
    {"CONTROLR", CONTROLR},
    {"INTERNAL", INTERNAL},
    {"BIDIR", BIDIR},
    {"OUTPUT2", OUTPUT2},
    {"CLOCK", CLOCK},
    {"BIDIR_IN", BIDIR_IN},
    {"BIDIR_OUT", BIDIR_OUT},
    {"OBSERVE_ONLY", OBSERVE_ONLY},
};

constexpr Keyword<CellType> kCellTypes[] = {{"BC_0", BC_0}, {"BC_1", BC_1}, {"BC_2", BC_2},
                                            {"BC_3", BC_3}, {"BC_4", BC_4}, {"BC_5", BC_5},
                                            {"BC_6", BC_6}, {"BC_7", BC_7}};

}  // namespace

CellRoles PickRoles(const LObjList* cells) {
    CellRoles roles;
    if (cells == nullptr) return roles;
    for (LObject* const object : ListAccess::Objects(*cells)) {
        auto* const cell = static_cast<LBScanCell*>(object);
        if (cell == nullptr) continue;
        const CellFunction function = cell->GetFunction();
        if (roles.input == nullptr && Holds(kReceive, function)) roles.input = cell;
        if (roles.observe == nullptr && function == OBSERVE_ONLY) roles.observe = cell;
        if (!Holds(kDrive, function)) continue;
        if (roles.output == nullptr) roles.output = cell;
        roles.control = cell->GetControlCell();
    }
    return roles;
}

int Receive(PortType mode, const CellRoles& roles, eSignal level) {
    if (roles.observe != nullptr) {
        roles.observe->cellValue = BitOf(level);
        return kOk;
    }
    if (roles.input == nullptr) return kFailed;
    roles.input->cellValue = BitOf(level);
    if (mode != PORT_INOUT) return kOk;
    if (roles.control == nullptr || roles.output == nullptr) return kFailed;
    roles.control->cellValue = roles.output->disableValue;
    if (roles.output == roles.input) return kOk;
    roles.output->cellValue = IdleBit(roles.output->disableResult);
    return kOk;
}

int Drive(PortType mode, const CellRoles& roles, eSignal level) {
    if (roles.control == nullptr || roles.output == nullptr) return kFailed;
    roles.control->cellValue = roles.output->disableValue == SIG_0 ? SIG_1 : SIG_0;
    roles.output->cellValue = BitOf(level);
    return mode == PORT_INOUT && roles.input == nullptr ? kFailed : kOk;
}

int Request(PortType mode, const CellRoles& roles, PortType direction, eSignal level) {
    const bool only_drives = mode == PORT_OUT || mode == PORT_BUFFER;
    if (direction == PORT_IN && !only_drives) return Receive(mode, roles, level);
    if (direction == PORT_OUT && mode != PORT_IN) return Drive(mode, roles, level);
    return kFailed;
}

bool Accepts(PortType mode, CellFunction function) {
    for (const Mode& row : kModes) {
        if (row.type == mode) return Holds(row.accepted, function);
    }
    return false;
}

PortType ModeFromText(std::string_view text, PortType otherwise) {
    for (const Mode& row : kModes) {
        if (text == row.text) return row.type;
    }
    return otherwise;
}

std::optional<CellFunction> FunctionFromText(std::string_view text) {
    CellFunction function = FUNCTION_NONE;
    if (!Keyword<CellFunction>::Find(kFunctions, text, function)) return std::nullopt;
    return function;
}

CellType CellTypeFromText(std::string_view text) {
    CellType type = BC_UNKNOWN;
    Keyword<CellType>::Find(kCellTypes, text, type);
    return type;
}

}  // namespace bscan::detail
