/// @file
/// The instruction register: its length, what it captures, its instructions and their opcodes.
#pragma once

#include <bscan/export.h>

#include <string>
#include <vector>

namespace bscan::detail {
class MainPass;
class ModelFiller;
}

/// One instruction and its opcodes.
///
/// Texts are copied; a null text changes nothing. A getter's text is valid until the record
/// changes. Copying a record may throw std::bad_alloc.
class BSCAN_EXPORT CInstrOpcode {
public:
    /// Makes an instruction without name and opcodes.
    CInstrOpcode();
    CInstrOpcode(const CInstrOpcode& other);
    CInstrOpcode& operator=(const CInstrOpcode& other);
    virtual ~CInstrOpcode();

    void SetInstruction(const char* name);
    /// @return the name as the file writes it; empty when never set.
    const char* GetInstruction() const;

    void AddOpcode(const char* opcode);
    /// @return the number of opcodes; an instruction may have several.
    int GetOpcodeCount() const;
    /// @param index  counted from 0, in the order of the file.
    /// @return the opcode as written, leftmost bit next to TDI; null when there is none.
    const char* GetOpcode(int index) const;

    /// @return whether this name comes behind the other, letter case ignored, so that a sort by it
    ///         puts names in descending order.
    bool operator<(const CInstrOpcode& other);
    /// @copydoc operator<(const CInstrOpcode&)
    bool operator<(const CInstrOpcode& other) const;

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;

    std::string name_;
    std::vector<std::string> opcodes_;
};

/// The instruction register of a device. Copying it may throw std::bad_alloc.
class BSCAN_EXPORT CInstrRegisterDesc {
public:
    /// Makes a register of length 0 without capture pattern and instructions.
    CInstrRegisterDesc();
    CInstrRegisterDesc(const CInstrRegisterDesc&) = default;
    CInstrRegisterDesc& operator=(const CInstrRegisterDesc&) = default;
    virtual ~CInstrRegisterDesc();

    void SetInstructionLength(int length);
    /// @return the number of bits; 0 when never set.
    int GetInstructionLength() const;

    void SetInstructionCapture(const char* pattern);
    /// @return the pattern as the file writes it, double quotes included; empty when never set.
    ///         Valid until it is set again.
    const char* GetInstructionCapture() const;

    /// Appends a copy of an instruction; null changes nothing.
    void AddInstructionOpcode(const CInstrOpcode* instruction);
    /// @return the number of instructions; a name that the file gives twice counts twice.
    int GetInstructionOpcodeCount() const;
    /// @param index  counted from 0, in the order of the file.
    /// @return the instruction, owned by the register and valid until another is added; null when
    ///         there is none.
    const CInstrOpcode* GetInstructionOpcode(int index) const;

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;

    int length_ = 0;
    std::string capture_;
    std::vector<CInstrOpcode> instructions_;
};
