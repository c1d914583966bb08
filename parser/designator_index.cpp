#include "parser/designator_index.h"

namespace bscan::detail {

DesignatorIndex::DesignatorIndex(const PackagePinMap& package) {
    names_.Reserve(static_cast<std::size_t>(package.GetNumberOfPins()));
    for (int pin = 0; pin < package.GetNumberOfPins(); ++pin) names_.Add(package.GetPin(pin));
}

int DesignatorIndex::Number(std::string_view designator) const {
    return names_.Find(designator) + 1;
}

}  // namespace bscan::detail
