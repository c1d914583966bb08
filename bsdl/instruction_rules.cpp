// Rules about the instruction register.

#include "bsdl/checks.h"
#include "bsdl/nearest_name.h"
#include "bsdl/number.h"
#include "support/text_view.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

constexpr std::string_view kStandardInstructions[] = {"BYPASS", "SAMPLE",  "PRELOAD", "EXTEST",
                                                      "INTEST", "RUNBIST", "CLAMP",   "HIGHZ",
                                                      "IDCODE", "USERCODE"};

bool IsStandardInstruction(std::string_view name) {
    return std::any_of(std::begin(kStandardInstructions), std::end(kStandardInstructions),
                       [name](std::string_view known) { return EqualIgnoringCase(known, name); });
}

bool Is(const Instruction& instruction, std::string_view name) {
    return EqualIgnoringCase(instruction.name.text, name);
}

// The length that more than half of all opcodes have; 0 when there is none.
int PrevailingLength(const std::vector<Instruction>& instructions) {
    std::map<std::size_t, std::size_t> counts;
    std::size_t all = 0;
    for (const Instruction& instruction : instructions) {
        for (const Word& opcode : instruction.opcodes) {
            ++counts[opcode.text.size()];
            ++all;
        }
    }
    for (const auto& [length, count] : counts) {
        if (2 * count > all && all > 1) return static_cast<int>(length);
    }
    return 0;
}

// Settles how long instructions are. Where most opcodes agree on another length than the one that
// is written, they are believed.
void CheckLength(Checks& checks) {
    const Facts& facts = checks.facts;
    const int prevailing = PrevailingLength(facts.instructions);
    const int written = facts.instruction_length;
    if (!facts.instruction_length_word.Exists()) {
        checks.instruction_length = prevailing;
        if (checks.doubts.statements || checks.doubts.instructions) return;
        const bool has_opcodes = !facts.instructions.empty();
        checks.found.Add(Rule::kInstructionLengthMissing,
                         has_opcodes ? facts.opcode_attribute : facts.entity,
                         "the file has no INSTRUCTION_LENGTH",
                         has_opcodes ? "write `attribute INSTRUCTION_LENGTH of " +
                                           std::string(facts.entity.text) + " : entity is " +
                                           std::to_string(prevailing) + ";`"
                                     : "");
        return;
    }
    if (written < 2) {
        checks.instruction_length = prevailing;
        if (!ParseInteger(facts.instruction_length_word.text)) return;  // told already
        checks.found.Add(Rule::kInstructionLengthTooSmall, facts.instruction_length_word,
                         "an instruction register of " + Quoted(facts.instruction_length_word) +
                             " is too short; it has at least two bits",
                         prevailing > 1 ? "write `" + std::to_string(prevailing) + "`" : "");
        return;
    }
    if (prevailing == 0 || prevailing == written) return;
    checks.instruction_length = prevailing;
    checks.found.Add(Rule::kInstructionLength, facts.instruction_length_word,
                     "INSTRUCTION_LENGTH is " + Quoted(facts.instruction_length_word) +
                         ", but the opcodes have " + std::to_string(prevailing) + " bits",
                     "write `" + std::to_string(prevailing) + "`");
}

// Whether an opcode is sound enough to be compared with others.
bool CheckOpcode(Checks& checks, const Instruction& instruction, const Word& opcode) {
    if (!IsBits(opcode.text, true)) {
        checks.found.Add(Rule::kOpcodeBits, opcode,
                         "the opcode " + Quoted(opcode) + " of " + Quoted(instruction.name) +
                             " has other characters than 0, 1 and X");
        return false;
    }
    const auto length = static_cast<std::size_t>(checks.instruction_length);
    if (length == 0 || opcode.text.size() == length) return true;
    checks.found.Add(Rule::kOpcodeLength, opcode,
                     "the opcode " + Quoted(opcode) + " of " + Quoted(instruction.name) + " has " +
                         Counted(opcode.text.size(), "bit") + ", an instruction " +
                         std::to_string(length),
                     "write " + std::to_string(length) + " bits");
    return false;
}

bool AllAre(std::string_view bits, char bit) {
    return std::all_of(bits.begin(), bits.end(),
                       [bit](char c) { return c == bit || c == 'x' || c == 'X'; });
}

