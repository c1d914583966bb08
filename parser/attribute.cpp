// The dispatch of attributes by their names.

#include <bscan/result.h>

#include "parser/main_pass.h"
#include "support/text_view.h"

#include <algorithm>
#include <iterator>

namespace bscan::detail {

struct MainPass::AttributeRule {
    std::string_view keyword;
    Reader reader;
    bool result_counts;  // whether a failure of the reader ends the main pass
};

// The first keyword that occurs anywhere in the statement decides, even when the attribute has
// another name; such a statement is then left unread.
const MainPass::AttributeRule MainPass::kAttributeRules[] = {
    {"PIN_MAP_STRING", &MainPass::ReadPinMap, false},
    {"BOUNDARY_REGISTER", &MainPass::ReadBoundaryRegister, true},
    {"BOUNDARY_LENGTH", &MainPass::ReadBoundaryLength, true},
    {"INSTRUCTION_LENGTH", &MainPass::ReadInstructionLength, true},
    {"INSTRUCTION_OPCODE", &MainPass::ReadInstructionOpcode, true},
    {"INSTRUCTION_CAPTURE", &MainPass::ReadInstructionCapture, true},
    {"REGISTER_ACCESS", &MainPass::ReadRegisterAccess, true},
    {"PORT_GROUPING", &MainPass::ReadPortGrouping, true},
};

int MainPass::ReadAttribute(std::string& statement) {
    if (parser_.instruction_register_ == nullptr) {
        parser_.instruction_register_ = std::make_unique<CInstrRegisterDesc>();
    }
    statement.push_back(' ');  // for an "is" at the end of its line
    int result = reader_.Complete(statement, Terminator::Text(" is "));
    if (result != kOk) return result;
    const auto* const rule =
        std::find_if(std::begin(kAttributeRules), std::end(kAttributeRules),
                     [&](const AttributeRule& row) { return Contains(statement, row.keyword); });
    if (rule == std::end(kAttributeRules)) {
        return reader_.Complete(statement, Terminator::Text(";"));
    }
    // It is there, empty, even when the attribute turns out to have another name.
    if (rule->reader == &MainPass::ReadRegisterAccess && parser_.register_access_ == nullptr) {
        parser_.register_access_ = std::make_unique<CRegisterAccessDesc>();
    }
    const std::string_view name = CutWord(CutWord(statement).after).before;
    if (name != rule->keyword) return kOk;
    result = (this->*rule->reader)(statement);
    return rule->result_counts ? result : static_cast<int>(kOk);
}

}  // namespace bscan::detail
