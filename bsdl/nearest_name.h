// Which known name a misspelt one was meant to be.
#pragma once

#include "bsdl/spelling.h"

#include <string_view>

namespace bscan::detail {

// Is shown names, and keeps the one that a misspelt name looks like.
class NearestName {
public:
    explicit NearestName(std::string_view misspelt) : misspelt_(misspelt) {}

    void Try(std::string_view candidate) {
        if (!IsMisspelt(misspelt_, candidate)) return;
        nearest_ = candidate;
        ++count_;
    }
    // Empty when no name is similar, and when several are: numbered names are all alike.
    std::string_view Result() const { return count_ == 1 ? nearest_ : std::string_view(); }

private:
    std::string_view misspelt_;
    std::string_view nearest_;
    int count_ = 0;
};

}  // namespace bscan::detail
