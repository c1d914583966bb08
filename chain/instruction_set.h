// The instructions of one device: their opcodes and the registers that they select.
#pragma once

#include <bscan/chain.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace bscan::detail {

// What an instruction means for the scans through a device.
struct Selection {
    std::string instruction;  // in upper case
    ScanBits opcode;
    std::string register_name;
    int register_length = 0;
};

class InstructionSet {
public:
    // A device that is a length alone: it knows BYPASS.
    explicit InstructionSet(int length);
    // `facts` may be null.
    InstructionSet(const BScanParser& parser, const Facts* facts);

    int Length() const { return length_; }

    // Tells in `reason`, about a device of some name, why an instruction cannot be selected.
    ChainResult Select(std::string_view device, std::string_view instruction,
                       Selection& selection) const;

private:
    struct Register {
        std::string name;
        int length = 0;  // 0 when not known
    };

    void ReadRegisters(const CRegisterAccessDesc& registers);
    Register RegisterOf(const std::string& instruction) const;

    int length_ = 0;
    int boundary_length_ = 0;
    std::unordered_map<std::string, std::string> opcodes_;  // the first of each, by upper-case name
    std::unordered_map<std::string, Register> registers_;   // by upper-case instruction
    std::unordered_set<std::string> private_;
};

}  // namespace bscan::detail
