// The numbers of the pins of one package.
#pragma once

#include <bscan/package_pin_map.h>

#include "support/name_table.h"

#include <cstddef>
#include <string_view>

namespace bscan::detail {

// Finds a designator's number as a walk over the package's pins would. No two pins of a package
// are the same, so the numbers of the names are those of the pins, less 1.
class DesignatorIndex {
public:
    explicit DesignatorIndex(const PackagePinMap& package) : package_(package) {}

    // The number of the pin of that designator, from 1; 0 without one. The main pass mostly asks in
    // the order in which the package pass has met the pins: then nothing has to be sought.
    int Number(std::string_view designator);

private:
    const PackagePinMap& package_;
    std::size_t next_ = 0;  // in the order of the pin map
    NameTable names_;       // filled when it is wanted
};

}  // namespace bscan::detail
