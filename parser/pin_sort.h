// Bringing the pins of a package into their order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// The pins of a package, each once.
class PinSet {
public:
    // Takes a designator: its letters and the value of its digits count, wherever they stand.
    void Add(std::string_view designator);

    // Brings the pins into the order of pin_smaller.
    void Sort();

    // The designators of the sorted pins, letters before digits.
    std::vector<std::string> Designators() const;
    // The places of the sorted pins, in the order of their coming.
    std::vector<std::uint32_t> Places() const;

private:
    // Most pins are told by a number that grows in their order.
    struct Keyed {
        std::uint64_t key;
        std::uint32_t letters;  // the place behind those in `letters_` that the key cannot hold
        std::uint32_t coming;   // how many came before
    };

    void Add(std::string_view letters, std::string_view digits);
    void SortByKey();
    void SortByLetters();
    bool Equal(const Keyed& left, const Keyed& right) const;
    const std::string& Letters(const Keyed& pin) const { return letters_[pin.letters - 1]; }

    std::vector<Keyed> pins_;
    std::vector<std::string> letters_;
};

}  // namespace bscan::detail
