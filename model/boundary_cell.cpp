#include <bscan/boundary_cell.h>

#include "model/cell_index.h"
#include "model/cell_roles.h"
#include "support/border.h"
#include "support/text_view.h"

#include <cstring>

using namespace bscan::detail;

LBScanCell::LBScanCell() = default;
LBScanCell::~LBScanCell() = default;

LBScanCell::LBScanCell(const LBScanCell& other) : LBScanCell() { *this = other; }

LBScanCell& LBScanCell::operator=(const LBScanCell& other) {
    if (this == &other) return *this;
    GuardedQuietly(
        [&] { CopyFrom(other, other.pin_name_.View(), other.original_pin_name_.View()); });
    return *this;
}

// Copies every field of another, but takes these names.
void LBScanCell::CopyFrom(const LBScanCell& other, std::string_view pin_name,
                          std::string_view original_pin_name) {
    Name new_pin_name;
    Name new_original_pin_name;
    new_pin_name.Assign(pin_name);
    new_original_pin_name.Assign(original_pin_name);
    position_ = other.position_;
    type_ = other.type_;
    node_ = other.node_;
    function_ = other.function_;
    safeValue = other.safeValue;
    control_ = other.control_;
    disableValue = other.disableValue;
    disableResult = other.disableResult;
    cellValue = other.cellValue;
    pin_name_.Swap(new_pin_name);
    original_pin_name_.Swap(new_original_pin_name);
    NamesSet();
}

void LBScanCell::NamesSet() {
    if (index_ == nullptr) return;
    index_->PinNameSet(*this);
    index_->OriginalNameSet(*this);
}

CellType LBScanCell::ConvertCellTypeToEnum(const char* text) {
    return CellTypeFromText(View(text));
}

void LBScanCell::SetCellType(char* text) {
    if (text != nullptr) type_ = ConvertCellTypeToEnum(text);
}

void LBScanCell::SetCellType(CellType type) { type_ = type; }
CellType LBScanCell::GetBScanCellType() const { return type_; }

void LBScanCell::SetFunction(char* text) {
    if (text == nullptr) return;
    UpperCase(text, std::strlen(text));
    function_ = FunctionFromText(text).value_or(function_);
}

void LBScanCell::SetFunction(CellFunction function) { function_ = function; }
CellFunction LBScanCell::GetFunction() const { return function_; }

void LBScanCell::SetBoundaryCellPosition(int position) { position_ = position; }
int LBScanCell::GetBoundaryCellPosition() const { return position_; }

void LBScanCell::SetPinName(const char* name) {
    if (name == nullptr) return;
    GuardedQuietly([&] { pin_name_.Assign(name); });
    if (index_ != nullptr) index_->PinNameSet(*this);
}

const char* LBScanCell::GetPinName() const { return pin_name_.View().data(); }

void LBScanCell::SetOriginalPinName(const char* name) {
    if (name == nullptr) return;
    GuardedQuietly([&] { original_pin_name_.Assign(name); });
    if (index_ != nullptr) index_->OriginalNameSet(*this);
}

const char* LBScanCell::GetOriginalPinName() const { return original_pin_name_.View().data(); }

void LBScanCell::SetControlCell(LBScanCell* cell) { control_ = cell; }
LBScanCell* LBScanCell::GetControlCell() const { return control_; }

void LBScanCell::SetPinNode(LPinNode* node) { node_ = node; }
LPinNode* LBScanCell::GetPinNode() const { return node_; }
