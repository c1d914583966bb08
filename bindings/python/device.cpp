#include "device.h"

#include <bscan/result.h>

#include "problem.h"

#include <utility>

namespace bscan::python {

void Fill(const Description& description, const std::string& package, BScanParser& parser) {
    const int code = package.empty() ? description.Fill(parser) : description.Fill(parser, package);
    if (code != kOk) throw Problem("Error", code, description.Name() + ": " + Describe(code));
}

Device::Device(std::shared_ptr<const Description> description, std::string package)
    : description_(std::move(description)), package_(std::move(package)) {
    Fill(*description_, package_, parser_);
    elements_ = drawing::DeclaredElements(GetFacts(), parser_.GetPinMap());
    for (std::size_t i = 0; i < elements_.size(); ++i) places_.emplace(elements_[i].node, i);
    driver_ = std::make_unique<PinDriver>(Map());
    names_ = PinNames(*driver_, &GetFacts());
    driver_->Preset();
    requests_ = std::make_unique<PinRequests>(
        *driver_, [this](int element) { return names_.Label(element); });
}

BScanPinMap& Device::Map() {
    BScanPinMap* const map = parser_.GetPinMap();
    return map == nullptr ? without_ports_ : *map;
}

std::string Device::PackageName() {
    const char* const name = parser_.GetPackageType();
    return name == nullptr ? std::string() : std::string(name);
}

const drawing::DeclaredElement* Device::Find(const LPinNode* node) const {
    const auto found = places_.find(node);
    return found == places_.end() ? nullptr : &elements_[found->second];
}

}  // namespace bscan::python
