// The text of the PORT_GROUPING attribute.
#pragma once

#include <string_view>
#include <vector>

namespace bscan::detail {

// Cuts a value into its groups; false when it is malformed or holds none.
bool CutPortGroups(std::string_view value, std::vector<std::string_view>& groups);

// Gives the list of the pairs in a group; false when it is malformed or of a kind unknown.
bool PairsOfGroup(std::string_view group, std::string_view& pairs);

struct PairNames {
    std::string_view positive;
    std::string_view negative;
};

// Whether there was another pair, none was left, or what stands there is none.
enum class TakenPair { kPair, kEnd, kError };

// Takes the next pair off a list of pairs. A pair with parentheses of its own, such as a subscript,
// ends the list without error.
TakenPair TakePair(std::string_view& pairs, PairNames& names);

}  // namespace bscan::detail
