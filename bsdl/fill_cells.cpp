// The boundary register.

#include <bscan/limits.h>

#include "bsdl/model_filler.h"
#include "model/cell_fields.h"
#include "model/cell_roles.h"
#include "model/device_builder.h"
#include "support/text_view.h"

#include <algorithm>
#include <iterator>

namespace bscan::detail {

void ModelFiller::AddCells() {
    own_cells_.assign(static_cast<std::size_t>(parser_.pin_map_->GetNumberOfPins()), -1);
    const int length = RegisterLength();
    if (length == 0) return;
    DeviceBuilder(*parser_.pin_map_).AllocateCells(length);
    for (const Cell& cell : facts_.cells) AddCell(cell, parser_.pin_map_->GetBScanLength());
}

// A file without BOUNDARY_LENGTH has as many cells as its register names.
int ModelFiller::RegisterLength() const {
    if (facts_.boundary_length_word.Exists()) return facts_.boundary_length;
    const auto last = std::max_element(
        facts_.cells.begin(), facts_.cells.end(),
        [](const Cell& left, const Cell& right) { return left.number < right.number; });
    return last == facts_.cells.end() ? 0 : std::min(last->number, kMaxBoundaryLength) + 1;
}

void ModelFiller::AddCell(const Cell& cell, int length) {
    if (cell.number < 0 || cell.number >= length) return;
    CellFields fields;
    fields.number = cell.number;
    fields.type = CellTypeFromText(cell.type.text);
    fields.port = cell.port.port.text;
    if (!IsUpperCase(fields.port)) {
        port_name_.assign(fields.port);
        UpperCase(port_name_);
        fields.port = port_name_;
    }
    fields.port_index = cell.port.index.value_or(0);
    if (cell.function != FUNCTION_NONE) fields.function = cell.function;
    fields.safe = cell.safe;
    if (cell.control < length) fields.control = cell.control;
    fields.disable_value = cell.disable_value;
    fields.disable_result = cell.disable_result;
    fields.value = parser_.FirstValue(cell.number, cell.safe);
    remark_.clear();
    std::copy_if(cell.remark.begin(), cell.remark.end(), std::back_inserter(remark_),
                 [](char c) { return c != '-' && !IsBlank(c); });
    fields.original_name = remark_;

    const int place = fields.port.empty() ? -1 : PlaceOf(cell.port);
    // A cell that its port's mode does not take is refused by the port alone.
    DeviceBuilder(*parser_.pin_map_).AddCell(fields, place < 0 ? nullptr : &Element(place));
    if (place < 0) return;
    int& own = own_cells_[static_cast<std::size_t>(place)];
    if (own < 0 || cell.number < own) own = cell.number;
}

}  // namespace bscan::detail
