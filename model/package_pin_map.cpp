#include <bscan/package_pin_map.h>

#include "support/border.h"

#include <algorithm>

using bscan::detail::GuardedQuietly;

PackagePinMap::PackagePinMap() = default;
PackagePinMap::~PackagePinMap() = default;

void PackagePinMap::SetPackageName(const char* name) {
    if (name != nullptr) GuardedQuietly([&] { name_ = std::string(name); });
}

const char* PackagePinMap::GetPackageName() const { return name_.c_str(); }

void PackagePinMap::AddPin(const char* pin) {
    if (pin != nullptr) GuardedQuietly([&] { pins_.emplace_back(pin); });
}

void PackagePinMap::SetPin(int index, const char* pin) {
    if (pin == nullptr || index < 0 || index >= GetNumberOfPins()) return;
    GuardedQuietly([&] { pins_[static_cast<std::size_t>(index)] = std::string(pin); });
}

const char* PackagePinMap::GetPin(int index) const {
    return index >= 0 && index < GetNumberOfPins() ? pins_[static_cast<std::size_t>(index)].c_str()
                                                   : nullptr;
}

int PackagePinMap::GetPinNumber(const char* pin) const {
    if (pin == nullptr) return -1;
    const auto found = std::find(pins_.begin(), pins_.end(), pin);
    return found == pins_.end() ? -1 : static_cast<int>(found - pins_.begin());
}

int PackagePinMap::GetNumberOfPins() const { return static_cast<int>(pins_.size()); }
