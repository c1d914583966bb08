#include <bscan/device_pin_map.h>
#include <bscan/result.h>
#include <bscan/text.h>

#include "model/cell_roles.h"
#include "model/device_builder.h"
#include "model/device_index.h"
#include "support/border.h"
#include "support/list_access.h"
#include "support/text_view.h"

#include <cstdlib>
#include <new>

using namespace bscan::detail;

namespace {

std::optional<std::string_view> OptionalView(const char* text) {
    return text == nullptr ? std::nullopt : std::optional<std::string_view>(text);
}

// Turns the buffer of a lookup into upper case, as its caller expects.
std::string_view UpperCased(char* name) {
    const std::string_view text(name);
    strupr(name);
    return text;
}

}  // namespace

BScanPinMap::BScanPinMap() : index_(new (std::nothrow) DeviceIndex(pins_)) {}

BScanPinMap::~BScanPinMap() {
    default_directory_.reset();
    bits_.reset();
    index_.reset();
    while (!pins_.IsEmpty()) delete pins_.RemoveTail();
    cells_.reset();
}

void BScanPinMap::AddNewPorts(char* name, char* mode, int count, bool ascending) {
    GuardedQuietly(
        [&] { DeviceBuilder(*this).AddPorts(OptionalView(name), View(mode), count, ascending); });
}

void BScanPinMap::AddNewPorts(char* name, char* mode, int from, int to) {
    if (from < 0 || to < 0) return;
    const std::int64_t count = std::abs(static_cast<std::int64_t>(to) - from) + 1;
    GuardedQuietly(
        [&] { DeviceBuilder(*this).AddPorts(OptionalView(name), View(mode), count, from <= to); });
}

void BScanPinMap::SerialSetPinNumber(char* portName, int k, int number) {
    if (portName == nullptr) return;
    LPinNode* const node = DeviceBuilder(*this).Element(portName, k);
    if (node != nullptr) node->SetPinNumber(number);
}

void BScanPinMap::SerialSetPinName(char* portName, int k, char* pinName) {
    if (portName == nullptr) return;
    LPinNode* const node = DeviceBuilder(*this).Element(portName, k);
    if (node != nullptr) node->SetPinName(pinName);
}

void BScanPinMap::SetPinNumber(char* portName, int index, int number) {
    LPinNode* const node = GetPort(portName, index);
    if (node != nullptr) node->SetPinNumber(number);
}

void BScanPinMap::AllocateBScanCellTable(int length) {
    GuardedQuietly([&] { DeviceBuilder(*this).AllocateCells(length); });
}

int BScanPinMap::AddNewRegister(int cellNumber, char* cellType, char* portName, int portIndex,
                                char* function, eSignal safe, int controlCell, eSignal disableValue,
                                eSignal disableResult, eSignal value, const char* originalPinName) {
    // A refused cell leaves the caller's texts alone, too.
    if (portName == nullptr || GetBScanCell(cellNumber) == nullptr || controlCell >= length_) {
        return bscan::kFailed;
    }
    const std::string_view port = UpperCased(portName);
    strupr(function);
    std::optional<CellType> type;
    if (cellType != nullptr) type = CellTypeFromText(cellType);
    return GuardedCode([&] {
        return DeviceBuilder(*this).AddCell(
            {cellNumber, type, port, portIndex, FunctionFromText(View(function)), safe, controlCell,
             disableValue, disableResult, value, OptionalView(originalPinName)});
    });
}

LPinNode* BScanPinMap::GetPort(char* portName, int index) {
    if (index_ == nullptr || portName == nullptr || *portName == '\0') return nullptr;
    return index_->ports.FirstNamed(UpperCased(portName), index);
}

LPinNode* BScanPinMap::GetPortwName(char* portName) {
    if (index_ == nullptr || portName == nullptr) return nullptr;
    return index_->ports.FirstNamed(UpperCased(portName));
}

LPinNode* BScanPinMap::GetPort(const char* pinName) {
    if (index_ == nullptr || pinName == nullptr) return nullptr;
    return index_->ports.WithPinName(pinName);
}

LPinNode* BScanPinMap::GetPort(int pin) {
    return index_ == nullptr ? nullptr : index_->ports.WithPinNumber(pin);
}

char* BScanPinMap::GetPortName(int pin) {
    const LPinNode* const node = GetPort(pin);
    return node == nullptr ? nullptr : node->GetPortName();
}

char* BScanPinMap::GetPinName(int pin) {
    const LPinNode* const node = GetPort(pin);
    return node == nullptr ? nullptr : node->GetPinName();
}

PortType BScanPinMap::GetPortType(int pin) {
    const LPinNode* const node = GetPort(pin);
    return node == nullptr ? PORT_NONE : node->GetPortType();
}

bool BScanPinMap::IsPositiveElement(int pin) {
    const LPinNode* const node = GetPort(pin);
    return node != nullptr && node->IsPositive();
}

bool BScanPinMap::IsNegativeElement(int pin) {
    const LPinNode* const node = GetPort(pin);
    return node != nullptr && node->IsNegative();
}

int BScanPinMap::GetPinNumber(const char* pinName) {
    const LPinNode* const node = GetPort(pinName);
    return node == nullptr ? -1 : node->GetPinNumber();
}

int BScanPinMap::GetPinNumberwPortName(char* portName) {
    const LPinNode* const node = GetPortwName(portName);
    return node == nullptr ? -1 : node->GetPinNumber();
}

int BScanPinMap::GetPinIndexwPortName(char* portName) {
    const LPinNode* const node = GetPortwName(portName);
    if (node == nullptr) return -1;
    const LBScanCell* const input = PickRoles(node->GetBScanCells()).input;
    return input == nullptr ? 0 : input->GetBoundaryCellPosition();
}

LBScanCell* BScanPinMap::GetBScanCell(const char* pinName) {
    if (index_ == nullptr || pinName == nullptr) return nullptr;
    return GetBScanCell(index_->cells.WithPinName(pinName));
}

LBScanCell* BScanPinMap::GetBScanCellByOriginalName(const char* name) {
    if (index_ == nullptr || name == nullptr) return nullptr;
    return GetBScanCell(index_->cells.WithOriginalName(name));
}

LBScanCell* BScanPinMap::GetBScanCell(int position) {
    return position >= 0 && position < length_ ? &cells_[static_cast<std::size_t>(position)]
                                               : nullptr;
}

int BScanPinMap::GetNumberOfPins() const { return pins_.GetCount(); }

// The list is part of the device, but a host may fill it as it may fill the device.
LObjList* BScanPinMap::GetPinListArray() const { return const_cast<LObjList*>(&pins_); }

LBScanCell* BScanPinMap::GetBScanCellTable() const { return cells_.get(); }

int BScanPinMap::GetBScanLength() const { return length_; }

void BScanPinMap::SetDefaultDir(char* directory) {
    if (directory != nullptr) {
        GuardedQuietly([&] { default_directory_ = std::string(directory); });
    }
}

char* BScanPinMap::GetDefaultDir() const {
    return default_directory_ ? const_cast<char*>(default_directory_->c_str()) : nullptr;
}

void BScanPinMap::SetIOName(const char* names) {
    if (names != nullptr) GuardedQuietly([&] { io_names_.emplace_back(names); });
}

const char* BScanPinMap::GetIOName(int index) {
    return index >= 0 && index < GetIOTypeCount()
               ? io_names_[static_cast<std::size_t>(index)].c_str()
               : nullptr;
}

int BScanPinMap::GetIOTypeCount() const { return static_cast<int>(io_names_.size()); }
