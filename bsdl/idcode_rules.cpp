// Rules about the device's identity: IDCODE_REGISTER and USERCODE_REGISTER.

#include "bsdl/checks.h"

#include <string>

namespace bscan::detail {
namespace {

constexpr std::size_t kCodeLength = 32;

void CheckCode(Checks& checks, const Word& code, const char* attribute, bool ends_in_one) {
    if (!IsBits(code.text, true)) {
        checks.found.Add(
            Rule::kIdcodeBits, code,
            std::string(attribute) + " " + Quoted(code) + " has other characters than 0, 1 and X");
    } else if (code.text.size() != kCodeLength) {
        checks.found.Add(Rule::kIdcodeLength, code,
                         std::string(attribute) + " " + Quoted(code) + " has " +
                             Counted(code.text.size(), "bit") + ", not 32",
                         "write 32 bits");
    } else if (ends_in_one && code.text.back() != '1') {
        checks.found.Add(Rule::kIdcodeEnding, code,
                         std::string(attribute) + " " + Quoted(code) + " does not end in `1`",
                         "write `1` as the last bit");
    }
}

// The instruction and the attribute come together.
void CheckPartner(Checks& checks, const char* instruction, const char* attribute,
                  const std::vector<Word>& codes) {
    const Facts& facts = checks.facts;
    if (checks.doubts.instructions || facts.instructions.empty()) return;
    const bool has = checks.instructions.Has(instruction);
    if (!has && !codes.empty()) {
        ReportMissingInstruction(checks, Rule::kIdcodeInstructionMissing, instruction,
                                 codes.front(),
                                 std::string(attribute) +
                                     " tells a value, but the "
                                     "device has no instruction `" +
                                     instruction + "` to read it");
    }
    if (!has || !codes.empty() || checks.doubts.statements) return;
    for (const Instruction& other : facts.instructions) {
        if (checks.instructions.Find(other.name.text) != checks.instructions.Find(instruction)) {
            continue;
        }
        checks.found.Add(Rule::kIdcodeRegisterMissing, other.name,
                         "the device has the instruction " + Quoted(other.name) +
                             ", but the file has no " + attribute,
                         std::string("write ") + attribute + " with its 32 bits");
        return;
    }
}

}  // namespace

void CheckIdcodes(Checks& checks) {
    const Facts& facts = checks.facts;
    for (const Word& code : facts.idcodes) CheckCode(checks, code, "IDCODE_REGISTER", true);
    for (const Word& code : facts.usercodes) CheckCode(checks, code, "USERCODE_REGISTER", false);
    CheckPartner(checks, "IDCODE", "IDCODE_REGISTER", facts.idcodes);
    CheckPartner(checks, "USERCODE", "USERCODE_REGISTER", facts.usercodes);
}

}  // namespace bscan::detail
