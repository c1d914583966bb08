// The boundary register: its value is read whole, cut into entries, and then registered.

#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/main_pass.h"
#include "parser/register_text.h"
#include "support/text_view.h"

namespace bscan::detail {

int MainPass::ReadBoundaryRegister(std::string& statement) {
    value_.clear();
    const int result = reader_.ReadStringValue(ValueStart(statement), Comments::kKeep, value_);
    return result == kOk ? RegisterCells(value_) : result;
}

int MainPass::RegisterCells(std::string_view value) {
    if (!IsRegister(value)) return kBadValue;
    if (parser_.pin_map_ == nullptr) return kFailed;
    int result = kOk;
    RegisterCutter cutter(value);
    for (RegisterEntry entry; result == kOk && cutter.Next(entry);) {
        RegisterFields fields;
        result = CutRegisterEntry(entry.text, fields) ? RegisterCell(fields, entry.remark)
                                                      : static_cast<int>(kBadValue);
    }
    // The pairs are completed from the cells that there are, even after a failure.
    CompletePairs();
    return result;
}

int MainPass::RegisterCell(const RegisterFields& fields, std::string_view remark) {
    port_.assign(fields.port);
    UpperCase(port_);
    remark_.clear();
    AppendRemark(remark, remark_);
    return DeviceBuilder(*parser_.pin_map_)
        .AddCell({fields.number, fields.type, port_, fields.port_index, fields.function,
                  fields.safe, fields.control, fields.disable_value, fields.disable_result,
                  FirstValue(fields), remark_});
}

eSignal MainPass::FirstValue(const RegisterFields& fields) const {
    if (!parser_.capture_) return fields.safe;
    const auto& [data, mask] = *parser_.capture_;
    const auto cell = static_cast<std::size_t>(fields.number);
    if (fields.number < 0 || cell >= data.size() || mask[cell] == 0) return SIG_X;
    return data[cell] == 0 ? SIG_0 : data[cell] == 1 ? SIG_1 : SIG_X;
}

}  // namespace bscan::detail
