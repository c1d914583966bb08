// Which drivers are on together.
#pragma once

#include "board/drivers.h"

#include <vector>

namespace bscan::detail {

// Drivers that are on together: by net, the one that drives it, or -1.
struct DriverGroup {
    std::vector<int> drivers;
    std::vector<int> controls;  // that are on beside the permanent ones
};

// Sorts the controls of tested nets into groups, in which no net has two drivers, so that each
// driver of a tested net is on in one group at least, and each pulled net is released in one. There
// are as few groups as a search finds, and each drives as many nets as it can.
std::vector<DriverGroup> MakeGroups(const Board& board, const DriverTable& table,
                                    const std::vector<bool>& tested);

}  // namespace bscan::detail
