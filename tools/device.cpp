#include "device.h"

#include <fmt/format.h>

#include <numeric>
#include <utility>

namespace tool {
namespace {

std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }

std::vector<LPinNode*> Nodes(const BScanPinMap& map) {
    std::vector<LPinNode*> nodes;
    const LObjList* list = map.GetPinListArray();
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) {
        if (auto* node = static_cast<LPinNode*>(list->GetAt(i))) nodes.push_back(node);
    }
    return nodes;
}

}  // namespace

std::string Element::Label() const { return index ? fmt::format("{}({})", port, *index) : port; }

Device::Device(std::string path) : path_(std::move(path)) {}

int Device::Read(const Capture* capture) {
    if (capture != nullptr) {
        std::vector<unsigned char> data = capture->data;
        std::vector<unsigned char> mask = capture->mask;
        const int code =
            parser_.SetBSCANBitArray(data.data(), static_cast<int>(data.size()), mask.data());
        if (code != bscan::kOk) return code;
    }
    int code = parser_.Initialize(path_.c_str(), nullptr);
    if (code == bscan::kOk) code = parser_.Read();
    parser_.CloseFile();
    CollectElements();
    return code;
}

void Device::CollectElements() {
    std::unordered_map<std::string, int> counts;
    const std::vector<LPinNode*> nodes = Nodes(map());
    for (LPinNode* node : nodes) {
        Element element{node, Text(bscan::PortName(*node)), node->GetVectorIndex(),
                        Text(bscan::PinName(*node)), node->GetPinNumber()};
        ++counts[element.port];
        positions_[node] = elements_.size();
        elements_.push_back(std::move(element));
    }
    for (Element& element : elements_) {
        const bool scalar = counts[element.port] == 1 && element.index == 0;
        if (scalar) element.index.reset();
        element.node->SetPinNumber(Number(element));
    }
}

BScanPinMap& Device::map() const {
    BScanPinMap* map = parser_.GetPinMap();
    return map == nullptr ? without_ports_ : *map;
}

std::string Device::ComponentName() const { return Text(parser_.GetComponentName()); }

std::string Device::PackageName() const { return Text(parser_.GetPackageType()); }

std::vector<CDifferentialPair> Device::Pairs() const { return *parser_.GetDifferentialPairList(); }

int Device::Number(const Element& element) const {
    return static_cast<int>(positions_.at(element.node)) + 1;
}

const Element* Device::Find(const LPinNode* node) const {
    const auto found = positions_.find(node);
    return found == positions_.end() ? nullptr : &elements_[found->second];
}

std::vector<LBScanCell*> CellsOf(const LPinNode& node) {
    std::vector<LBScanCell*> cells;
    const LObjList* list = node.GetBScanCells();
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) {
        cells.push_back(static_cast<LBScanCell*>(list->GetAt(i)));
    }
    return cells;
}

std::vector<LBScanCell*> CellsOf(const BScanPinMap& map) {
    std::vector<LBScanCell*> cells(static_cast<std::size_t>(map.GetBScanLength()));
    std::iota(cells.begin(), cells.end(), map.GetBScanCellTable());
    return cells;
}

}  // namespace tool
