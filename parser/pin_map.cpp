// Constants, and the pin map strings that bond ports to package pins.

#include <bscan/result.h>

#include "model/device_builder.h"
#include "model/pin_sort.h"
#include "parser/constant_text.h"
#include "parser/main_pass.h"
#include "parser/pin_map_text.h"
#include "support/text_view.h"

#include <cstring>

namespace bscan::detail {

int MainPass::ReadConstant(std::string& statement) {
    const int result = reader_.Complete(statement, Terminator::Text(":="));
    if (result != kOk) return result;
    if (Contains(statement, kPinMapString)) {
        // A pin map that cannot be read does not end the main pass.
        if (TrimRight(TypeWord(statement, kPinMapString)) == kPinMapString) ReadPinMap(statement);
        return kOk;
    }
    if (!Contains(statement, kBoundaryRegister)) return kOk;
    if (TrimRight(TypeWord(statement, kBoundaryRegister)) != kBoundaryRegister) return kOk;
    return ReadBoundaryRegister(statement);
}

int MainPass::ReadPinMap(std::string& statement) {
    value_.clear();
    const int result = reader_.ReadStringValue(ValueStart(statement), Comments::kDrop, value_);
    if (result != kOk || parser_.pin_map_ == nullptr) return result;
    DeviceBuilder device(*parser_.pin_map_);
    const PackagePinMap* const package = SelectedPackage();
    std::size_t pins_before = 0;  // of all ports
    PinMapCutter cutter(value_);
    for (PinMapEntry entry; cutter.Next(entry);) {
        int k = 0;
        // Pins behind the last element of the port go nowhere, but are counted.
        bool any_left = true;
        for (std::string_view pin; TakePin(entry.pins, pin); ++k, ++pins_before) {
            LPinNode* const node = any_left ? device.Element(entry.port, k) : nullptr;
            any_left = node != nullptr;
            if (!any_left) continue;
            DeviceBuilder::SetPinName(*node, pin);
            node->SetPinNumber(PinNumber(package, pin, pins_before));
        }
    }
    return kOk;
}

// The first package map that bears the name of the package type.
const PackagePinMap* MainPass::SelectedPackage() const {
    if (!parser_.package_type_) return nullptr;
    for (int i = 0; i < parser_.GetPackageMapCount(); ++i) {
        const PackagePinMap* const package = parser_.GetPackageMap(i);
        // A host may have written into the type.
        if (std::strcmp(parser_.package_type_->c_str(), package->GetPackageName()) == 0) {
            return package;
        }
    }
    return nullptr;
}

// Without a package, designators are numbers already.
int MainPass::PinNumber(const PackagePinMap* package, std::string_view designator,
                        std::size_t pins_before) {
    if (package == nullptr) return DecimalValue(designator);
    // Mostly the package pass has met the same pins in the same order. Looking for each of them
    // instead makes a whole reading 17 % longer.
    if (pins_before < package->order_.size()) {
        const std::size_t place = package->order_[pins_before];
        if (package->pins_[place] == designator) return static_cast<int>(place) + 1;
    }
    const std::size_t place = PlaceOfPin(package->pins_, designator);
    return place < package->pins_.size() ? static_cast<int>(place) + 1
                                         : static_cast<int>(kUnknownPin);
}

}  // namespace bscan::detail
