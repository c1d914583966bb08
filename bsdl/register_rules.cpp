// Rules about which register an instruction puts between TDI and TDO.

#include "bsdl/checks.h"
#include "bsdl/nearest_name.h"
#include "support/text_view.h"

#include <algorithm>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

constexpr std::string_view kStandardRegisters[] = {"BOUNDARY", "BYPASS", "DEVICE_ID"};

struct InstructionRegister {
    std::string_view instruction;
    std::string_view register_name;
};

// The registers that the standard gives to its own instructions.
constexpr InstructionRegister kRegisterOf[] = {
    {"BYPASS", "BYPASS"},    {"CLAMP", "BYPASS"},     {"HIGHZ", "BYPASS"},
    {"EXTEST", "BOUNDARY"},  {"INTEST", "BOUNDARY"},  {"SAMPLE", "BOUNDARY"},
    {"PRELOAD", "BOUNDARY"}, {"IDCODE", "DEVICE_ID"}, {"USERCODE", "DEVICE_ID"},
};

// How long the standard's own registers are; 0 for others and when it is not known.
int StandardLength(const Checks& checks, std::string_view name) {
    if (EqualIgnoringCase(name, "BYPASS")) return 1;
    if (EqualIgnoringCase(name, "DEVICE_ID")) return 32;
    if (EqualIgnoringCase(name, "BOUNDARY")) return checks.boundary_length;
    return 0;
}

bool IsStandardRegister(std::string_view name) {
    return std::any_of(std::begin(kStandardRegisters), std::end(kStandardRegisters),
                       [name](std::string_view known) { return EqualIgnoringCase(known, name); });
}

class RegisterCheck {
public:
    explicit RegisterCheck(Checks& checks) : checks_(checks) {}

    void Run() {
        for (const RegisterAccess& access : checks_.facts.registers) NoteLength(access);
        for (const RegisterAccess& access : checks_.facts.registers) {
            CheckLength(access);
            for (const RegisterInstruction& instruction : access.instructions) {
                ReportUnknownInstruction(checks_, Rule::kRegisterInstructionUnknown,
                                         instruction.name, "REGISTER_ACCESS");
                CheckOneRegister(access, instruction);
                CheckStandard(access, instruction);
                CheckCaptures(access, instruction);
            }
        }
    }

private:
    struct Known {
        const RegisterAccess* first;
        int length;  // 0 when the file does not tell
    };

    // The length that counts: the standard's, else the first that is written.
    void NoteLength(const RegisterAccess& access) {
        const auto number = static_cast<std::size_t>(names_.Add(access.name.text));
        if (number == known_.size()) {
            known_.push_back({&access, StandardLength(checks_, access.name.text)});
        }
        if (known_[number].length == 0 && access.length) known_[number].length = *access.length;
    }

    const Known& KnownOf(const RegisterAccess& access) const {
        return known_[static_cast<std::size_t>(names_.Find(access.name.text))];
    }

    void CheckLength(const RegisterAccess& access) {
        const Known& known = KnownOf(access);
        if (access.length && *access.length != known.length) {
            checks_.found.Add(Rule::kRegisterLength, access.name,
                              "the register " + Quoted(access.name) + " has " +
                                  Counted(static_cast<std::size_t>(known.length), "bit") +
                                  ", not " + std::to_string(*access.length),
                              "write `" + std::string(access.name.text) + "[" +
                                  std::to_string(known.length) + "]`");
        } else if (known.length == 0 && known.first == &access && access.name.Exists() &&
                   !IsStandardRegister(access.name.text)) {
            ReportNoLength(access);
        }
    }

    void ReportNoLength(const RegisterAccess& access) {
        NearestName nearest(access.name.text);
        for (const std::string_view name : kStandardRegisters) nearest.Try(name);
        if (!nearest.Result().empty()) {
            checks_.found.Add(Rule::kRegisterUnknown, access.name,
                              Quoted(access.name) +
                                  " is no register of the standard, and its "
                                  "length is not written",
                              "write " + Quoted(nearest.Result()));
        } else {
            std::string_view meant;
            for (const RegisterInstruction& instruction : access.instructions) {
                if (meant.empty()) meant = StandardRegister(instruction);
            }
            checks_.found.Add(
                Rule::kRegisterLengthMissing, access.name,
                "the length of the register " + Quoted(access.name) + " is not written",
                meant.empty()
                    ? "write it behind the name: `" + std::string(access.name.text) + "[LENGTH]`"
                    : "write " + Quoted(meant));
        }
    }

    void CheckOneRegister(const RegisterAccess& access, const RegisterInstruction& instruction) {
        const auto number = static_cast<std::size_t>(instructions_.Add(instruction.name.text));
        if (number == owners_.size()) {
            owners_.push_back(&access);
            return;
        }
        const Word& owner = owners_[number]->name;
        if (EqualIgnoringCase(owner.text, access.name.text)) {
            checks_.found.Add(
                Rule::kRegisterInstructionRepeated, instruction.name,
                Quoted(instruction.name) + " has been given to " + Quoted(owner) + " before");
        } else if (StandardRegister(instruction).empty()) {
            checks_.found.Add(Rule::kRegisterInstructionTwice, instruction.name,
                              Quoted(instruction.name) + " selects both " + Quoted(owner) +
                                  " and " + Quoted(access.name));
        }
    }

    // The register that the standard wants for an instruction; empty for others.
    static std::string_view StandardRegister(const RegisterInstruction& instruction) {
        for (const InstructionRegister& row : kRegisterOf) {
            if (EqualIgnoringCase(row.instruction, instruction.name.text)) {
                return row.register_name;
            }
        }
        return {};
    }

    void CheckStandard(const RegisterAccess& access, const RegisterInstruction& instruction) {
        const std::string_view wanted = StandardRegister(instruction);
        if (wanted.empty() || EqualIgnoringCase(wanted, access.name.text)) return;
        // A misspelt register is told by itself.
        if (KnownOf(access).length == 0 && !IsStandardRegister(access.name.text)) return;
        checks_.found.Add(Rule::kRegisterOfStandard, instruction.name,
                          "by the standard " + Quoted(instruction.name) + " selects " +
                              Quoted(wanted) + ", not " + Quoted(access.name),
                          "write it with " + Quoted(wanted));
    }

    void CheckCaptures(const RegisterAccess& access, const RegisterInstruction& instruction) {
        const int length = KnownOf(access).length;
        const Word& bits = instruction.captures;
        if (!bits.Exists() || length == 0) return;
        if (bits.text.size() == static_cast<std::size_t>(length)) return;
        checks_.found.Add(Rule::kRegisterCaptureLength, bits,
                          "the value " + Quoted(bits) + " that " + Quoted(instruction.name) +
                              " captures has " + Counted(bits.text.size(), "bit") +
                              ", the register " + Quoted(access.name) + " " +
                              std::to_string(length));
    }

    Checks& checks_;
    NameIndex names_;
    std::vector<Known> known_;  // by number in names_
    NameIndex instructions_;
    std::vector<const RegisterAccess*> owners_;  // by number in instructions_
};

}  // namespace

void CheckRegisterAccess(Checks& checks) { RegisterCheck(checks).Run(); }

}  // namespace bscan::detail
