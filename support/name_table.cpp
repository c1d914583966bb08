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

std::uint32_t Hash(std::string_view name) {
    std::uint64_t hash = Seed() ^ name.size();
    while (name.size() >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, name.data(), sizeof word);
        hash = Mix(hash ^ word, kFirst);
        name.remove_prefix(sizeof word);
    }
    std::uint64_t last = 0;
    if (!name.empty()) std::memcpy(&last, name.data(), name.size());
    hash = Mix(hash ^ last, kSecond);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

}  // namespace

std::size_t NameTable::Slot(std::string_view name, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        if (slots_[slot] == 0) return slot;
        const Entry& entry = entries_[slots_[slot] - 1];
        if (entry.hash == hash && entry.length == name.size() &&
            std::memcmp(text_.data() + entry.start, name.data(), name.size()) == 0) {
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
