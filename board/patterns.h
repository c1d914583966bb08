// Names that fit one of some patterns.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace bscan::detail {

// Finds plain names at once; only patterns are tried one after the other.
class Patterns {
public:
    explicit Patterns(const std::vector<std::string>& texts);

    bool Fit(const std::string& name) const;

private:
    std::unordered_set<std::string> names_;
    std::vector<std::string> patterns_;
};

}  // namespace bscan::detail
