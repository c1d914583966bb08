// Numbers for names, for the indexes over ports, cells and pins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// A set of names in which each has a number, from 0 in the order of their coming. The names are
// copied, without an allocation for each. The hash is seeded anew in each process: a file cannot be
// written so that its names collide.
//
// With std::unordered_map in its place, a device of 100,000 ports takes three times as long to
// read: its nodes lie far apart, and most names are sought in about the order in which they came.
class NameTable {
public:
    static constexpr int kNone = -1;

    // The number of a name; kNone when it was never added.
    int Find(std::string_view name) const;
    // The number of a name, which is added when it is new.
    int Add(std::string_view name);
    bool IsEmpty() const { return entries_.empty(); }
    // Makes room for so many names in all.
    void Reserve(std::size_t count);
    void Clear();

private:
    struct Entry {
        std::uint64_t word;  // up to eight characters, as a number, or the place in `long_names_`
        std::uint64_t length;
    };
    // A name that is sought or added.
    struct Sought {
        explicit Sought(std::string_view text);

        std::string_view name;
        std::uint64_t word;  // as in its entry when it is short
    };
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0;  // counted from 1; 0 in a free slot
    };

    bool Is(std::uint32_t number, const Sought& sought) const;
    std::uint32_t Hash(const Sought& sought) const;
    // Where a name is, or the free place that it would take.
    std::size_t Place(std::uint32_t hash, const Sought& sought) const;
    void Resize(std::size_t slot_count);

    static std::uint64_t Seed();

    std::uint64_t seed_ = Seed();
    std::vector<Slot> slots_;     // a power of two long, or empty
    std::vector<Entry> entries_;  // by number
    std::string long_names_;
    mutable std::uint32_t last_found_ = 0;  // where the next search begins
};

}  // namespace bscan::detail
