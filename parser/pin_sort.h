// Bringing the pins of a package into their order.
#pragma once

#include <bscan/pin_name.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// Pins in the order of pin_smaller, each once. Most of them are never more than a number.
class PinSet {
public:
    // `letters` are the letters of a designator.
    void Add(std::string_view letters, unsigned short number);

    // Brings the pins that were added into their order.
    std::vector<PIN_NAME> Sorted();

private:
    // What most pins are told by: a number that grows in their order.
    struct Keyed {
        std::uint64_t key;
        std::size_t letters;  // the place in `letters_` of those that the key cannot hold
    };

    void SortByKey();
    void SortByLetters();

    std::vector<Keyed> pins_;
    std::vector<std::string> letters_;
};

}  // namespace bscan::detail
