#include <bscan/boundary_cell.h>

#include "model/cell_names.h"
#include "model/cell_roles.h"
#include "support/border.h"
#include "support/text_view.h"

#include <cstring>
#include <utility>

using namespace bscan::detail;

LBScanCell::LBScanCell() = default;
LBScanCell::~LBScanCell() = default;

LBScanCell::LBScanCell(const LBScanCell& other) : LBScanCell() { *this = other; }

LBScanCell& LBScanCell::operator=(const LBScanCell& other) {
    if (this != &other) CopyFrom(other, other.pin_name_, other.original_pin_name_);
    return *this;
}

// Copies every field of another, but takes these names.
void LBScanCell::CopyFrom(const LBScanCell& other, std::string pin_name,
                          std::string original_pin_name) {
    safeValue = other.safeValue;
    cellValue = other.cellValue;
    disableValue = other.disableValue;
    disableResult = other.disableResult;
    position_ = other.position_;
    type_ = other.type_;
    function_ = other.function_;
    node_ = other.node_;
    control_ = other.control_;
    Rename(std::move(pin_name), std::move(original_pin_name));
}

void LBScanCell::Rename(std::string pin_name, std::string original_pin_name) noexcept {
    if (names_ != nullptr) names_->Remove(*this);
    pin_name_ = std::move(pin_name);
    original_pin_name_ = std::move(original_pin_name);
    if (names_ != nullptr) names_->Add(*this);
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
    if (name != nullptr) GuardedQuietly([&] { Rename(name, original_pin_name_); });
}

const char* LBScanCell::GetPinName() const { return pin_name_.c_str(); }

void LBScanCell::SetOriginalPinName(const char* name) {
    if (name != nullptr) GuardedQuietly([&] { Rename(pin_name_, name); });
}

const char* LBScanCell::GetOriginalPinName() const { return original_pin_name_.c_str(); }

void LBScanCell::SetControlCell(LBScanCell* cell) { control_ = cell; }
LBScanCell* LBScanCell::GetControlCell() const { return control_; }

void LBScanCell::SetPinNode(LPinNode* node) { node_ = node; }
LPinNode* LBScanCell::GetPinNode() const { return node_; }
