#include "model/device_builder.h"

#include <bscan/limits.h>
#include <bscan/result.h>

#include "model/cell_roles.h"
#include "model/device_index.h"
#include "support/huge_pages.h"
#include "support/list_access.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <string>
#include <utility>

namespace bscan::detail {
namespace {

// Shortens a list of nodes back to what it was, unless told that all went well.
class NodesOnTrial {
public:
    explicit NodesOnTrial(ObjectPointers& nodes) : nodes_(nodes), kept_(nodes.size()) {}
    NodesOnTrial(const NodesOnTrial&) = delete;
    NodesOnTrial& operator=(const NodesOnTrial&) = delete;
    ~NodesOnTrial() {
        while (nodes_.size() > kept_) {
            delete nodes_.back();
            nodes_.pop_back();
        }
    }
    void Keep() { kept_ = nodes_.size(); }

private:
    ObjectPointers& nodes_;
    std::size_t kept_;
};

std::string Subscripted(std::string_view port, int index) {
    std::string name(port);
    char digits[12];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, index);
    static_cast<void>(error);
    return name.append(digits, static_cast<std::size_t>(end - digits));
}

}  // namespace

void DeviceBuilder::AddPorts(std::optional<std::string_view> name, std::string_view mode,
                             std::int64_t count, bool ascending) {
    ObjectPointers& nodes = ListAccess::Objects(device_.pins_);
    const auto first = static_cast<std::int64_t>(nodes.size());
    if (!Usable() || count < 1 || first + count > kMaxPortElements) return;
    const std::size_t text = name ? name->size() * static_cast<std::size_t>(count) : 0;
    if (text > kMaxPortNameText - device_.port_name_text_) return;
    const auto elements = static_cast<int>(count);
    const PortType type = ModeFromText(mode, PORT_NONE);
    NodesOnTrial trial(nodes);
    for (int k = 0; k < elements; ++k) {
        nodes.push_back(nullptr);
        nodes.back() = MakeNode(name, type, ascending ? k : elements - 1 - k);
    }
    trial.Keep();
    device_.port_name_text_ += text;
    device_.index_->ports.Added(name, {static_cast<int>(first), elements, ascending});
}

LPinNode* DeviceBuilder::MakeNode(std::optional<std::string_view> name, PortType mode,
                                  int vector_index) {
    auto node = std::make_unique<LPinNode>();
    if (name) node->port_name_.Assign(*name);
    node->type_ = mode;
    node->vector_index_ = vector_index;
    node->list_position_ = device_.GetNumberOfPins() - 1;
    node->index_ = &device_.index_->ports;
    return node.release();
}

LPinNode* DeviceBuilder::Element(std::string_view port, int k) {
    return Usable() ? device_.index_->ports.NthNamed(port, k) : nullptr;
}

void DeviceBuilder::SetPinName(LPinNode& node, std::string_view pin) {
    node.pin_name_.Assign(pin);
    if (node.index_ != nullptr) node.index_->PinNamesChanged();
}

void DeviceBuilder::AllocateCells(int length) {
    if (!Usable() || length < 0 || length > kMaxBoundaryLength) return;
    const auto count = static_cast<std::size_t>(length);
    std::vector<LBScanCell> cells;
    cells.reserve(std::max<std::size_t>(count, 1));  // no cells are a table, too
    PreferHugePages(cells.data(), count * sizeof(LBScanCell));
    for (std::size_t n = 0; n < count; ++n) cells.emplace_back().index_ = &device_.index_->cells;
    auto bits = std::make_unique<unsigned char[]>((count + 7) / 8);
    if (device_.bits_ != nullptr) EmptyCellLists();
    device_.cells_ = std::move(cells);
    device_.bits_ = std::move(bits);
    device_.length_ = length;
    device_.index_->cells.SetTable(device_.cells_.data(), length);
}

// The lists stay, since a host may hold pointers to them; the cells in them are about to go.
void DeviceBuilder::EmptyCellLists() {
    for (LObject* const object : ListAccess::Objects(device_.pins_)) {
        auto* const node = static_cast<LPinNode*>(object);
        if (node != nullptr) ListAccess::Objects(node->cells_).clear();
    }
}

int DeviceBuilder::AddCell(const CellFields& fields) {
    if (device_.bits_ == nullptr || fields.number < 0 || fields.number >= device_.length_ ||
        fields.control >= device_.length_) {
        return kFailed;
    }
    LPinNode* const node = fields.port.empty()
                               ? nullptr
                               : device_.index_->ports.FirstNamed(fields.port, fields.port_index);
    LBScanCell& cell = device_.cells_[static_cast<std::size_t>(fields.number)];
    // What may need memory comes first.
    Name pin_name;
    Name original_name;
    if (fields.port_index == 0) {
        pin_name.Assign(fields.port);
    } else {
        pin_name.Assign(Subscripted(fields.port, fields.port_index));
    }
    if (fields.original_name) original_name.Assign(*fields.original_name);
    cell.position_ = fields.number;
    cell.type_ = fields.type.value_or(cell.type_);
    cell.node_ = node;
    cell.function_ = fields.function.value_or(cell.function_);
    cell.safeValue = fields.safe;
    cell.cellValue = fields.value;
    cell.pin_name_.Swap(pin_name);
    if (fields.original_name) cell.original_pin_name_.Swap(original_name);
    cell.NamesSet();
    if (fields.control >= 0) {
        cell.control_ = &device_.cells_[static_cast<std::size_t>(fields.control)];
        cell.disableValue = fields.disable_value;
        cell.disableResult = fields.disable_result;
    }
    const int result = node == nullptr ? static_cast<int>(kOk) : node->AssociateBScanCell(&cell);
    device_.SetBit(fields.number, fields.value);
    return result;
}

void DeviceBuilder::CopyCell(LBScanCell& to, const LBScanCell& from) {
    to.CopyFrom(from, from.pin_name_.View(), from.original_pin_name_.View());
}

LPinNode* DeviceBuilder::PortOfPinName(LBScanCell& cell) {
    return device_.GetPortwName(cell.pin_name_.Text());
}

}  // namespace bscan::detail
