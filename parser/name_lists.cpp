// The attributes that are lists of names: instruction opcodes and register access.

#include <bscan/result.h>

#include "parser/main_pass.h"
#include "parser/name_list_text.h"

#include <utility>

namespace bscan::detail {

// What sets one such attribute apart from the other.
struct MainPass::NameListKind {
    int syntax_code;  // the result for a malformed entry, or when there is nothing to add to
    bool (MainPass::*add)(NameListEntry&);  // false when there is no description to add to
};

int MainPass::ReadNameList(std::string& statement, const NameListKind& kind) {
    int result = reader_.Complete(statement, Terminator::Text(";"));
    if (result != kOk) return result;
    NameListCutter cutter(statement, kind.syntax_code);
    NameListEntry entry;
    while (!cutter.IsAtEnd()) {
        result = cutter.Next(entry);
        if (result != kOk) return result;
        if (!(this->*kind.add)(entry)) return kind.syntax_code;
    }
    return kOk;
}

bool MainPass::AddInstruction(NameListEntry& entry) {
    if (parser_.instruction_register_ == nullptr) return false;
    CInstrOpcode& instruction = parser_.instruction_register_->instructions_.emplace_back();
    instruction.name_.swap(entry.name);
    instruction.opcodes_.swap(entry.items);
    return true;
}

bool MainPass::AddRegister(NameListEntry& entry) {
    if (parser_.register_access_ == nullptr) return false;
    CRegister& data_register = parser_.register_access_->registers_.emplace_back();
    data_register.name_.swap(entry.name);
    data_register.instructions_.swap(entry.items);
    return true;
}

int MainPass::ReadInstructionOpcode(std::string& statement) {
    return ReadNameList(statement, {kBadOpcode, &MainPass::AddInstruction});
}

int MainPass::ReadRegisterAccess(std::string& statement) {
    return ReadNameList(statement, {kBadRegisterAccess, &MainPass::AddRegister});
}

}  // namespace bscan::detail
