#include "support/name_table.h"

#include <chrono>
#include <cstring>

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

std::uint64_t Seed() {
    static const std::uint64_t seed = [] {
        static const char place = 0;  // its address differs from process to process
        const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
        const auto address = reinterpret_cast<std::uintptr_t>(&place);
        return Mix(static_cast<std::uint64_t>(time) ^ kFirst, address ^ kSecond);
    }();
    return seed;
}

template <class Word>
std::uint64_t Load(const char* text) {
    Word word = 0;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// Up to 8 characters as a number, read in pieces of fixed size, which may overlap.
std::uint64_t LoadShort(std::string_view text) {
    const std::size_t size = text.size();
    const char* const begin = text.data();
    if (size >= 4) {
        return Load<std::uint32_t>(begin) << 32 | Load<std::uint32_t>(begin + size - 4);
    }
    if (size >= 2) {
        return Load<std::uint16_t>(begin) << 16 | Load<std::uint16_t>(begin + size - 2);
    }
    return size == 0 ? 0 : Load<std::uint8_t>(begin);
}

std::uint32_t Hash(std::string_view name) {
    std::uint64_t hash = Seed() ^ name.size();
    for (; name.size() > 8; name.remove_prefix(8)) {
        hash = Mix(hash ^ Load<std::uint64_t>(name.data()), kFirst);
    }
    hash = Mix(hash ^ LoadShort(name), kSecond);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

}  // namespace

std::size_t NameTable::Slot(std::string_view name, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        if (slots_[slot] == 0) return slot;
        const Entry& entry = entries_[slots_[slot] - 1];
        if (entry.hash == hash && entry.length == name.size() &&
            (name.empty() ||
             std::memcmp(text_.data() + entry.start, name.data(), name.size()) == 0)) {
            return slot;
        }
    }
}

int NameTable::Find(std::string_view name) const {
    if (slots_.empty()) return kNone;
    return static_cast<int>(slots_[Slot(name, Hash(name))]) - 1;
}

int NameTable::Add(std::string_view name) {
    if ((entries_.size() + 1) * 2 > slots_.size()) Grow();
    const std::uint32_t hash = Hash(name);
    std::uint32_t& slot = slots_[Slot(name, hash)];
    if (slot == 0) {
        entries_.push_back({text_.size(), static_cast<std::uint32_t>(name.size()), hash});
        try {
            text_.append(name);
        } catch (...) {
            entries_.pop_back();
            throw;
        }
        slot = static_cast<std::uint32_t>(entries_.size());
    }
    return static_cast<int>(slot) - 1;
}

void NameTable::Clear() { *this = NameTable(); }

void NameTable::Grow() {
    std::vector<std::uint32_t> slots(slots_.empty() ? 16 : slots_.size() * 2);
    const std::size_t mask = slots.size() - 1;
    for (std::uint32_t number = 0; number < entries_.size(); ++number) {
        std::size_t slot = entries_[number].hash & mask;
        while (slots[slot] != 0) slot = (slot + 1) & mask;
        slots[slot] = number + 1;
    }
    slots_ = std::move(slots);
}

}  // namespace bscan::detail
