// The elements of the ports that share one name.
#pragma once

#include <memory>
#include <vector>

namespace bscan::detail {

// The elements that one port declaration has made: neighbours in the pin list, whose vector indexes
// run from 0 to count - 1, or back.
struct PortRun {
    int first = 0;  // position of the first element in the pin list
    int count = 0;
    bool ascending = true;

    int WithIndex(int vector_index) const {
        return first + (ascending ? vector_index : count - 1 - vector_index);
    }
};

// All elements of one name, as runs in the order of the pin list. Every search halves, so that a
// name declared a million times costs no more than a million names.
class PortRuns {
public:
    void Add(const PortRun& run);

    // The position of the k-th element, from 0; -1 when there are fewer.
    int At(int k) const;
    // The number of elements in front of a position of the pin list.
    int CountBefore(int position) const;
    // The position of the first element; -1 when there is none.
    int First() const { return At(0); }
    // The position of the first element with a vector index; -1 when there is none.
    int FirstWithIndex(int vector_index) const;

private:
    struct Item {
        PortRun run;
        int before = 0;   // elements in the runs in front of this one
        int longest = 0;  // count of the longest run up to this one
    };

    PortRun Only() const;

    // Most names are declared once, which then takes no allocation.
    int first_ = 0;
    int count_ = 0;  // negative for descending indexes
    std::unique_ptr<std::vector<Item>> all_;
};

}  // namespace bscan::detail
