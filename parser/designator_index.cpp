#include "parser/designator_index.h"

#include <cstdint>
#include <string>
#include <utility>

namespace bscan::detail {

int DesignatorIndex::Number(std::string_view designator) {
    if (next_ < package_.order_.size()) {
        const std::uint32_t place = package_.order_[next_++];
        if (package_.pins_[place] == designator) return static_cast<int>(place) + 1;
    }
    if (names_.IsEmpty()) {
        NameTable names;
        names.Reserve(package_.pins_.size());
        for (const std::string& pin : package_.pins_) names.Add(pin);
        names_ = std::move(names);
    }
    return names_.Find(designator) + 1;
}

}  // namespace bscan::detail
