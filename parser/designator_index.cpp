#include "parser/designator_index.h"

namespace bscan::detail {

DesignatorIndex::DesignatorIndex(const PackagePinMap& package) {
    names_.Reserve(package.pins_.size());
    for (const std::string& pin : package.pins_) names_.Add(pin);
}

int DesignatorIndex::Number(std::string_view designator) const {
    return names_.Find(designator) + 1;
}

}  // namespace bscan::detail
