// Where the elements of the ports are, by port name and declared index.
#pragma once

#include <bscan/facts.h>

#include "bsdl/name_index.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// The model's index of the element that a port's name and a declared index stand for; -1 when they
// stand for none. A port of one element may be named without index, a single bit with the index 0.
int VectorIndex(const Port& port, std::optional<int> index);

// A port and the place of its first element in the device's list of elements.
struct PlacedPort {
    const Port* port;
    int first;
    int count;

    // The place of the element of a declared index; -1 without one.
    int PlaceOf(std::optional<int> index) const;
    // The declared index of the k-th element; none for a port without range.
    std::optional<int> IndexOf(int k) const;
};

class ElementTable {
public:
    void Add(const Port& port, int first, int count);

    // The port of that name, letter case ignored; null without one.
    const PlacedPort* Find(std::string_view port) const;
    // The place of an element; -1 when there is none, or no single one is meant.
    int PlaceOf(const ElementName& element) const;

private:
    NameIndex names_;
    std::vector<PlacedPort> ports_;
};

// A name as the model compares it.
std::string UpperCased(std::string_view name);

}  // namespace bscan::detail
