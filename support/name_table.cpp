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

// Odd numbers whose bits have no pattern.
constexpr std::uint64_t kFirst = 0x9e3779b97f4a7c15U;
constexpr std::uint64_t kSecond = 0xd1b54a32d192ed03U;

// Names of up to this length are numbers themselves.
constexpr std::size_t kShort = sizeof(std::uint64_t);

// The slots that so many names need: half are taken at most, so that most searches end at the
// first.
std::size_t SlotsFor(std::size_t count) { return count * 2; }

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

NameTable::Sought::Sought(std::string_view text)
    : name(text), word(text.size() > kShort ? 0 : ShortWord(text)) {}

std::uint32_t NameTable::Hash(const Sought& sought) const {
    std::uint64_t hash = Mix(sought.word ^ seed_, kFirst ^ sought.name.size());
    if (sought.name.size() > kShort) {
        std::string_view rest = sought.name;
        for (; rest.size() > kShort; rest.remove_prefix(kShort)) {
            hash = Mix(hash ^ LoadWord(rest.data()), kSecond);
        }
        hash = Mix(hash ^ ShortWord(rest), kSecond);
    }
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

bool NameTable::Is(std::uint32_t number, const Sought& sought) const {
    const auto& [word, length] = entries_[number];
    if (length != sought.name.size()) return false;
    if (length <= kShort) return word == sought.word;
    return std::memcmp(long_names_.data() + word, sought.name.data(), length) == 0;
}

std::size_t NameTable::Place(std::uint32_t hash, const Sought& sought) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t place = hash & mask;; place = (place + 1) & mask) {
        const Slot slot = slots_[place];
        if (slot.number == 0) return place;
        if (slot.hash == hash && Is(slot.number - 1, sought)) return place;
    }
}

int NameTable::Find(std::string_view name) const {
    const Sought sought(name);
    // Files mostly go on with the name that they had last, or with one that came close to it.
    for (const int distance : {0, 1, -1, 2, -2}) {
        // Below 0 it wraps, and is no number of an entry.
        const std::uint32_t number = last_found_ + static_cast<std::uint32_t>(distance);
        if (number >= entries_.size() || !Is(number, sought)) continue;
        last_found_ = number;
        return static_cast<int>(number);
    }
    if (entries_.empty()) return kNone;
    const std::uint32_t number = slots_[Place(Hash(sought), sought)].number;
    if (number == 0) return kNone;
    last_found_ = number - 1;
    return static_cast<int>(last_found_);
}

int NameTable::Add(std::string_view name) {
    const Sought sought(name);
    if (!entries_.empty() && Is(last_found_, sought)) return static_cast<int>(last_found_);
    if (SlotsFor(entries_.size() + 1) > slots_.size()) Resize(slots_.size() * 2);
    const std::uint32_t hash = Hash(sought);
    Slot& slot = slots_[Place(hash, sought)];
    if (slot.number != 0) {
        last_found_ = slot.number - 1;
        return static_cast<int>(last_found_);
    }
    Entry entry{sought.word, name.size()};
    if (name.size() > kShort) {
        entry.word = long_names_.size();
        long_names_.append(name);
    }
    entries_.push_back(entry);
    slot = {hash, static_cast<std::uint32_t>(entries_.size())};
    return static_cast<int>(slot.number - 1);
}

void NameTable::Clear() { *this = NameTable(); }

void NameTable::Reserve(std::size_t count) {
    entries_.reserve(count);
    if (SlotsFor(count) > slots_.size()) Resize(std::bit_ceil(SlotsFor(count)));
}

void NameTable::Resize(std::size_t slot_count) {
    constexpr std::size_t kFewest = 1024;  // enough for most devices, in 8 KiB
    std::vector<Slot> slots(std::max(slot_count, kFewest));
    const std::size_t mask = slots.size() - 1;
    for (const Slot slot : slots_) {
        if (slot.number == 0) continue;
        std::size_t place = slot.hash & mask;
        while (slots[place].number != 0) place = (place + 1) & mask;
        slots[place] = slot;
    }
    slots_ = std::move(slots);
}

}  // namespace bscan::detail
