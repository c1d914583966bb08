#include "parser/designator_index.h"

#include <numeric>

namespace bscan::detail {

DesignatorIndex::DesignatorIndex(const PackagePinMap& package) {
    names_.Reserve(static_cast<std::size_t>(package.GetNumberOfPins()));
    for (int pin = 0; pin < package.GetNumberOfPins(); ++pin) {
        const int known = names_.Count();
        const bool is_new = names_.Add(package.GetPin(pin)) == known;
        if (!is_new && numbers_.empty()) {
            numbers_.resize(static_cast<std::size_t>(known));
            std::iota(numbers_.begin(), numbers_.end(), 1);
        }
        if (is_new && !numbers_.empty()) numbers_.push_back(pin + 1);
    }
}

int DesignatorIndex::Number(std::string_view designator) const {
    const int name = names_.Find(designator);
    if (name == NameTable::kNone) return 0;
    return numbers_.empty() ? name + 1 : numbers_[static_cast<std::size_t>(name)];
}

}  // namespace bscan::detail
