#include "bsdl/name_index.h"

#include "support/text_view.h"

namespace bscan::detail {

std::string_view NameIndex::Folded(std::string_view name) const {
    if (IsUpperCase(name)) return name;
    folded_ = name;
    UpperCase(folded_);
    return folded_;
}

}  // namespace bscan::detail
