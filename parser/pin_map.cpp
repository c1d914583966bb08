// Constants, and the pin map strings that bond ports to package pins.

#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/constant_text.h"
#include "parser/designator_index.h"
#include "parser/main_pass.h"
#include "parser/pin_map_text.h"
#include "support/text_view.h"

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
    const bool by_package = SelectsPackage();
    PinMapCutter cutter(value_);
    for (PinMapEntry entry; cutter.Next(entry);) {
        int k = 0;
        bool any_left = true;  // of the elements of the port
        for (std::string_view pin; TakePin(entry.pins, pin); ++k) {
            // Those beyond the port are looked up as well, so that all are in their order.
            const int number = by_package ? NumberInPackage(pin) : DecimalValue(pin);
            LPinNode* const node = any_left ? device.Element(entry.port, k) : nullptr;
            any_left = node != nullptr;
            if (!any_left) continue;
            DeviceBuilder::SetPinName(*node, pin);
            node->SetPinNumber(number);
        }
    }
    return kOk;
}

// The first package map that bears the name of the package type.
const PackagePinMap* MainPass::SelectedPackage() const {
    if (!parser_.package_type_) return nullptr;
    for (int i = 0; i < parser_.GetPackageMapCount(); ++i) {
        const PackagePinMap* const package = parser_.GetPackageMap(i);
        if (*parser_.package_type_ == package->GetPackageName()) return package;
    }
    return nullptr;
}

// Whether a package is selected, which then numbers the pins.
bool MainPass::SelectsPackage() {
    if (parser_.designators_ == nullptr) {
        const PackagePinMap* const package = SelectedPackage();
        if (package == nullptr) return false;
        parser_.designators_ = std::make_unique<DesignatorIndex>(*package);
    }
    return true;
}

int MainPass::NumberInPackage(std::string_view designator) {
    const int number = parser_.designators_->Number(designator);
    return number == 0 ? static_cast<int>(kUnknownPin) : number;
}

int MainPass::PinNumber(std::string_view designator) {
    return SelectsPackage() ? NumberInPackage(designator) : DecimalValue(designator);
}

}  // namespace bscan::detail
