#include "bsdl/spelling.h"

#include "support/text_view.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace bscan::detail {
namespace {

constexpr std::size_t kLongest = 40;

using Row = std::array<std::uint8_t, kLongest + 1>;

// The number of slips between two words of at most kLongest characters.
std::size_t Distance(std::string_view left, std::string_view right) {
    const auto equal = [&](std::size_t i, std::size_t j) {
        return ToLower(left[i]) == ToLower(right[j]);
    };
    const auto add = [](std::uint8_t count, bool slip) {
        return static_cast<std::uint8_t>(count + (slip ? 1 : 0));
    };
    Row before{}, last{}, row{};
    for (std::size_t j = 1; j <= right.size(); ++j) last[j] = add(last[j - 1], true);
    for (std::size_t i = 0; i < left.size(); ++i) {
        row[0] = add(last[0], true);
        for (std::size_t j = 0; j < right.size(); ++j) {
            row[j + 1] =
                std::min({add(last[j + 1], true), add(row[j], true), add(last[j], !equal(i, j))});
            const bool swapped = i > 0 && j > 0 && equal(i, j - 1) && equal(i - 1, j);
            if (swapped) row[j + 1] = std::min(row[j + 1], add(before[j - 1], true));
        }
        before = last;
        last = row;
    }
    return last[right.size()];
}

}  // namespace

std::optional<int> Slips(std::string_view word, std::string_view meant) {
    if (EqualIgnoringCase(word, meant)) return 0;
    if (word.size() > kLongest || meant.size() > kLongest || word.size() < 2) return {};
    const std::size_t allowed = meant.size() >= 8 ? 2 : 1;
    const std::size_t longer = std::max(word.size(), meant.size());
    const std::size_t shorter = std::min(word.size(), meant.size());
    if (longer - shorter > allowed) return {};
    const std::size_t slips = Distance(word, meant);
    if (slips > allowed) return {};
    return static_cast<int>(slips);
}

bool IsMisspelt(std::string_view word, std::string_view meant) {
    return Slips(word, meant).value_or(0) > 0;
}

}  // namespace bscan::detail
