#include "board/device_pins.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

bool NeverDrives(PortMode mode) {
    switch (mode) {
        case PortMode::kIn:
        case PortMode::kLinkageIn:
        case PortMode::kLinkageMechanical:
        case PortMode::kPowerPositive:
        case PortMode::kPowerGround:
        case PortMode::kPowerNegative:
        case PortMode::kReferenceIn:
            return true;
        default:
            return false;
    }
}

}  // namespace

DevicePins::DevicePins(const Chain& chain, int device, const Facts* facts)
    : device_(device), driver_(chain.Driver(device)) {
    if (driver_ == nullptr) return;
    if (facts != nullptr) {
        ReadPackage(chain, *facts);
        ReadPorts(chain, *facts);
        ReadPairs(chain, *facts);
        ReadCompliance(chain, facts->compliance);
    }
    for (int element = 0; element < driver_->ElementCount(); ++element) {
        const LPinNode* const node = driver_->Node(element);
        if (node == nullptr) continue;
        const std::string designator(View(PinName(*node)));
        if (!designator.empty()) Add(designator, element);
    }
}

void DevicePins::Add(const std::string& designator, int element) {
    std::vector<int>& elements = by_designator_[designator];
    if (elements.empty()) designators_.push_back(designator);
    if (std::find(elements.begin(), elements.end(), element) == elements.end()) {
        elements.push_back(element);
    }
}

std::vector<int> DevicePins::Elements(const Chain& chain, const ElementName& name) const {
    std::string text = chain.Device(device_).name + ".port:" + std::string(name.port.text);
    if (name.index) text += "(" + std::to_string(*name.index) + ")";
    std::vector<ChainPin> pins;
    std::vector<int> elements;
    if (!chain.FindPins(text, pins).Ok()) return elements;
    for (const ChainPin pin : pins) elements.push_back(pin.element);
    return elements;
}

// A port of one element may have several pins, of which the model knows the first.
void DevicePins::ReadPackage(const Chain& chain, const Facts& facts) {
    const PinMap* const package = facts.FindPinMap(chain.Device(device_).package);
    if (package == nullptr) return;
    for (const PinMapEntry& entry : package->entries) {
        if (entry.pins.size() < 2) continue;
        const std::vector<int> elements = Elements(chain, entry.port);
        if (elements.size() != 1) continue;
        for (const Word& pin : entry.pins) Add(std::string(pin.text), elements.front());
    }
}

void DevicePins::ReadPorts(const Chain& chain, const Facts& facts) {
    const TapSignals& tap = facts.tap;
    for (const ElementName* name : {&tap.tdi, &tap.tdo, &tap.tms, &tap.tck, &tap.trst}) {
        if (!name->port.Exists()) continue;
        const std::vector<int> elements = Elements(chain, *name);
        tap_.insert(elements.begin(), elements.end());
    }
    for (const Port& port : facts.ports) {
        if (!NeverDrives(port.mode)) continue;
        ElementName name;
        name.port = port.name;
        const std::vector<int> elements = Elements(chain, name);
        harmless_.insert(elements.begin(), elements.end());
    }
}

void DevicePins::ReadPairs(const Chain& chain, const Facts& facts) {
    for (const PortPair& pair : facts.pairs) {
        const std::vector<int> positive = Elements(chain, pair.positive);
        const std::vector<int> negative = Elements(chain, pair.negative);
        for (std::size_t i = 0; i < std::min(positive.size(), negative.size()); ++i) {
            leaders_.emplace(negative[i], positive[i]);
        }
    }
}

// Where there are several patterns, the first is as good as any.
void DevicePins::ReadCompliance(const Chain& chain, const Compliance& compliance) {
    const std::string_view pattern =
        compliance.patterns.empty() ? std::string_view() : compliance.patterns.front().text;
    for (std::size_t i = 0; i < compliance.ports.size(); ++i) {
        std::optional<bool> level;
        if (i < pattern.size() && pattern[i] == '0') level = false;
        if (i < pattern.size() && pattern[i] == '1') level = true;
        for (const int element : Elements(chain, compliance.ports[i])) {
            compliance_.emplace(element, level);
        }
    }
}

int DevicePins::LeaderOf(int element) const {
    const auto found = leaders_.find(element);
    return found == leaders_.end() ? -1 : found->second;
}

std::vector<int> DevicePins::Find(const std::string& designator) const {
    const auto found = by_designator_.find(designator);
    return found == by_designator_.end() ? std::vector<int>() : found->second;
}

std::optional<bool> DevicePins::ComplianceLevel(int element) const {
    const auto found = compliance_.find(element);
    return found == compliance_.end() ? std::nullopt : found->second;
}

// The driver of a port with an output cell is under control, and so is a negative leg, which goes
// with its positive one. That of TDO works while it shifts.
bool DevicePins::CouldDriveAlone(int element) const {
    const LPinNode* const node = driver_->Node(element);
    if (node == nullptr || node->GetPortType() == PORT_IN) return false;
    const int leader = LeaderOf(element);
    const bool led = leader >= 0 && driver_->Cells(leader).output != nullptr;
    return !led && driver_->Cells(element).output == nullptr && harmless_.count(element) == 0 &&
           tap_.count(element) == 0;
}

}  // namespace bscan::detail
