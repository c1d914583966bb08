#include "support/name_table.h"

#include "support/word.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <utility>

namespace bscan::detail {
namespace {

// Multiplies to 128 bits and folds the halves: each bit of the result depends on all of both.
std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

constexpr std::uint64_t kFirst = 0x9e3779b97f4a7c15U;
constexpr std::uint64_t kSecond = 0xd1b54a32d192ed03U;

constexpr std::size_t kShort = sizeof(std::uint64_t);

// The part of a key that tells lengths up to kShort apart.
constexpr std::uint32_t kLengthBits = 4;
constexpr std::uint32_t kLongLength = kShort + 1;

std::uint32_t KeyOf(std::uint64_t hash, std::size_t length) {
    const auto shown = static_cast<std::uint32_t>(std::min<std::size_t>(length, kLongLength));
    return static_cast<std::uint32_t>(hash ^ (hash >> 32)) << kLengthBits | shown;
}

// Some four fifths of the slots are taken at most, so that a search always ends at a free one.
std::size_t SlotsFor(std::size_t count) { return count + count / 4; }

std::uint64_t HashLong(std::string_view name, std::uint64_t seed) {
    std::uint64_t hash = seed ^ name.size();
    for (; name.size() > kShort; name.remove_prefix(kShort)) {
        hash = Mix(hash ^ LoadWord(name.data()), kFirst);
    }
    return Mix(hash ^ ShortWord(name), kSecond);
}

}  // namespace

std::uint64_t NameTable::Seed() {
    static const std::uint64_t seed = [] {
        static const char place = 0;  // its address differs from process to process
        const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
        const auto address = reinterpret_cast<std::uintptr_t>(&place);
        return Mix(static_cast<std::uint64_t>(time) ^ kFirst, address ^ kSecond);
    }();
    return seed;
}

// What a name's slot holds, except for the number and the place of a long name.
NameTable::Slot NameTable::SlotFor(std::string_view name) const {
    if (name.size() > kShort) return {0, KeyOf(HashLong(name, seed_), name.size()), 0};
    const std::uint64_t word = ShortWord(name);
    return {word, KeyOf(Mix(word ^ seed_, kSecond ^ name.size()), name.size()), 0};
}

std::string_view NameTable::LongName(const Slot& slot) const {
    std::size_t length = 0;
    std::memcpy(&length, long_names_.data() + slot.word, sizeof length);
    return {long_names_.data() + slot.word + sizeof length, length};
}

std::size_t NameTable::Place(const Slot& sought, std::string_view name) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t place = sought.key >> kLengthBits & mask;; place = (place + 1) & mask) {
        const Slot& slot = slots_[place];
        if (slot.number == 0) return place;
        if (slot.key != sought.key) continue;
        if (name.size() <= kShort ? slot.word == sought.word : LongName(slot) == name) return place;
    }
}

int NameTable::Find(std::string_view name) const {
    if (slots_.empty()) return kNone;
    return static_cast<int>(slots_[Place(SlotFor(name), name)].number) - 1;
}

int NameTable::Add(std::string_view name) {
    if (SlotsFor(count_ + std::size_t{1}) > slots_.size()) Resize(slots_.size() * 2);
    Slot added = SlotFor(name);
    Slot& slot = slots_[Place(added, name)];
    if (slot.number == 0) {
        if (name.size() > kShort) {
            const std::size_t length = name.size();
            char bytes[sizeof length];
            std::memcpy(bytes, &length, sizeof length);
            added.word = long_names_.size();
            long_names_.append(bytes, sizeof bytes).append(name);
        }
        added.number = ++count_;
        slot = added;
    }
    return static_cast<int>(slot.number) - 1;
}

void NameTable::Clear() { *this = NameTable(); }

void NameTable::Reserve(std::size_t count) {
    if (SlotsFor(count) > slots_.size()) Resize(std::bit_ceil(SlotsFor(count)));
}

void NameTable::Resize(std::size_t slot_count) {
    constexpr std::size_t kFewest = 16;
    std::vector<Slot> slots(std::max(slot_count, kFewest));
    const std::size_t mask = slots.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.number == 0) continue;
        std::size_t place = slot.key >> kLengthBits & mask;
        while (slots[place].number != 0) place = (place + 1) & mask;
        slots[place] = slot;
    }
    slots_ = std::move(slots);
}

}  // namespace bscan::detail