// The opcodes that the standard reserves: all ones for BYPASS; until 1993, all zeros for EXTEST.
void CheckReserved(Checks& checks, const Instruction& instruction) {
    const bool bypass = Is(instruction, "BYPASS");
    const bool extest = Is(instruction, "EXTEST") && checks.edition <= Edition::k1993;
    if (instruction.opcodes.empty() || (!bypass && !extest)) return;
    const bool has = std::any_of(
        instruction.opcodes.begin(), instruction.opcodes.end(),
        [bypass](const Word& opcode) { return AllAre(opcode.text, bypass ? '1' : '0'); });
    if (has) return;
    const Word& opcode = instruction.opcodes.front();
    checks.found.Add(bypass ? Rule::kBypassOpcode : Rule::kExtestOpcode, opcode,
                     Quoted(instruction.name) + " has the opcode " + Quoted(opcode) + ", but not " +
                         (bypass ? "that of ones only" : "that of zeros only"),
                     bypass ? "write `" + std::string(opcode.text.size(), '1') + "`" : "");
}

// SAMPLE and PRELOAD may have one opcode, and what makers call by both names too.
bool MayShare(const Instruction& one, const Instruction& other) {
    const auto samples = [](const Instruction& instruction) {
        std::string name(instruction.name.text);
        UpperCase(name);
        return Contains(name, "SAMPLE") || Contains(name, "PRELOAD") ||
               IsMisspelt(name, "SAMPLE") || IsMisspelt(name, "PRELOAD");
    };
    return samples(one) && samples(other);
}

class OpcodeCheck {
public:
    explicit OpcodeCheck(Checks& checks) : checks_(checks) {}

    void Run() {
        for (const Instruction& instruction : checks_.facts.instructions) {
            if (IsRepeated(instruction)) continue;
            bool sound = true;
            for (const Word& opcode : instruction.opcodes) {
                if (CheckOpcode(checks_, instruction, opcode)) {
                    CheckUnique(instruction, opcode);
                } else {
                    sound = false;
                }
            }
            if (sound) CheckReserved(checks_, instruction);
        }
    }

private:
    bool IsRepeated(const Instruction& instruction) {
        const auto number = static_cast<std::size_t>(names_.Add(instruction.name.text));
        if (number == first_.size()) {
            first_.push_back(&instruction);
            return false;
        }
        const Instruction& first = *first_[number];
        const bool same =
            std::equal(first.opcodes.begin(), first.opcodes.end(), instruction.opcodes.begin(),
                       instruction.opcodes.end(),
                       [](const Word& one, const Word& other) { return one.text == other.text; });
        const std::string message = Quoted(instruction.name) + " has been listed in line " +
                                    std::to_string(first.name.line) + " already";
        if (same) {
            checks_.found.Add(Rule::kInstructionRepeated, instruction.name, message,
                              "leave it out");
        } else {
            checks_.instruction_twice = true;
            checks_.found.Add(Rule::kInstructionTwice, instruction.name,
                              message + ", with another opcode",
                              "write all opcodes of an instruction in one list");
        }
        return true;
    }

    void CheckUnique(const Instruction& instruction, const Word& opcode) {
        const auto number = static_cast<std::size_t>(opcodes_.Add(opcode.text));
        if (number == owners_.size()) {
            owners_.push_back(&instruction);
            return;
        }
        const Instruction& owner = *owners_[number];
        if (&owner == &instruction || MayShare(owner, instruction)) return;
        checks_.found.Add(Rule::kOpcodeShared, opcode,
                          "the opcode " + Quoted(opcode) + " of " + Quoted(instruction.name) +
                              " is that of " + Quoted(owner.name) + " in line " +
                              std::to_string(owner.name.line));
    }

    Checks& checks_;
    NameIndex names_;
    std::vector<const Instruction*> first_;  // by number in names_
    NameIndex opcodes_;
    std::vector<const Instruction*> owners_;  // by number in opcodes_
};

void CheckMandatory(Checks& checks, std::string_view name, Rule rule) {
    ReportMissingInstruction(checks, rule, name, checks.facts.opcode_attribute,
                             "the device has no instruction " + Quoted(name));
}

void CheckMandatory(Checks& checks) {
    CheckMandatory(checks, "BYPASS", Rule::kBypassMissing);
    CheckMandatory(checks, "EXTEST", Rule::kInstructionMissing);
    CheckMandatory(checks, "SAMPLE", Rule::kInstructionMissing);
    if (checks.edition >= Edition::k2001) {
        CheckMandatory(checks, "PRELOAD", Rule::kPreloadMissing);
    }
}

