#include "bsdl/element_table.h"

#include "support/text_view.h"

namespace bscan::detail {

std::string UpperCased(std::string_view name) {
    std::string upper(name);
    UpperCase(upper);
    return upper;
}

int VectorIndex(const Port& port, std::optional<int> index) {
    if (!port.range) return index.value_or(0) == 0 ? 0 : -1;
    const IndexRange& range = *port.range;
    if (!index) return range.left == range.right ? 0 : -1;
    return range.Contains(*index) ? *index - range.Lowest() : -1;
}

int PlacedPort::PlaceOf(std::optional<int> index) const {
    const int vector_index = VectorIndex(*port, index);
    if (vector_index < 0 || vector_index >= count) return -1;
    const bool descending = port->range && port->range->left > port->range->right;
    return first + (descending ? count - 1 - vector_index : vector_index);
}

std::optional<int> PlacedPort::IndexOf(int k) const {
    if (!port->range) return std::nullopt;
    return port->range->left <= port->range->right ? port->range->left + k : port->range->left - k;
}

void ElementTable::Add(const Port& port, int first, int count) {
    const auto number = static_cast<std::size_t>(names_.Add(port.name.text));
    if (number == ports_.size()) ports_.push_back({&port, first, count});
}

const PlacedPort* ElementTable::Find(std::string_view port) const {
    const int number = names_.Find(port);
    return number == NameIndex::kNone ? nullptr : &ports_[static_cast<std::size_t>(number)];
}

int ElementTable::PlaceOf(const ElementName& element) const {
    const PlacedPort* const port = Find(element.port.text);
    return port == nullptr ? -1 : port->PlaceOf(element.index);
}

}  // namespace bscan::detail
