#include "parser/designator_index.h"

namespace bscan::detail {

DesignatorIndex::DesignatorIndex(const PackagePinMap& package) {
    for (int pin = 0; pin < package.GetNumberOfPins(); ++pin) {
        const auto name = static_cast<std::size_t>(names_.Add(package.GetPin(pin)));
        if (name == numbers_.size()) numbers_.push_back(pin + 1);
    }
}

int DesignatorIndex::Number(std::string_view designator) const {
    const int name = names_.Find(designator);
    return name == NameTable::kNone ? 0 : numbers_[static_cast<std::size_t>(name)];
}

}  // namespace bscan::detail
