#include "support/name_table.h"

#include "support/word.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <functional>

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

std::uint64_t MakeSeed() {
    static const char place = 0;  // its address differs from process to process
    const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
    const auto address = reinterpret_cast<std::uintptr_t>(&place);
    return Mix(static_cast<std::uint64_t>(time) ^ kFirst, address ^ kSecond);
}

const std::uint64_t kSeed = MakeSeed();

std::uint32_t HashOf(std::uint64_t mixed) {
    return static_cast<std::uint32_t>(mixed ^ (mixed >> 32));
}

constexpr std::size_t kShort = sizeof(std::uint64_t);

std::uint32_t HashLong(std::string_view name) {
    std::uint64_t hash = kSeed ^ name.size();
    for (; name.size() > kShort; name.remove_prefix(kShort)) {
        hash = Mix(hash ^ LoadWord(name.data()), kFirst);
    }
    return HashOf(Mix(hash ^ ShortWord(name), kSecond));
}

}  // namespace

// What is stored of a name, except for where its text starts.
NameTable::Entry NameTable::EntryOf(std::string_view name) {
    const auto length = static_cast<std::uint32_t>(name.size());
    if (length > kShort) return {0, length, HashLong(name)};
    const std::uint64_t word = ShortWord(name);
    return {word, length, HashOf(Mix(word ^ kSeed, kSecond ^ length))};
}

// The slot of a name, or the free one that it would take.
std::size_t NameTable::Slot(const Entry& sought, std::string_view name) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = sought.hash & mask;; slot = (slot + 1) & mask) {
        if (slots_[slot] == 0) return slot;
        const Entry& entry = entries_[slots_[slot] - 1];
        if (entry.hash != sought.hash || entry.length != sought.length) continue;
        if (entry.length <= kShort) {
            if (entry.word == sought.word) return slot;
        } else if (EqualWords(name, {text_.data() + entry.word, entry.length}, std::identity())) {
            return slot;
        }
    }
}

int NameTable::Find(std::string_view name) const {
    if (slots_.empty()) return kNone;
    return static_cast<int>(slots_[Slot(EntryOf(name), name)]) - 1;
}

int NameTable::Add(std::string_view name) {
    // At most half of the slots are taken.
    if ((entries_.size() + 1) * 2 > slots_.size()) {
        Rehash(std::max<std::size_t>(slots_.size() * 2, 16));
    }
    Entry entry = EntryOf(name);
    std::uint32_t& slot = slots_[Slot(entry, name)];
    if (slot == 0) {
        if (entry.length > kShort) {
            entry.word = text_.size();
            text_.append(name);
        }
        entries_.push_back(entry);
        slot = static_cast<std::uint32_t>(entries_.size());
    }
    return static_cast<int>(slot) - 1;
}

void NameTable::Clear() { *this = NameTable(); }

void NameTable::Reserve(std::size_t count) {
    entries_.reserve(count);
    const std::size_t slot_count = std::bit_ceil(std::max<std::size_t>(count * 2, 16));
    if (slot_count > slots_.size()) Rehash(slot_count);
}

void NameTable::Rehash(std::size_t slot_count) {
    std::vector<std::uint32_t> slots(slot_count);
    const std::size_t mask = slots.size() - 1;
    for (std::uint32_t number = 0; number < entries_.size(); ++number) {
        std::size_t slot = entries_[number].hash & mask;
        while (slots[slot] != 0) slot = (slot + 1) & mask;
        slots[slot] = number + 1;
    }
    slots_ = std::move(slots);
}

}  // namespace bscan::detail
