// What finds the ports and the cells of one device.
#pragma once

#include "model/cell_names.h"
#include "model/port_index.h"

namespace bscan::detail {

struct DeviceIndex {
    explicit DeviceIndex(LObjList& pins) : ports(pins) {}

    PortIndex ports;
    CellNames cells;
};

}  // namespace bscan::detail
