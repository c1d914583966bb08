// The text of the PORT_GROUPING attribute.
#pragma once

#include <string_view>
#include <vector>

namespace bscan::detail {

// Whether there was another item, none was left, or what stands there is none.
enum class Taken { kItem, kEnd, kError };

// Cuts a value into its groups; false when it is malformed or holds none.
bool CutPortGroups(std::string_view value, std::vector<std::string_view>& groups);

// Cuts a group into the list of its pairs; false when it is malformed or of a kind unknown.
bool CutPortGroup(std::string_view group, std::string_view& pairs);

struct PairNames {
    std::string_view positive;
    std::string_view negative;
};

// Takes the next pair off a list of pairs. A pair with parentheses of its own, such as a subscript,
// ends the list without error.
Taken TakePair(std::string_view& pairs, PairNames& names);

}  // namespace bscan::detail
