/// @file
/// Which instructions select which data register.
#pragma once

#include <bscan/export.h>

#include <string>
#include <vector>

namespace bscan::detail {
class MainPass;
class ModelFiller;
}

/// One data register and the instructions that select it.
///
/// Texts are copied; a null text changes nothing. A getter's text is valid until the record
/// changes. Copying a record may throw std::bad_alloc.
class BSCAN_EXPORT CRegister {
public:
    /// Makes a register without name and instructions.
    CRegister();
    CRegister(const CRegister& other);
    CRegister& operator=(const CRegister& other);
    virtual ~CRegister();

    void SetRegisterName(const char* name);
    /// @return the name as the file writes it, a length in brackets included; empty when never set.
    const char* GetRegisterName() const;

    void AddRegisterAssociation(const char* instruction);
    /// @return the number of instructions that select the register.
    int GetRegisterAssociationCount() const;
    /// @param index  counted from 0, in the order of the file.
    /// @return the instruction's name; null when there is none.
    const char* GetRegisterAssocName(int index) const;

    /// @return whether this name comes behind the other, letter case ignored, as CInstrOpcode
    ///         orders its names.
    bool operator<(const CRegister& other) const;

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;

    std::string name_;
    std::vector<std::string> instructions_;
};

/// The REGISTER_ACCESS attribute of a device. Copying it may throw std::bad_alloc.
class BSCAN_EXPORT CRegisterAccessDesc {
public:
    /// Makes an empty table.
    CRegisterAccessDesc();
    CRegisterAccessDesc(const CRegisterAccessDesc&) = default;
    CRegisterAccessDesc& operator=(const CRegisterAccessDesc&) = default;
    virtual ~CRegisterAccessDesc();

    /// Appends a copy of a register; null changes nothing.
    void AddRegister(const CRegister* data_register);
    /// @return the number of registers; a name that the file gives twice counts twice.
    int GetRegisterCount() const;
    /// @param index  counted from 0, in the order of the file.
    /// @return the register, owned by the table and valid until another is added; null when there
    ///         is none.
    const CRegister* GetRegister(int index) const;

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;

    std::vector<CRegister> registers_;
};
