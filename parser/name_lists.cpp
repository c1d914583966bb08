// The attributes that are lists of names: instruction opcodes and register access.

#include <bscan/result.h>

#include "parser/main_pass.h"
#include "parser/name_list_text.h"

#include <utility>

namespace bscan::detail {

struct MainPass::NameList {
    int syntax_code;
    bool (MainPass::*add)(NameListEntry&);  // false when there is no description to add to
};

int MainPass::ReadNameList(std::string& statement, const NameList& list) {
    int result = reader_.Complete(statement, Terminator::Text(";"));
    if (result != kOk) return result;
    NameListCutter cutter(statement, list.syntax_code);
    NameListEntry entry;
    while (!cutter.IsAtEnd()) {
        result = cutter.Next(entry);
        if (result != kOk) return result;
        if (!(this->*list.add)(entry)) return list.syntax_code;
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
