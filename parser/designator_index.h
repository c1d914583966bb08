// The numbers of the pins of one package.
#pragma once

#include <bscan/package_pin_map.h>

#include "support/name_table.h"

#include <string_view>
#include <vector>

namespace bscan::detail {

// Finds a designator's number as a walk over the package's pins would. The package pass adds each
// pin once, a host may add it again.
class DesignatorIndex {
public:
    explicit DesignatorIndex(const PackagePinMap& package);

    // The number of the first pin of that designator, from 1; 0 without one.
    int Number(std::string_view designator) const;

private:
    NameTable names_;
    std::vector<int> numbers_;  // of the names; empty as long as none came twice
};

}  // namespace bscan::detail
