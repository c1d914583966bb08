#include <bscan/register_access.h>

#include "support/border.h"
#include "support/text_view.h"

using bscan::detail::GuardedQuietly;

CRegister::CRegister() = default;
CRegister::CRegister(const CRegister& other) = default;
CRegister& CRegister::operator=(const CRegister& other) = default;
CRegister::~CRegister() = default;

void CRegister::SetRegisterName(const char* name) {
    if (name != nullptr) GuardedQuietly([&] { name_ = std::string(name); });
}

const char* CRegister::GetRegisterName() const { return name_.c_str(); }

void CRegister::AddRegisterAssociation(const char* instruction) {
    if (instruction != nullptr) GuardedQuietly([&] { instructions_.emplace_back(instruction); });
}

int CRegister::GetRegisterAssociationCount() const {
    return static_cast<int>(instructions_.size());
}

const char* CRegister::GetRegisterAssocName(int index) const {
    return index >= 0 && index < GetRegisterAssociationCount()
               ? instructions_[static_cast<std::size_t>(index)].c_str()
               : nullptr;
}

bool CRegister::operator<(const CRegister& other) const {
    return bscan::detail::CompareIgnoringCase(name_, other.name_) > 0;
}

CRegisterAccessDesc::CRegisterAccessDesc() = default;
CRegisterAccessDesc::~CRegisterAccessDesc() = default;

void CRegisterAccessDesc::AddRegister(const CRegister* data_register) {
    if (data_register != nullptr) GuardedQuietly([&] { registers_.push_back(*data_register); });
}

int CRegisterAccessDesc::GetRegisterCount() const { return static_cast<int>(registers_.size()); }

const CRegister* CRegisterAccessDesc::GetRegister(int index) const {
    return index >= 0 && index < GetRegisterCount() ? &registers_[static_cast<std::size_t>(index)]
                                                    : nullptr;
}
