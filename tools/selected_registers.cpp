#include "selected_registers.h"

#include "words.h"

#include <cstdlib>

namespace tool {
namespace {

struct StandardRow {
    std::string_view instruction;
    std::string_view register_name;
};

constexpr StandardRow kStandard[] = {
    {"BYPASS", "BYPASS"},         {"CLAMP", "BYPASS"},          {"HIGHZ", "BYPASS"},
    {"EXTEST", "BOUNDARY"},       {"SAMPLE", "BOUNDARY"},       {"PRELOAD", "BOUNDARY"},
    {"INTEST", "BOUNDARY"},       {"IDCODE", "DEVICE_ID"},      {"USERCODE", "DEVICE_ID"},
    {"ECIDCODE", "ECID"},         {"CLAMP_HOLD", "TMP_STATUS"}, {"CLAMP_RELEASE", "TMP_STATUS"},
    {"TMP_STATUS", "TMP_STATUS"}, {"INIT_SETUP", "INIT_DATA"},  {"INIT_SETUP_CLAMP", "INIT_DATA"},
    {"INIT_RUN", "INIT_STATUS"},  {"IC_RESET", "RESET_SELECT"},
};

// STATUS[16] is the register STATUS of 16 bits.
SelectedRegister SplitName(const std::string& text) {
    SelectedRegister found;
    const std::size_t open = text.find('[');
    found.name = text.substr(0, open);
    while (!found.name.empty() && found.name.back() == ' ') found.name.pop_back();
    if (open != std::string::npos) found.length = std::atoi(text.c_str() + open + 1);
    found.told_by = "file";
    return found;
}

}  // namespace

SelectedRegisters::SelectedRegisters(const Device& device)
    : boundary_length_(device.map().GetBScanLength()) {
    TakeModel(device.parser());
    TakeFacts(device.facts());
}

void SelectedRegisters::TakeModel(const BScanParser& parser) {
    const CRegisterAccessDesc* access = parser.GetRegisterAccessDescription();
    for (int i = 0; access != nullptr && i < access->GetRegisterCount(); ++i) {
        const CRegister& data_register = *access->GetRegister(i);
        const SelectedRegister found = SplitName(data_register.GetRegisterName());
        if (found.length > 0) lengths_.emplace(Upper(found.name), found.length);
        for (int k = 0; k < data_register.GetRegisterAssociationCount(); ++k) {
            told_.emplace(Upper(data_register.GetRegisterAssocName(k)), found);
        }
    }
}

void SelectedRegisters::TakeFacts(const bscan::Facts& facts) {
    for (const bscan::RegisterAccess& access : facts.registers) {
        for (const bscan::RegisterInstruction& instruction : access.instructions) {
            const auto found = told_.find(Upper(instruction.name.text));
            if (found == told_.end() || !found->second.captures.empty()) continue;
            found->second.captures = instruction.captures.text;
        }
    }
    for (const bscan::Word& word : facts.private_instructions) private_.insert(Upper(word.text));
}

int SelectedRegisters::StandardLength(std::string_view name) const {
    if (name == "BYPASS") return 1;
    if (name == "DEVICE_ID") return 32;
    return name == "BOUNDARY" ? boundary_length_ : 0;
}

SelectedRegister SelectedRegisters::Of(std::string_view instruction) const {
    const std::string upper = Upper(instruction);
    SelectedRegister result;
    if (const auto found = told_.find(upper); found != told_.end()) {
        result = found->second;
    } else {
        for (const StandardRow& row : kStandard) {
            if (row.instruction != upper) continue;
            result.name = row.register_name;
            result.told_by = "standard";
        }
    }
    const std::string name = Upper(result.name);
    if (const int length = StandardLength(name); length > 0) result.length = length;
    if (result.length == 0 && lengths_.count(name) != 0) result.length = lengths_.at(name);
    result.is_private = private_.count(upper) != 0;
    return result;
}

}  // namespace tool
