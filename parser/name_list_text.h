// The text of attributes made of entries NAME (item, item, ...).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

struct NameListEntry {
    std::string name;
    std::vector<std::string> items;
};

// Takes the value of such an attribute apart, entry by entry. The quotes and '&' between the pieces
// of the value are still in it.
class NameListCutter {
public:
    // The statement up to its ';'; `syntax_code` is what a malformed entry gives.
    NameListCutter(std::string_view statement, int syntax_code);

    bool IsAtEnd() const { return rest_.find(')') == std::string_view::npos; }
    // Takes the next entry, unless the end is reached: 0 or a negative code.
    int Next(NameListEntry& entry);

private:
    int TakeItems(std::string_view list, std::vector<std::string>& items) const;

    std::string_view rest_;
    int syntax_code_;
};

}  // namespace bscan::detail
