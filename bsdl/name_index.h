// Names as the language compares them: in any letter case.
#pragma once

#include "support/name_table.h"

#include <string>
#include <string_view>

namespace bscan::detail {

// Numbers for names, from 0 in the order of their coming; letter case does not matter.
class NameIndex {
public:
    static constexpr int kNone = NameTable::kNone;

    // The number of a name; kNone when it was never added.
    int Find(std::string_view name) const { return names_.Find(Folded(name)); }
    // The number of a name, which is added when it is new.
    int Add(std::string_view name) { return names_.Add(Folded(name)); }
    bool Has(std::string_view name) const { return Find(name) != kNone; }
    void Reserve(std::size_t count) { names_.Reserve(count); }
    void Clear() { names_.Clear(); }

private:
    std::string_view Folded(std::string_view name) const;

    NameTable names_;
    mutable std::string folded_;  // the last name in upper case, when it was not so already
};

}  // namespace bscan::detail
