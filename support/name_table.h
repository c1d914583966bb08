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
class NameTable {
public:
    static constexpr int kNone = -1;

    // The number of a name; kNone when it was never added.
    int Find(std::string_view name) const;
    // The number of a name, which is added when it is new.
    int Add(std::string_view name);
    // Makes room for so many names in all.
    void Reserve(std::size_t count);
    void Clear();

private:
    // All that most searches have to look at is one slot: up to eight characters of a name are kept
    // in it, as a number.
    struct Slot {
        std::uint64_t word = 0;    // or where the name starts in `long_names_`
        std::uint32_t key = 0;     // the hash; its lowest bits tell the length
        std::uint32_t number = 0;  // counted from 1; 0 in a free slot
    };

    Slot SlotFor(std::string_view name) const;
    // Where a name is, or the free place that it would take.
    std::size_t Place(const Slot& sought, std::string_view name) const;
    std::string_view LongName(const Slot& slot) const;
    void Resize(std::size_t slot_count);

    static std::uint64_t Seed();

    std::uint64_t seed_ = Seed();
    std::vector<Slot> slots_;  // a power of two long, or empty
    std::uint32_t count_ = 0;
    std::string long_names_;  // each behind its length
};

}  // namespace bscan::detail
