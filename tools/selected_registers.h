// Which register an instruction puts between TDI and TDO.
#pragma once

#include "device.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace tool {

struct SelectedRegister {
    std::string name;      ///< empty when nothing tells
    int length = 0;        ///< in bits; 0 when nothing tells
    std::string told_by;   ///< "file", "standard", or empty
    std::string captures;  ///< what the register captures under the instruction
    bool is_private = false;
};

/// The registers of a device's instructions: those of REGISTER_ACCESS, and those that the standard
/// gives to instructions of its own.
class SelectedRegisters {
public:
    explicit SelectedRegisters(const Device& device);

    /// @param instruction  letter case ignored.
    SelectedRegister Of(std::string_view instruction) const;

private:
    void TakeModel(const BScanParser& parser);
    void TakeFacts(const bscan::Facts& facts);
    int StandardLength(std::string_view name) const;

    std::unordered_map<std::string, SelectedRegister> told_;  // by instruction, in upper case
    std::unordered_map<std::string, int> lengths_;            // of registers, in upper case
    std::unordered_set<std::string> private_;
    int boundary_length_;
};

}  // namespace tool
