/// @file
/// What an interconnection test drove and what every receiver saw, without regard to how.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bscan {

/// The levels of one net over the vectors of a group: vector i is bit i.
using TestWord = std::uint64_t;

/// A pin of a scan device.
struct TestPin {
    std::string name;  ///< PART.PIN, by designator
    int net = -1;
    int segment = 0;                 ///< of its net; segments are joined by through parts
    bool receives = false;           ///< a cell captures what it shows
    std::optional<bool> lets_go_at;  ///< of an open-drain driver: the level that a pull gives
};

/// A resistor from a net to a supply.
struct TestPull {
    std::string pin;  ///< the resistor's pin on the net, PART.PIN
    int segment = 0;
    bool level = false;
};

/// A two-pin part that joins two segments of a net.
struct TestThrough {
    std::string first_pin, second_pin;
    int first_segment = 0, second_segment = 0;
};

/// A net that takes part in the test.
struct TestNet {
    std::string name;
    std::vector<int> pins;
    std::vector<TestPull> pulls;
    std::vector<TestThrough> through;
    TestWord code = 0;  ///< what its driver drives, the same in every group
};

/// Vectors during which each net has one driver or none.
struct TestGroup {
    std::vector<int> drivers;    ///< by net: the pin that drives it; -1 while it is released
    std::vector<TestWord> seen;  ///< by pin; only those of receiving pins count
};

/// A whole test after its run. Codes of two nets never agree, nor is one 0 or 1 throughout.
struct TestRecord {
    int vector_count = 0;  ///< in each group; at most 64
    std::vector<TestPin> pins;
    std::vector<TestNet> nets;
    std::vector<TestGroup> groups;

    /// @return the word of a net that is 1 in every vector.
    TestWord AllOnes() const {
        return vector_count >= 64 ? ~TestWord{0} : (TestWord{1} << vector_count) - 1;
    }
};

}  // namespace bscan
