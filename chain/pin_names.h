// How people name the pins of a device.
#pragma once

#include <bscan/facts.h>
#include <bscan/pin_driver.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bscan::detail {

// The names of the port elements of one device, by their positions in its list.
class PinNames {
public:
    PinNames() = default;
    // `facts` may be null; then indexes count from the lowest of a vector.
    PinNames(const PinDriver& pins, const Facts* facts);

    // The elements that a text names, by the first way that finds any: designator, port, number.
    std::vector<int> Find(std::string_view text) const;

    // Such as TDI or D(3).
    std::string Label(int element) const;

private:
    struct Named {
        std::string port;
        std::string pin;
        int index = 0;
        int number = -1;
        bool is_vector = false;
    };

    std::vector<int> ByPort(std::string_view text) const;
    std::vector<int> ByPin(std::string_view text) const;
    std::vector<int> ByNumber(std::string_view text) const;

    std::vector<Named> elements_;
    std::unordered_map<std::string, std::vector<int>> by_port_;  // in upper case
    std::unordered_map<std::string, std::vector<int>> by_pin_;
};

}  // namespace bscan::detail
