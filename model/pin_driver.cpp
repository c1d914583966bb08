// Which cells drive and receive for which pin, and what a request on a pin does to them.

#include <bscan/pin_driver.h>

#include "model/cell_roles.h"
#include "support/list_access.h"

#include <algorithm>

namespace bscan {

using detail::BitOf;

namespace {

bool Drives(CellFunction function) {
    return function == OUTPUT2 || function == OUTPUT3 || function == BIDIR || function == BIDIR_OUT;
}

bool Receives(CellFunction function) {
    return function == INPUT || function == CLOCK || function == BIDIR || function == BIDIR_IN ||
           function == OBSERVE_ONLY;
}

// What a cell does for one of its ports.
struct Part {
    bool drives = false;
    bool receives = false;
};

// A merged cell has several entries in the file: it receives for one port, and drives another or
// controls its driver. It carries the function and the port of its last entry.
Part PartOf(const LPinNode& node, const LBScanCell& cell) {
    const PortType mode = node.GetPortType();
    if (mode == PORT_IN) return {false, true};
    if (mode != PORT_INOUT) return {true, false};
    const CellFunction function = cell.GetFunction();
    if (cell.GetPinNode() == &node) return {Drives(function), Receives(function)};
    // Merged, and the function is that for the other port: what it does there it does not do here.
    return {!Drives(function) && cell.GetControlCell() != nullptr, Drives(function)};
}

// Output and control as BScanPinMap::setPort picks them: the first cell that can drive, and the
// control cell of the last. What only observes receives when nothing else does.
PinCells CellsOf(const LPinNode& node) {
    PinCells cells;
    LBScanCell* observer = nullptr;
    const LObjList* const list = node.GetBScanCells();
    if (list == nullptr) return cells;
    for (LObject* const object : detail::ListAccess::Objects(*list)) {
        auto* const cell = static_cast<LBScanCell*>(object);
        if (cell == nullptr) continue;
        const Part part = PartOf(node, *cell);
        if (part.receives) {
            LBScanCell*& first = cell->GetFunction() == OBSERVE_ONLY ? observer : cells.receiver;
            if (first == nullptr) first = cell;
        }
        if (!part.drives) continue;
        if (cells.output == nullptr) cells.output = cell;
        cells.control = cell->GetControlCell();
    }
    if (cells.receiver == nullptr) cells.receiver = observer;
    return cells;
}

bool IsOn(const PinCells& cells) {
    if (cells.output == nullptr) return false;
    return cells.control == nullptr ||
           BitOf(cells.control->cellValue) != BitOf(cells.output->disableValue);
}

}  // namespace

PinDriver::PinDriver(BScanPinMap& device) : device_(&device) {
    try {
        LookUp();
    } catch (...) {
        elements_.clear();
        by_control_.clear();
        positions_.clear();
    }
}

void PinDriver::LookUp() {
    for (LObject* const object : detail::ListAccess::Objects(*device_->GetPinListArray())) {
        auto* const node = static_cast<LPinNode*>(object);
        const int position = ElementCount();
        elements_.push_back({node, node == nullptr ? PinCells() : CellsOf(*node), SIG_X});
        if (node != nullptr) positions_.emplace(node, position);
        const LBScanCell* const control = elements_.back().cells.control;
        if (control != nullptr) by_control_[control].push_back(position);
    }
}

const PinDriver::Element* PinDriver::At(int element) const {
    if (element < 0 || element >= ElementCount()) return nullptr;
    const Element& found = elements_[static_cast<std::size_t>(element)];
    return found.node == nullptr ? nullptr : &found;
}

LPinNode* PinDriver::Node(int element) const {
    const Element* const found = At(element);
    return found == nullptr ? nullptr : found->node;
}

int PinDriver::Find(const LPinNode* node) const {
    const auto found = positions_.find(node);
    return found == positions_.end() ? -1 : found->second;
}

PinCells PinDriver::Cells(int element) const {
    const Element* const found = At(element);
    return found == nullptr ? PinCells() : found->cells;
}

void PinDriver::Set(LBScanCell& cell, eSignal level) {
    cell.cellValue = level;
    device_->SetBit(cell.GetBoundaryCellPosition(), level);
}

void PinDriver::Preset() {
    LBScanCell* const table = device_->GetBScanCellTable();
    for (int n = 0; n < device_->GetBScanLength(); ++n) {
        // A cell without an entry has no position.
        if (table[n].GetBoundaryCellPosition() == n) Set(table[n], BitOf(table[n].safeValue));
    }
    for (Element& element : elements_) {
        element.requested = SIG_X;
        const PinCells& cells = element.cells;
        if (cells.control != nullptr) Set(*cells.control, BitOf(cells.output->disableValue));
    }
}

void PinDriver::Preset(const std::vector<eSignal>& sample) {
    Preset();
    const auto keep = [&](LBScanCell* cell) {
        if (cell == nullptr) return;
        const auto position = static_cast<std::size_t>(cell->GetBoundaryCellPosition());
        if (position >= sample.size()) return;
        const eSignal level = sample[position];
        if (level == SIG_0 || level == SIG_1) Set(*cell, level);
    };
    for (const Element& element : elements_) {
        keep(element.cells.output);
        keep(element.cells.control);
    }
}

DriveCode PinDriver::Request(int element, eSignal level) {
    if (At(element) == nullptr) return DriveCode::kNoElement;
    if (level != SIG_0 && level != SIG_1 && level != SIG_Z) return DriveCode::kWrongLevel;
    Element& asked = elements_[static_cast<std::size_t>(element)];
    const DriveCode code = level == SIG_Z ? Release(asked) : Drive(asked, level);
    if (!IsDone(code)) return code;
    asked.requested = level;
    asked.node->SetPortValue(level);
    return code;
}

DriveCode PinDriver::Drive(Element& element, eSignal level) {
    const PortType mode = element.node->GetPortType();
    const PinCells& cells = element.cells;
    if (mode == PORT_IN || mode == PORT_NONE) return DriveCode::kWrongMode;
    if (cells.output == nullptr) return DriveCode::kNoDriver;
    if (cells.control == nullptr && mode == PORT_INOUT) return DriveCode::kNoTurnOn;
    if (cells.control != nullptr) {
        Set(*cells.control, cells.output->disableValue == SIG_0 ? SIG_1 : SIG_0);
    }
    Set(*cells.output, level);  // last: the cell may be its own control
    return IsOn(cells) ? DriveCode::kDrives : DriveCode::kLetsGo;
}

DriveCode PinDriver::Release(Element& element) {
    const PortType mode = element.node->GetPortType();
    const PinCells& cells = element.cells;
    if (mode == PORT_NONE) return DriveCode::kNoDriver;
    if (mode == PORT_IN) return DriveCode::kReceives;
    if (cells.control == nullptr) return DriveCode::kNoTurnOff;
    if (mode == PORT_INOUT) {  // a driver that is off stands at what the pin shows
        Set(*cells.output, detail::IdleBit(cells.output->disableResult));
    }
    Set(*cells.control, BitOf(cells.output->disableValue));  // last, as above
    return DriveCode::kReleased;
}

bool PinDriver::IsDriving(int element) const { return IsOn(Cells(element)); }

bool PinDriver::AlwaysDrives(int element) const {
    const PinCells cells = Cells(element);
    return cells.output != nullptr && cells.control == nullptr;
}

eSignal PinDriver::Shown(int element) const {
    const PinCells cells = Cells(element);
    if (cells.output == nullptr) return SIG_Z;
    return IsOn(cells) ? BitOf(cells.output->cellValue) : cells.output->disableResult;
}

eSignal PinDriver::Requested(int element) const {
    const Element* const found = At(element);
    return found == nullptr ? SIG_X : found->requested;
}

std::vector<int> PinDriver::AlsoDriven() const {
    std::vector<int> found;
    for (const auto& [control, sharers] : by_control_) {
        const auto asked = [&](int element) { return Requested(element) != SIG_X; };
        if (std::none_of(sharers.begin(), sharers.end(), asked)) continue;
        for (const int element : sharers) {
            const eSignal requested = Requested(element);
            const bool driven = requested == SIG_0 || requested == SIG_1;
            if (!driven && IsDriving(element)) found.push_back(element);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<int> PinDriver::NoLongerDriven() const {
    std::vector<int> found;
    for (int element = 0; element < ElementCount(); ++element) {
        const eSignal requested = Requested(element);
        const PinCells cells = Cells(element);
        const bool shared = cells.control != nullptr && cells.control != cells.output;
        const bool driven = requested == SIG_0 || requested == SIG_1;
        if (shared && driven && !IsDriving(element)) found.push_back(element);
    }
    return found;
}

const std::vector<int>& PinDriver::SharedWith(int element) const {
    static const std::vector<int> kNone;
    const auto found = by_control_.find(Cells(element).control);
    return found == by_control_.end() ? kNone : found->second;
}

std::vector<int> PinDriver::UnsafeControls() const {
    std::vector<int> found;
    for (const auto& [control, sharers] : by_control_) {
        const eSignal safe = control->safeValue;
        const bool known = safe == SIG_0 || safe == SIG_1;
        const auto turned_on = [&](int element) {
            const LBScanCell* const output = Cells(element).output;
            return known && output != nullptr && safe != BitOf(output->disableValue);
        };
        if (std::any_of(sharers.begin(), sharers.end(), turned_on)) {
            found.push_back(control->GetBoundaryCellPosition());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace bscan
