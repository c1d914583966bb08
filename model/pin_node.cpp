#include <bscan/pin_node.h>

#include "model/cell_roles.h"
#include "model/port_index.h"
#include "support/border.h"
#include "support/list_access.h"
#include "support/text_view.h"

using namespace bscan::detail;

namespace {

// The host may write into a name, whose node is const nevertheless.
char* Writable(const std::optional<std::string>& name) {
    return name ? const_cast<char*>(name->data()) : nullptr;
}

}  // namespace

LPinNode::LPinNode() = default;
LPinNode::~LPinNode() = default;

void LPinNode::SetPortName(char* name) {
    if (name == nullptr) return;
    if (index_ != nullptr) index_->PortNameOpened();
    GuardedQuietly([&] { port_name_ = std::string(name); });
}

char* LPinNode::GetPortName() const {
    if (index_ != nullptr) index_->PortNameOpened();
    return Writable(port_name_);
}

void LPinNode::SetPinName(char* name) {
    if (name == nullptr) return;
    if (index_ != nullptr) index_->PinNameSet();
    GuardedQuietly([&] { pin_name_ = std::string(name); });
}

char* LPinNode::GetPinName() const {
    if (index_ != nullptr) index_->PinNameOpened();
    return Writable(pin_name_);
}

void LPinNode::SetPortType(char* mode) { type_ = ModeFromText(View(mode), type_); }

PortType LPinNode::GetPortType() const { return type_; }

void LPinNode::SetPinNumber(int number) {
    pin_number_ = number;
    if (index_ != nullptr) index_->PinNumberSet();
}

int LPinNode::GetPinNumber() const { return pin_number_; }
int LPinNode::GetVectorIndex() const { return vector_index_; }

void LPinNode::SetPortValue(eSignal value) { value_ = value; }
eSignal LPinNode::GetPortValue() const { return value_; }

// The list is part of the node, which hands it out for writing.
LObjList* LPinNode::GetBScanCells() const {
    return cells_ ? const_cast<LObjList*>(&*cells_) : nullptr;
}

int LPinNode::AssociateBScanCell(LBScanCell* cell) {
    if (cell == nullptr || !Accepts(type_, cell->GetFunction())) return bscan::kFailed;
    return GuardedCode([&]() -> int {
        if (!cells_) cells_.emplace();
        ListAccess::Objects(*cells_).push_back(cell);
        return bscan::kOk;
    });
}

int LPinNode::SetInput(eSignal level) { return Receive(type_, PickRoles(GetBScanCells()), level); }

int LPinNode::SetOutput(eSignal level) { return Drive(type_, PickRoles(GetBScanCells()), level); }

int LPinNode::SetBScanCell(PortType direction, eSignal level) {
    return Request(type_, PickRoles(GetBScanCells()), direction, level);
}

void LPinNode::SetPositive(bool positive) { positive_ = positive; }
bool LPinNode::IsPositive() const { return positive_; }
void LPinNode::SetNegative(bool negative) { negative_ = negative; }
bool LPinNode::IsNegative() const { return negative_; }

namespace bscan {

const char* PortName(const LPinNode& node) { return detail::PortIndex::PortNameOf(node); }
const char* PinName(const LPinNode& node) { return detail::PortIndex::PinNameOf(node); }

}  // namespace bscan
