// Driving and observing the device's pins through the bits of its boundary register.

#include <bscan/device_pin_map.h>
#include <bscan/result.h>

#include "model/cell_roles.h"
#include "support/list_access.h"

#include <cstring>

using namespace bscan::detail;

namespace {

// Whether a cell's control cell holds a known value that turns the cell's driver on.
bool IsDriving(const LBScanCell& cell) {
    const LBScanCell* const control = cell.GetControlCell();
    if (control == nullptr) return false;
    const eSignal value = control->cellValue;
    return (value == SIG_0 || value == SIG_1) && value != cell.disableValue;
}

// What a bidirectional cell shows while it receives: it cannot tell a 0 from a floating pin.
eSignal Received(eSignal value) { return value == SIG_X || value == SIG_1 ? value : SIG_Z; }

// What the cells of a port say of its pin. The first output that is on, or bidirectional cell with
// a control cell, decides; else the last cell that only receives.
eSignal ValueInCells(const LObjList& cells) {
    eSignal received = SIG_X;
    for (LObject* const object : ListAccess::Objects(cells)) {
        const auto* const cell = static_cast<LBScanCell*>(object);
        if (cell == nullptr) continue;
        switch (cell->GetFunction()) {
            case OUTPUT2:
            case OUTPUT3:
                if (IsDriving(*cell)) return cell->cellValue;
                break;
            case BIDIR:
                if (cell->GetControlCell() == nullptr) break;
                return IsDriving(*cell) ? cell->cellValue : Received(cell->cellValue);
            case INPUT:
            case OBSERVE_ONLY:
                received = cell->cellValue;
                break;
            default:
                break;
        }
    }
    return received;
}

// The last cell whose driver tells which way an "inout" port goes.
const LBScanCell* DirectionCell(const LObjList& cells) {
    const LBScanCell* driver = nullptr;
    for (LObject* const object : ListAccess::Objects(cells)) {
        const auto* const cell = static_cast<LBScanCell*>(object);
        if (cell == nullptr) continue;
        const CellFunction function = cell->GetFunction();
        if (function == OUTPUT2 || function == OUTPUT3 || function == BIDIR) driver = cell;
    }
    return driver;
}

bool IsEmpty(const LObjList* cells) { return cells == nullptr || cells->GetCount() == 0; }

}  // namespace

int BScanPinMap::SetBit(int n, eSignal value) {
    if (n < 0 || n >= length_) return bscan::kFailed;
    const auto position = static_cast<unsigned>(n);
    const unsigned shift = 7 - position % 8;
    unsigned char& byte = bits_[position / 8];
    const unsigned bit = value == SIG_1 ? 1 : 0;
    byte = static_cast<unsigned char>((byte & ~(1U << shift)) | bit << shift);
    return bscan::kOk;
}

void BScanPinMap::InitBSCANBitArray() {
    if (bits_ != nullptr) std::memset(bits_.get(), 0, (static_cast<std::size_t>(length_) + 7) / 8);
}

void BScanPinMap::ResetAllPort() { InitBSCANBitArray(); }

unsigned char* BScanPinMap::GetBScanBitArray() { return bits_.get(); }

int BScanPinMap::UpdateBScanBitArray(LPinNode* node) {
    if (bits_ == nullptr || node == nullptr) return bscan::kFailed;
    return CopyToBits(PickRoles(node->GetBScanCells()));
}

// The result is that of the last cell.
int BScanPinMap::CopyToBits(const CellRoles& roles) {
    int result = bscan::kOk;
    for (const LBScanCell* const cell : {roles.input, roles.output, roles.control, roles.observe}) {
        if (cell != nullptr) result = SetBit(cell->GetBoundaryCellPosition(), cell->cellValue);
    }
    return result;
}

int BScanPinMap::setPort(int pin, PortType direction, eSignal value) {
    LPinNode* const node = GetPort(pin);
    if (node == nullptr) return bscan::kFailed;
    node->SetPortValue(value);
    if (IsEmpty(node->GetBScanCells())) return bscan::kOk;
    const CellRoles roles = PickRoles(node->GetBScanCells());
    const int result = Request(node->GetPortType(), roles, direction, value);
    if (result < 0) return result;
    return bits_ == nullptr ? static_cast<int>(bscan::kFailed) : CopyToBits(roles);
}

int BScanPinMap::setPort(int pin, PortType, eSignal value, bool) {
    LPinNode* const node = GetPort(pin);
    if (node == nullptr) return bscan::kFailed;
    node->SetPortValue(value);
    if (IsEmpty(node->GetBScanCells())) return bscan::kOk;
    if (bits_ == nullptr) return bscan::kFailed;
    const CellRoles roles = PickRoles(node->GetBScanCells());
    int result = bscan::kOk;
    for (const LBScanCell* const cell : {roles.input, roles.output, roles.control}) {
        if (cell != nullptr) result = SetBit(cell->GetBoundaryCellPosition(), SIG_1);
    }
    return result;
}

PortType BScanPinMap::GetPortDirection(int pin) {
    const LPinNode* const node = GetPort(pin);
    if (node == nullptr) return PORT_NONE;
    const PortType mode = node->GetPortType();
    if (mode == PORT_OUT || mode == PORT_BUFFER) return PORT_OUT;
    if (mode == PORT_IN) return PORT_IN;
    if (IsEmpty(node->GetBScanCells())) return PORT_NONE;
    const LBScanCell* const driver = DirectionCell(*node->GetBScanCells());
    if (driver == nullptr || driver->GetControlCell() == nullptr) return PORT_NONE;
    return driver->GetControlCell()->cellValue != driver->disableValue ? PORT_OUT : PORT_IN;
}

eSignal BScanPinMap::GetPortValue(int pin) {
    const LPinNode* const node = GetPort(pin);
    if (node == nullptr || node->GetBScanCells() == nullptr) return SIG_X;
    const PortType mode = node->GetPortType();
    if (mode == PORT_BUFFER || mode == PORT_NONE) return node->GetPortValue();
    return ValueInCells(*node->GetBScanCells());
}

bool BScanPinMap::HasBScanCell(int pin) {
    const LPinNode* const node = GetPort(pin);
    return node != nullptr && !IsEmpty(node->GetBScanCells());
}
