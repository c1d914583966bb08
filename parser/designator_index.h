// The numbers of the pins of one package.
#pragma once

#include <bscan/package_pin_map.h>

#include "support/name_table.h"

#include <string_view>

namespace bscan::detail {

// Finds a designator's number as a walk over the package's pins would. No two pins of a package
// are the same, so the numbers of the names are those of the pins, less 1.
class DesignatorIndex {
public:
    explicit DesignatorIndex(const PackagePinMap& package);

    // The number of the pin of that designator, from 1; 0 without one.
    int Number(std::string_view designator) const;

private:
    NameTable names_;
};

}  // namespace bscan::detail
