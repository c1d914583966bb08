// What one entry of the boundary register says.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/signal.h>

#include <optional>
#include <string_view>

namespace bscan::detail {

struct CellFields {
    int number = 0;
    std::optional<CellType> type;  // none keeps the cell's type
    std::string_view port;         // in upper case; empty for none
    int port_index = 0;
    std::optional<CellFunction> function;  // none keeps the cell's function
    eSignal safe = SIG_X;
    int control = -1;  // negative for none
    eSignal disable_value = SIG_0;
    eSignal disable_result = SIG_Z;
    eSignal value = SIG_X;                          // that the cell begins with
    std::optional<std::string_view> original_name;  // none keeps the cell's original pin name
};

}  // namespace bscan::detail
