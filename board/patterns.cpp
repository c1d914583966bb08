#include "board/patterns.h"

#include <bscan/board/board.h>

#include <algorithm>

namespace bscan {

// Where a text does not go on as the pattern does, the last star takes one more character.
bool FitsPattern(std::string_view pattern, std::string_view name) {
    std::size_t p = 0;
    std::size_t n = 0;
    std::size_t star = std::string_view::npos;
    std::size_t taken = 0;
    while (n < name.size()) {
        const bool in_pattern = p < pattern.size();
        if (in_pattern && pattern[p] == '*') {
            star = p++;
            taken = n;
        } else if (in_pattern && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

namespace detail {

Patterns::Patterns(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        if (text.find_first_of("*?") == std::string::npos) {
            names_.insert(text);
        } else {
            patterns_.push_back(text);
        }
    }
}

bool Patterns::Fit(const std::string& name) const {
    return names_.count(name) != 0 ||
           std::any_of(patterns_.begin(), patterns_.end(),
                       [&](const std::string& pattern) { return FitsPattern(pattern, name); });
}

}  // namespace detail
}  // namespace bscan
