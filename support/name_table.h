// Numbers for names, for the indexes over ports, cells and pins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// A set of names in which each has a number, from 0 in the order of their coming. The names are
// copied into one text, so adding one costs no allocation of its own. The hash is seeded anew in
// each process: a file cannot be written so that its names collide.
class NameTable {
public:
    static constexpr int kNone = -1;

    // The number of a name; kNone when it was never added.
    int Find(std::string_view name) const;
    // The number of a name, which is added when it is new.
    int Add(std::string_view name);
    // Makes room for so many names in all.
    void Reserve(std::size_t count);
    int Count() const { return static_cast<int>(entries_.size()); }
    void Clear();

private:
    // Up to eight characters are kept in the entry itself, as a number.
    struct Entry {
        std::uint64_t word;  // or where the name starts in `text_`
        std::uint32_t length;
        std::uint32_t hash;
    };

    static Entry EntryOf(std::string_view name);
    std::size_t Slot(const Entry& sought, std::string_view name) const;
    void Rehash(std::size_t slot_count);

    std::string text_;  // the longer names
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> slots_;  // number + 1 of the entry; 0 for none; a power of two long
};

}  // namespace bscan::detail
