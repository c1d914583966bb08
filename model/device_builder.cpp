#include "model/device_builder.h"

#include <bscan/limits.h>
#include <bscan/result.h>

#include "model/cell_roles.h"
#include "model/device_index.h"
#include "support/list_access.h"

#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace bscan::detail {

void DeviceBuilder::AddPorts(std::optional<std::string_view> name, std::string_view mode,
                             std::int64_t count, bool ascending) {
    std::vector<LObject*>& nodes = ListAccess::Objects(device_.pins_);
    const std::size_t first = nodes.size();
    if (!Usable() || count < 1 || static_cast<std::int64_t>(first) + count > kMaxPortElements) {
        return;
    }
    const auto elements = static_cast<std::size_t>(count);
    const std::size_t name_text = name ? name->size() * elements : 0;
    if (name_text > kMaxPortNameText - device_.port_name_text_) return;
    const PortType type = ModeFromText(mode, PORT_NONE);
    try {
        nodes.resize(first + elements, nullptr);
        for (std::size_t k = 0; k < elements; ++k) {
            nodes[first + k] = MakeNode(name, type, ascending ? k : elements - 1 - k);
        }
    } catch (...) {
        for (std::size_t at = first; at < nodes.size(); ++at) delete nodes[at];
        nodes.resize(first);
        throw;
    }
    device_.port_name_text_ += name_text;
    device_.index_->ports.ElementsAdded();
}

LPinNode* DeviceBuilder::MakeNode(std::optional<std::string_view> name, PortType mode,
                                  std::size_t vector_index) {
    auto node = std::make_unique<LPinNode>();
    if (name) node->port_name_ = std::string(*name);
    node->type_ = mode;
    node->vector_index_ = static_cast<int>(vector_index);
    node->index_ = &device_.index_->ports;
    return node.release();
}

LPinNode* DeviceBuilder::Element(std::string_view port, int k) {
    return Usable() ? device_.index_->ports.NthNamed(port, k) : nullptr;
}

void DeviceBuilder::SetPinName(LPinNode& node, std::string_view pin) {
    node.pin_name_ = std::string(pin);
    if (node.index_ != nullptr) node.index_->PinNameSet();
}

void DeviceBuilder::AllocateCells(int length) {
    if (!Usable() || length < 0 || length > kMaxBoundaryLength) return;
    const auto count = static_cast<std::size_t>(length);
    auto cells = std::make_unique<LBScanCell[]>(count);
    for (std::size_t n = 0; n < count; ++n) cells[n].names_ = &device_.index_->cells;
    auto bits = std::make_unique<unsigned char[]>((count + 7) / 8);
    if (device_.bits_ != nullptr) EmptyCellLists();
    device_.cells_ = std::move(cells);
    device_.bits_ = std::move(bits);
    device_.length_ = length;
    device_.index_->cells.SetTable(device_.cells_.get(), length);
}

// The lists stay, since a host may hold pointers to them; the cells in them are about to go.
void DeviceBuilder::EmptyCellLists() {
    for (LObject* const object : ListAccess::Objects(device_.pins_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node != nullptr && node->cells_) ListAccess::Objects(*node->cells_).clear();
    }
}

bool DeviceBuilder::Takes(const CellFields& fields) const {
    return device_.bits_ != nullptr && fields.number >= 0 && fields.number < device_.length_ &&
           fields.control < device_.length_;
}

int DeviceBuilder::AddCell(const CellFields& fields) {
    if (!Takes(fields)) return kFailed;
    return AddCell(fields, fields.port.empty()
                               ? nullptr
                               : device_.index_->ports.FirstNamed(fields.port, fields.port_index));
}

void DeviceBuilder::UpperCaseNames(int count) { device_.index_->ports.UpperCaseUpTo(count - 1); }

int DeviceBuilder::AddCell(const CellFields& fields, LPinNode* node) {
    if (!Takes(fields)) return kFailed;
    LBScanCell& cell = device_.cells_[static_cast<std::size_t>(fields.number)];
    // What may need memory comes first.
    std::string pin_name(fields.port);
    if (fields.port_index != 0) pin_name += std::to_string(fields.port_index);
    std::string original_name(fields.original_name.value_or(cell.original_pin_name_));
    cell.position_ = fields.number;
    cell.type_ = fields.type.value_or(cell.type_);
    cell.node_ = node;
    cell.function_ = fields.function.value_or(cell.function_);
    cell.safeValue = fields.safe;
    cell.cellValue = fields.value;
    cell.Rename(std::move(pin_name), std::move(original_name));
    if (fields.control >= 0) {
        cell.control_ = &device_.cells_[static_cast<std::size_t>(fields.control)];
        cell.disableValue = fields.disable_value;
        cell.disableResult = fields.disable_result;
    }
    const int result = node == nullptr ? static_cast<int>(kOk) : node->AssociateBScanCell(&cell);
    device_.SetBit(fields.number, fields.value);
    return result;
}

bool DeviceBuilder::CanCopyCell(const LBScanCell& cell, const LBScanCell& model) const {
    return model.control_ != nullptr && cell.position_ > 0 &&
           device_.GetBScanCell(cell.position_ - 1) != nullptr;
}

void DeviceBuilder::CopyCell(LBScanCell& cell, const LBScanCell& model, std::string_view pin_name,
                             std::string_view original_name, LPinNode& port) {
    const int position = cell.position_;
    cell.CopyFrom(model, std::string(pin_name), std::string(original_name));
    cell.position_ = position;
    LBScanCell& control = *device_.GetBScanCell(position - 1);
    control = *cell.control_;
    control.position_ = position - 1;
    cell.control_ = &control;
    cell.node_ = &port;
    // A port that does not take the cell goes without it.
    if (port.AssociateBScanCell(&cell) == kOutOfMemory) throw std::bad_alloc();
}

}  // namespace bscan::detail
