#include "chain/instruction_set.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

constexpr std::string_view kBoundary = "BOUNDARY";
constexpr std::string_view kBypass = "BYPASS";
constexpr std::string_view kDeviceId = "DEVICE_ID";

// The registers that the standard itself ties to instructions.
struct StandardRow {
    std::string_view instruction;
    std::string_view register_name;
};
constexpr StandardRow kStandard[] = {
    {"BYPASS", kBypass},   {"CLAMP", kBypass},    {"HIGHZ", kBypass},
    {"EXTEST", kBoundary}, {"SAMPLE", kBoundary}, {"PRELOAD", kBoundary},
    {"INTEST", kBoundary}, {"IDCODE", kDeviceId}, {"USERCODE", kDeviceId},
};

std::string Upper(std::string_view text) {
    std::string upper(text);
    UpperCase(upper);
    return upper;
}

// STATUS[16] is the register STATUS of 16 bits.
struct RegisterText {
    std::string name;
    int length = 0;
};

RegisterText SplitRegister(std::string_view text) {
    const std::size_t open = text.find('[');
    if (open == std::string_view::npos) return {Upper(Trim(text)), 0};
    return {Upper(Trim(text.substr(0, open))), DecimalValue(text.substr(open + 1))};
}

// The leftmost character of an opcode is the bit next to TDI, which is shifted last.
bool ParseOpcode(std::string_view text, int length, ScanBits& bits) {
    if (text.size() != static_cast<std::size_t>(length)) return false;
    bits = ScanBits(length);
    for (int i = 0; i < length; ++i) {
        const char digit = text[static_cast<std::size_t>(length - 1 - i)];
        if (digit != '0' && digit != '1' && ToUpper(digit) != 'X') return false;
        if (digit == '1') bits.Set(i, true);
    }
    return true;
}

}  // namespace

InstructionSet::InstructionSet(int length) : length_(length) {}

InstructionSet::InstructionSet(const BScanParser& parser, const Facts* facts) {
    const BScanPinMap* const device = parser.GetPinMap();
    if (device != nullptr) boundary_length_ = device->GetBScanLength();
    if (const CInstrRegisterDesc* const ir = parser.GetInstructionRegisterDescription()) {
        length_ = ir->GetInstructionLength();
        for (int i = 0; i < ir->GetInstructionOpcodeCount(); ++i) {
            const CInstrOpcode& instruction = *ir->GetInstructionOpcode(i);
            if (instruction.GetOpcodeCount() == 0) continue;
            opcodes_.emplace(Upper(View(instruction.GetInstruction())),
                             View(instruction.GetOpcode(0)));
        }
    }
    if (parser.GetRegisterAccessDescription() != nullptr) {
        ReadRegisters(*parser.GetRegisterAccessDescription());
    }
    if (facts == nullptr) return;
    for (const Word& word : facts->private_instructions) private_.insert(Upper(word.text));
}

void InstructionSet::ReadRegisters(const CRegisterAccessDesc& registers) {
    for (int i = 0; i < registers.GetRegisterCount(); ++i) {
        const CRegister& row = *registers.GetRegister(i);
        const RegisterText text = SplitRegister(View(row.GetRegisterName()));
        Register found{text.name, text.length};
        if (found.name == kBoundary) found.length = boundary_length_;
        if (found.name == kBypass) found.length = 1;
        if (found.name == kDeviceId) found.length = 32;
        for (int k = 0; k < row.GetRegisterAssociationCount(); ++k) {
            registers_.emplace(Upper(View(row.GetRegisterAssocName(k))), found);
        }
    }
}

InstructionSet::Register InstructionSet::RegisterOf(const std::string& instruction) const {
    for (const StandardRow& row : kStandard) {
        if (row.instruction != instruction) continue;
        const int length = row.register_name == kBoundary ? boundary_length_
                           : row.register_name == kBypass ? 1
                                                          : 32;
        return {std::string(row.register_name), length};
    }
    const auto found = registers_.find(instruction);
    return found == registers_.end() ? Register() : found->second;
}

ChainResult InstructionSet::Select(std::string_view device, std::string_view instruction,
                                   Selection& selection) const {
    const std::string name = Upper(instruction);
    const std::string subject(device);
    if (private_.count(name) != 0 && name != kBypass) {
        return {ChainCode::kPrivateInstruction,
                "The instruction " + name + " of " + subject + " is private: it is not for users."};
    }
    Selection found{name, ScanBits(length_, true), {}, 0};
    const auto opcode = opcodes_.find(name);
    if (opcode == opcodes_.end() && name != kBypass) {
        return {ChainCode::kNoInstruction, subject + " has no opcode for " + name + "."};
    }
    if (opcode != opcodes_.end() && !ParseOpcode(opcode->second, length_, found.opcode)) {
        return {ChainCode::kBadOpcode, "The opcode " + opcode->second + " of " + name + " in " +
                                           subject + " does not fit an instruction register of " +
                                           std::to_string(length_) + " bits."};
    }
    const Register data = RegisterOf(name);
    if (data.length <= 0) {
        return {ChainCode::kNoRegister, "The length of the register that " + name + " selects in " +
                                            subject + " is not known."};
    }
    found.register_name = data.name;
    found.register_length = data.length;
    selection = std::move(found);
    return {};
}

}  // namespace bscan::detail
