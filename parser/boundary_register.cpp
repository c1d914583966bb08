// The boundary register: its value is read whole and cut into entries, each of which fills a cell.

#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/main_pass.h"
#include "parser/register_text.h"
#include "support/text_view.h"

#include <algorithm>
#include <vector>

namespace bscan::detail {

int MainPass::ReadBoundaryRegister(std::string& statement) {
    value_.clear();
    const int result = reader_.ReadStringValue(ValueStart(statement), Comments::kKeep, value_);
    return result == kOk ? AddCells(value_) : result;
}

int MainPass::AddCells(std::string_view value) {
    std::vector<RegisterEntry> entries;
    if (const BScanPinMap* const device = parser_.pin_map_.get(); device != nullptr) {
        // Mostly there is one for each cell; none is shorter than "()".
        const auto cells = static_cast<std::size_t>(device->GetBScanLength());
        entries.reserve(std::min(cells, value.size() / 2));
    }
    if (!CutRegister(value, entries)) return kBadValue;
    if (parser_.pin_map_ == nullptr) return kFailed;
    int result = kOk;
    for (auto entry = entries.begin(); result == kOk && entry != entries.end(); ++entry) {
        CellFields fields;
        result = CutRegisterEntry(*entry, fields) ? AddCell(fields, entry->remark)
                                                  : static_cast<int>(kBadValue);
    }
    // The pairs are completed from the cells that there are, even after a failure.
    const int completed = CompletePairs();
    return result == kOk ? completed : result;
}

int MainPass::AddCell(CellFields& fields, std::string_view remark) {
    if (!IsUpperCase(fields.port)) {
        port_.assign(fields.port);
        UpperCase(port_);
        fields.port = port_;
    }
    original_name_.clear();
    AppendRemark(remark, original_name_);
    fields.original_name = original_name_;
    fields.value = parser_.FirstValue(fields.number, fields.safe);
    return DeviceBuilder(*parser_.pin_map_).AddCell(fields);
}

}  // namespace bscan::detail
