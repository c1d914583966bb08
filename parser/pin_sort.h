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

    // The designators of all pins, letters before digits, in the order of pin_smaller.
    std::vector<std::string> Designators();

private:
    // Most pins are told by a number that grows in their order.
    struct Keyed {
        std::uint64_t key;
        std::size_t letters;  // the place behind those in `letters_` that the key cannot hold
    };

    void Add(std::string_view letters, std::string_view digits);
    void Sort();
    void SortByKey();
    void SortByLetters();
    std::string_view Letters(const Keyed& pin) const { return letters_[pin.letters - 1]; }

    std::vector<Keyed> pins_;
    std::vector<std::string> letters_;
};

}  // namespace bscan::detail
