// Names that were met before, whatever their letter case.
#pragma once

#include "support/name_table.h"
#include "support/text_view.h"

#include <string>
#include <string_view>

namespace bscan::detail {

class NameSet {
public:
    // Whether the name is new; it belongs to the set from now on.
    bool Add(std::string_view name) {
        const int next = count_;
        if (table_.Add(Key(name)) != next) return false;
        ++count_;
        return true;
    }
    // Its number in the order of coming, from 0; negative when it was never added.
    int Find(std::string_view name) { return table_.Find(Key(name)); }
    bool Contains(std::string_view name) { return Find(name) >= 0; }
    void Clear() {
        table_.Clear();
        count_ = 0;
    }

private:
    std::string_view Key(std::string_view name) {
        key_.assign(name);
        UpperCase(key_);
        return key_;
    }

    NameTable table_;
    int count_ = 0;
    std::string key_;
};

}  // namespace bscan::detail
