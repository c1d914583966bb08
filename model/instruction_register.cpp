#include <bscan/instruction_register.h>

#include "support/border.h"
#include "support/text_view.h"

using bscan::detail::GuardedQuietly;

CInstrOpcode::CInstrOpcode() = default;
CInstrOpcode::CInstrOpcode(const CInstrOpcode& other) = default;
CInstrOpcode& CInstrOpcode::operator=(const CInstrOpcode& other) = default;
CInstrOpcode::~CInstrOpcode() = default;

void CInstrOpcode::SetInstruction(const char* name) {
    if (name != nullptr) GuardedQuietly([&] { name_ = std::string(name); });
}

const char* CInstrOpcode::GetInstruction() const { return name_.c_str(); }

void CInstrOpcode::AddOpcode(const char* opcode) {
    if (opcode != nullptr) GuardedQuietly([&] { opcodes_.emplace_back(opcode); });
}

int CInstrOpcode::GetOpcodeCount() const { return static_cast<int>(opcodes_.size()); }

const char* CInstrOpcode::GetOpcode(int index) const {
    return index >= 0 && index < GetOpcodeCount()
               ? opcodes_[static_cast<std::size_t>(index)].c_str()
               : nullptr;
}

bool CInstrOpcode::operator<(const CInstrOpcode& other) {
    return static_cast<const CInstrOpcode&>(*this) < other;
}

bool CInstrOpcode::operator<(const CInstrOpcode& other) const {
    return bscan::detail::CompareIgnoringCase(name_, other.name_) > 0;
}

CInstrRegisterDesc::CInstrRegisterDesc() = default;
CInstrRegisterDesc::~CInstrRegisterDesc() = default;

void CInstrRegisterDesc::SetInstructionLength(int length) { length_ = length; }
int CInstrRegisterDesc::GetInstructionLength() const { return length_; }

void CInstrRegisterDesc::SetInstructionCapture(const char* pattern) {
    if (pattern != nullptr) GuardedQuietly([&] { capture_ = std::string(pattern); });
}

const char* CInstrRegisterDesc::GetInstructionCapture() const { return capture_.c_str(); }

void CInstrRegisterDesc::AddInstructionOpcode(const CInstrOpcode* instruction) {
    if (instruction != nullptr) GuardedQuietly([&] { instructions_.push_back(*instruction); });
}

int CInstrRegisterDesc::GetInstructionOpcodeCount() const {
    return static_cast<int>(instructions_.size());
}

const CInstrOpcode* CInstrRegisterDesc::GetInstructionOpcode(int index) const {
    return index >= 0 && index < GetInstructionOpcodeCount()
               ? &instructions_[static_cast<std::size_t>(index)]
               : nullptr;
}