void CheckPrivate(Checks& checks) {
    for (const Word& name : checks.facts.private_instructions) {
        ReportUnknownInstruction(checks, Rule::kPrivateUnknown, name, "INSTRUCTION_PRIVATE");
    }
}

void CheckCapture(Checks& checks) {
    const Word& capture = checks.facts.instruction_capture;
    if (!capture.Exists()) {
        if (checks.doubts.statements || checks.doubts.instructions) return;
        checks.found.Add(Rule::kCaptureMissing, checks.facts.entity,
                         "the file has no INSTRUCTION_CAPTURE",
                         "write the bits that the instruction register captures; the last two are "
                         "`01`");
        return;
    }
    const std::string_view bits = capture.text;
    const auto length = static_cast<std::size_t>(checks.instruction_length);
    if (!IsBits(bits, true)) {
        checks.found.Add(Rule::kCaptureBits, capture,
                         Quoted(capture) + " has other characters than 0, 1 and X");
    } else if (length != 0 && bits.size() != length) {
        checks.found.Add(Rule::kCaptureLength, capture,
                         "INSTRUCTION_CAPTURE " + Quoted(capture) + " has " +
                             Counted(bits.size(), "bit") + ", an instruction " +
                             std::to_string(length),
                         "write " + std::to_string(length) + " bits");
    } else if (bits.size() >= 2 && bits.substr(bits.size() - 2) != "01") {
        checks.found.Add(Rule::kCaptureEnding, capture,
                         "INSTRUCTION_CAPTURE " + Quoted(capture) + " does not end in `01`",
                         "write `01` as the last two bits");
    }
}

}  // namespace

void ReportMissingInstruction(Checks& checks, Rule rule, std::string_view name, const Word& where,
                              const std::string& message) {
    if (checks.instructions.Has(name) || checks.missing_instructions.Has(name)) return;
    checks.missing_instructions.Add(name);
    const Word* similar = nullptr;
    for (const Instruction& instruction : checks.facts.instructions) {
        const bool own = IsStandardInstruction(instruction.name.text);
        if (!own && IsMisspelt(instruction.name.text, name)) similar = &instruction.name;
    }
    if (similar != nullptr) {
        checks.found.Add(rule, *similar, message + ", but " + Quoted(*similar),
                         "write " + Quoted(name));
    } else {
        checks.found.Add(rule, where, message, "add " + Quoted(name) + " to INSTRUCTION_OPCODE");
    }
}

void ReportUnknownInstruction(Checks& checks, Rule rule, const Word& name,
                              std::string_view attribute) {
    if (checks.doubts.instructions || checks.instruction_twice) return;
    if (checks.facts.instructions.empty()) return;
    // One that is missing among the opcodes has been told already; a second use is the same fault.
    if (checks.instructions.Has(name.text) || checks.missing_instructions.Has(name.text)) return;
    checks.missing_instructions.Add(name.text);
    NearestName nearest(name.text);
    // Looking for a similar name in a long list costs more than it is worth.
    constexpr std::size_t kMostCandidates = 500;
    if (checks.facts.instructions.size() <= kMostCandidates) {
        for (const Instruction& known : checks.facts.instructions) nearest.Try(known.name.text);
    }
    checks.found.Add(
        rule, name,
        Quoted(name) + " in " + std::string(attribute) + " is no instruction of INSTRUCTION_OPCODE",
        nearest.Result().empty() ? "add it to INSTRUCTION_OPCODE"
                                 : "write " + Quoted(nearest.Result()));
}

void CheckInstructions(Checks& checks) {
    CheckLength(checks);
    OpcodeCheck(checks).Run();
    const bool doubtful = checks.doubts.instructions || checks.doubts.statements;
    if (!doubtful && checks.facts.instructions.empty()) {
        checks.found.Add(Rule::kOpcodesMissing, checks.facts.entity,
                         "the file has no INSTRUCTION_OPCODE",
                         "write the opcodes of BYPASS, EXTEST, SAMPLE and PRELOAD at least");
    } else if (!doubtful) {
        CheckMandatory(checks);
    }
    CheckPrivate(checks);
    CheckCapture(checks);
}

}  // namespace bscan::detail
