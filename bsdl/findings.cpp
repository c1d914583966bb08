#include "bsdl/findings.h"

#include <bscan/limits.h>

#include "bsdl/lexer.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <tuple>
#include <utility>

namespace bscan {
namespace detail {
namespace {

struct RuleRow {
    Rule rule;
    Severity severity;
    const char* name;
    const char* meaning;
};

constexpr RuleRow kRules[] = {
    {Rule::kNoEntity, Severity::kError, "no-entity", "The text has no entity."},
    {Rule::kKeywordMissing, Severity::kWarning, "keyword-missing",
     "A word that the language wants is not there."},
    {Rule::kWordMisspelt, Severity::kError, "word-misspelt", "A word of the language is mistyped."},
    {Rule::kStatementUnknown, Severity::kError, "statement-unknown",
     "A statement begins with no word of the language."},
    {Rule::kValueMissing, Severity::kError, "value-missing",
     "An attribute or a constant has no value."},
    {Rule::kValueUnexpected, Severity::kError, "value-unexpected",
     "A value is none of those that an attribute can have."},
    {Rule::kTargetMissing, Severity::kError, "target-missing",
     "An attribute is of no entity and of no port."},
    {Rule::kNameMissing, Severity::kError, "name-missing",
     "A name is missing where the language wants one."},
    {Rule::kOtherEntity, Severity::kWarning, "other-entity",
     "Attributes are of another entity than that of the file."},
    {Rule::kTextSurplus, Severity::kWarning, "text-surplus",
     "Words stand behind a value that is complete."},
    {Rule::kMarkSurplus, Severity::kWarning, "mark-surplus", "A mark stands where none belongs."},
    {Rule::kSemicolonMissing, Severity::kWarning, "semicolon-missing",
     "A declaration does not end with a semicolon."},
    {Rule::kSemicolonSurplus, Severity::kWarning, "semicolon-surplus",
     "A semicolon stands where no declaration ends."},
    {Rule::kCommaMissing, Severity::kWarning, "comma-missing",
     "There is no comma between the parts of a list."},
    {Rule::kCommaSurplus, Severity::kWarning, "comma-surplus",
     "A comma stands where no part of a list follows."},
    {Rule::kColonMissing, Severity::kWarning, "colon-missing",
     "There is no colon between a name and what belongs to it."},
    {Rule::kParenthesisMissing, Severity::kWarning, "parenthesis-missing",
     "A parenthesis or bracket is not opened or not closed."},
    {Rule::kParenthesisSurplus, Severity::kWarning, "parenthesis-surplus",
     "A parenthesis has no partner."},
    {Rule::kAmpersandMissing, Severity::kWarning, "ampersand-missing",
     "Two parts of a string are not joined by an ampersand."},
    {Rule::kAmpersandSurplus, Severity::kWarning, "ampersand-surplus",
     "An ampersand joins nothing."},
    {Rule::kStringNotClosed, Severity::kWarning, "string-not-closed",
     "A string has no double quote at the end of its line."},
    {Rule::kStringNotOpened, Severity::kWarning, "string-not-opened",
     "A string has no double quote at its beginning."},
    {Rule::kBracketsAroundString, Severity::kWarning, "string-in-brackets",
     "A string stands in brackets."},
    {Rule::kTextOutsideString, Severity::kError, "text-outside-string",
     "Words of a string stand outside its quotes."},
    {Rule::kQuoteSurplus, Severity::kWarning, "quote-surplus",
     "A double quote neither begins nor ends a string."},
    {Rule::kCommentBegin, Severity::kWarning, "comment-begin",
     "A line looks like a comment and does not begin with two dashes."},
    {Rule::kCommentInString, Severity::kWarning, "comment-in-string",
     "A comment stands between the quotes of a string."},
    {Rule::kQuoteTypographic, Severity::kWarning, "quote-typographic",
     "A string stands in the quotes of a word processor."},
    {Rule::kTextEnds, Severity::kError, "text-ends", "The text ends before the description does."},
    {Rule::kPinMapByElement, Severity::kNote, "pin-map-by-element",
     "A pin map gives the pins of a vector one by one."},
    {Rule::kListOfOne, Severity::kNote, "pin-list-of-one",
     "A pin map has a list in parentheses for a single bit."},
    {Rule::kNumberMalformed, Severity::kError, "number-malformed",
     "A word that should be a number is none."},
    {Rule::kNumberInQuotes, Severity::kWarning, "number-in-quotes",
     "A number is written as a string."},
    {Rule::kBlankInBits, Severity::kWarning, "blank-in-bits", "A row of bits has blanks in it."},
    {Rule::kBlankMissing, Severity::kWarning, "blank-missing",
     "Two words have no blank between them."},
    {Rule::kRangeMalformed, Severity::kError, "range-malformed",
     "The range of a vector cannot be read."},
    {Rule::kRangeReversed, Severity::kError, "range-reversed",
     "The range of a vector points the wrong way."},
    {Rule::kPortTwice, Severity::kError, "port-twice",
     "A port is declared twice, in different ways."},
    {Rule::kPortOutsideClause, Severity::kError, "port-outside-clause",
     "A port is declared outside of the port clause."},
    {Rule::kModeMissing, Severity::kError, "port-mode-missing", "A port has no mode."},
    {Rule::kTypeMissing, Severity::kError, "port-type-missing", "A port has no type."},
    {Rule::kClauseTwice, Severity::kError, "clause-twice",
     "The generic or the port clause stands twice."},
    {Rule::kPinMapEntryTwice, Severity::kError, "pin-map-entry-twice",
     "A pin map has two entries for one port."},
    {Rule::kPinMissing, Severity::kError, "pin-missing", "An entry of a pin map names no pin."},
    {Rule::kCellNumberMissing, Severity::kError, "cell-number-missing",
     "An entry of the boundary register has no number."},
    {Rule::kAttributeTwice, Severity::kError, "attribute-twice",
     "An attribute is set twice, to different values."},
    {Rule::kConstantTwice, Severity::kError, "constant-twice",
     "A constant is declared twice, with different values."},
    {Rule::kSaidTwice, Severity::kWarning, "said-twice",
     "The same declaration stands twice, in the same words."},
    {Rule::kAttributeDeclared, Severity::kNote, "attribute-declared",
     "An attribute is declared in the entity; the standard does so in packages."},
    {Rule::kTextBeforeEntity, Severity::kWarning, "text-before-entity",
     "Words stand before the entity that are no comment."},
    {Rule::kUseBeforeEntity, Severity::kWarning, "use-before-entity",
     "A use clause stands before the entity."},
    {Rule::kSecondEntity, Severity::kWarning, "second-entity", "A file has more than one entity."},
    {Rule::kEndMissing, Severity::kWarning, "end-missing", "A file ends before its entity does."},
    {Rule::kEndName, Severity::kWarning, "end-name",
     "The end of the entity has another name than its beginning."},
    {Rule::kTextBehindEnd, Severity::kWarning, "text-behind-end",
     "Words stand behind the end of the entity."},
    {Rule::kTooManyFindings, Severity::kNote, "too-many-findings",
     "The file has more findings than are shown."},
    {Rule::kModeUnknown, Severity::kError, "port-mode-unknown", "The mode of a port is unknown."},
    {Rule::kTypeUnknown, Severity::kError, "port-type-unknown", "The type of a port is unknown."},
    {Rule::kPortUnknown, Severity::kError, "port-unknown",
     "A name that should be a port's is not declared."},
    {Rule::kPortUndeclared, Severity::kError, "port-undeclared",
     "Several parts of the file name a port that is not declared."},
    {Rule::kPortRange, Severity::kError, "port-range",
     "The range of a vector contradicts the pin map and the cells."},
    {Rule::kIndexOutside, Severity::kError, "index-outside",
     "An element is outside the declared range."},
    {Rule::kIndexOfScalar, Severity::kError, "index-of-scalar", "A single bit has an index."},
    {Rule::kIndexMissing, Severity::kError, "index-missing",
     "A vector stands where one of its elements is wanted."},
    {Rule::kIndexLeftOut, Severity::kWarning, "index-left-out",
     "A vector of one element stands without its index."},
    {Rule::kModeAgainstCells, Severity::kError, "port-mode-against-cells",
     "The mode of a port contradicts its cells."},
    {Rule::kGenericMissing, Severity::kWarning, "generic-missing",
     "No generic clause names the package."},
    {Rule::kPackageUndefined, Severity::kNote, "package-undefined",
     "The generic clause leaves the package open."},
    {Rule::kPackageUnknown, Severity::kError, "package-unknown",
     "The package that the generic clause names has no pin map."},
    {Rule::kPinMapMissing, Severity::kWarning, "pin-map-missing", "The file has no pin map."},
    {Rule::kPinMapAttributeMissing, Severity::kWarning, "pin-map-attribute-missing",
     "No attribute PIN_MAP tells how the package is chosen."},
    {Rule::kPinCount, Severity::kError, "pin-count",
     "A pin map entry has more or fewer pins than its port has elements."},
    {Rule::kPinListOfScalar, Severity::kWarning, "pin-list-of-scalar",
     "A single bit has several pins."},
    {Rule::kPinTwice, Severity::kError, "pin-twice", "A package pin is given to two ports."},
    {Rule::kPortWithoutPin, Severity::kWarning, "port-without-pin", "A pin map leaves out a port."},
    {Rule::kPinMapIncomplete, Severity::kWarning, "pin-map-incomplete",
     "A pin map leaves out most of the ports."},
    {Rule::kTapSignalMissing, Severity::kError, "tap-signal-missing",
     "No attribute tells which port is a signal of the TAP."},
    {Rule::kTapPortMode, Severity::kError, "tap-port-mode",
     "A port of the TAP has a mode that its signal cannot have."},
    {Rule::kTapPortWide, Severity::kWarning, "tap-port-wide",
     "A port of the TAP can do more than its signal."},
    {Rule::kTapPortShared, Severity::kError, "tap-port-shared",
     "One port is two signals of the TAP."},
    {Rule::kTapPortInRegister, Severity::kError, "tap-port-in-register",
     "A port of the TAP has a cell in the boundary register."},
    {Rule::kTapFrequency, Severity::kError, "tap-frequency",
     "The greatest frequency of TCK is not above 0."},
    {Rule::kCompliancePortMode, Severity::kError, "compliance-port-mode",
     "A port that enables the test logic is no input."},
    {Rule::kCompliancePatternLength, Severity::kError, "compliance-pattern-length",
     "A compliance pattern has more or fewer bits than ports."},
    {Rule::kComplianceBits, Severity::kError, "compliance-bits",
     "A compliance pattern has a character that is no bit."},
    {Rule::kConformanceMissing, Severity::kWarning, "conformance-missing",
     "The file does not tell to which edition of the standard it conforms."},
    {Rule::kConformanceUnknown, Severity::kWarning, "conformance-unknown",
     "COMPONENT_CONFORMANCE names no edition of the standard."},
    {Rule::kUseMissing, Severity::kWarning, "use-missing",
     "No use clause names the package of the standard."},
    {Rule::kInstructionLengthMissing, Severity::kError, "instruction-length-missing",
     "The file has no INSTRUCTION_LENGTH."},
    {Rule::kInstructionLengthTooSmall, Severity::kError, "instruction-length-too-small",
     "INSTRUCTION_LENGTH is below 2."},
    {Rule::kInstructionLength, Severity::kError, "instruction-length",
     "INSTRUCTION_LENGTH contradicts the opcodes."},
    {Rule::kOpcodesMissing, Severity::kError, "opcodes-missing",
     "The file has no INSTRUCTION_OPCODE."},
    {Rule::kOpcodeBits, Severity::kError, "opcode-bits",
     "An opcode has a character that is no bit."},
    {Rule::kOpcodeLength, Severity::kError, "opcode-length",
     "An opcode is longer or shorter than INSTRUCTION_LENGTH."},
    {Rule::kOpcodeShared, Severity::kError, "opcode-shared",
     "Two instructions have the same opcode."},
    {Rule::kInstructionRepeated, Severity::kWarning, "instruction-repeated",
     "An instruction is listed twice, with the same opcodes."},
    {Rule::kInstructionTwice, Severity::kError, "instruction-twice",
     "An instruction is listed twice, with different opcodes."},
    {Rule::kBypassOpcode, Severity::kError, "bypass-opcode",
     "BYPASS does not have the opcode of all ones."},
    {Rule::kExtestOpcode, Severity::kWarning, "extest-opcode",
     "EXTEST does not have the opcode of all zeros, which editions before 2001 reserve for it."},
    {Rule::kInstructionMissing, Severity::kError, "instruction-missing",
     "An instruction that every device has is missing."},
    {Rule::kBypassMissing, Severity::kWarning, "bypass-missing",
     "BYPASS is missing; its opcode of all ones is known."},
    {Rule::kPreloadMissing, Severity::kWarning, "preload-missing",
     "PRELOAD is missing, which the editions since 2001 want."},
    {Rule::kPrivateUnknown, Severity::kError, "private-instruction-unknown",
     "INSTRUCTION_PRIVATE names an instruction without opcode."},
    {Rule::kCaptureMissing, Severity::kError, "instruction-capture-missing",
     "The file has no INSTRUCTION_CAPTURE."},
    {Rule::kCaptureBits, Severity::kError, "instruction-capture-bits",
     "INSTRUCTION_CAPTURE has a character that is no bit."},
    {Rule::kCaptureLength, Severity::kError, "instruction-capture-length",
     "INSTRUCTION_CAPTURE is longer or shorter than INSTRUCTION_LENGTH."},
    {Rule::kCaptureEnding, Severity::kError, "instruction-capture-ending",
     "INSTRUCTION_CAPTURE does not end in 01."},
    {Rule::kIdcodeBits, Severity::kError, "idcode-bits",
     "IDCODE_REGISTER or USERCODE_REGISTER has a character that is no bit."},
    {Rule::kIdcodeLength, Severity::kError, "idcode-length",
     "IDCODE_REGISTER or USERCODE_REGISTER does not have 32 bits."},
    {Rule::kIdcodeEnding, Severity::kError, "idcode-ending", "IDCODE_REGISTER does not end in 1."},
    {Rule::kIdcodeInstructionMissing, Severity::kError, "idcode-instruction-missing",
     "The file tells a code, and no instruction to read it."},
    {Rule::kIdcodeRegisterMissing, Severity::kWarning, "idcode-register-missing",
     "The device has an instruction to read a code that the file does not tell."},
    {Rule::kRegisterUnknown, Severity::kError, "register-unknown",
     "A register's name is nearly that of one of the standard."},
    {Rule::kRegisterLengthMissing, Severity::kWarning, "register-length-missing",
     "The length of a register is not written."},
    {Rule::kRegisterLength, Severity::kError, "register-length",
     "The length of a register contradicts the rest of the file or the standard."},
    {Rule::kRegisterCaptureLength, Severity::kError, "register-capture-length",
     "A captured value is longer or shorter than its register."},
    {Rule::kRegisterInstructionUnknown, Severity::kError, "register-instruction-unknown",
     "REGISTER_ACCESS names an instruction without opcode."},
    {Rule::kRegisterInstructionTwice, Severity::kError, "register-instruction-twice",
     "An instruction selects two registers."},
    {Rule::kRegisterInstructionRepeated, Severity::kWarning, "register-instruction-repeated",
     "An instruction is given to its register twice."},
    {Rule::kRegisterOfStandard, Severity::kWarning, "register-of-standard",
     "An instruction of the standard selects another register than the standard says."},
    {Rule::kBoundaryMissing, Severity::kWarning, "boundary-missing",
     "The file describes no boundary register."},
    {Rule::kBoundaryLengthMissing, Severity::kError, "boundary-length-missing",
     "The file has no BOUNDARY_LENGTH."},
    {Rule::kBoundaryRegisterMissing, Severity::kError, "boundary-register-missing",
     "The file has no BOUNDARY_REGISTER."},
    {Rule::kBoundaryLength, Severity::kError, "boundary-length",
     "BOUNDARY_LENGTH contradicts the cells."},
    {Rule::kCellNumber, Severity::kError, "cell-number",
     "A cell has a wrong number, and the one that it should have is missing."},
    {Rule::kCellMissing, Severity::kError, "cell-missing", "A cell of the register is missing."},
    {Rule::kCellOutside, Severity::kError, "cell-outside",
     "The number of a cell is not below BOUNDARY_LENGTH."},
    {Rule::kCellTwice, Severity::kError, "cell-twice",
     "A cell number stands twice without being a merged cell."},
    {Rule::kCellFields, Severity::kError, "cell-fields",
     "The entry of a cell has a wrong number of fields."},
    {Rule::kCellType, Severity::kWarning, "cell-type",
     "The type of a cell is none of the standard's."},
    {Rule::kCellFunction, Severity::kError, "cell-function", "The function of a cell is unknown."},
    {Rule::kCellSafe, Severity::kError, "cell-safe", "The safe value of a cell is not 0, 1 or X."},
    {Rule::kCellDisableValue, Severity::kError, "cell-disable-value",
     "The disable value of a cell is not 0 or 1."},
    {Rule::kCellDisableResult, Severity::kError, "cell-disable-result",
     "The disable result of a cell is unknown."},
    {Rule::kCellWithoutPort, Severity::kWarning, "cell-without-port",
     "A cell that drives or observes serves no port."},
    {Rule::kCellWithPort, Severity::kError, "cell-with-port",
     "A control or internal cell names a port."},
    {Rule::kFunctionAgainstMode, Severity::kError, "cell-function-against-mode",
     "The function of a cell contradicts the mode of its port."},
    {Rule::kObserverAgainstMode, Severity::kWarning, "cell-observer-against-mode",
     "A cell observes a port whose mode has no such function."},
    {Rule::kPortDrivenTwice, Severity::kError, "port-driven-twice",
     "Two cells drive the same port."},
    {Rule::kControlMissing, Severity::kError, "control-missing",
     "A cell that needs a control cell names none."},
    {Rule::kControlUnneeded, Severity::kError, "control-unneeded",
     "A cell that drives nothing names a control cell."},
    {Rule::kControlOutside, Severity::kError, "control-outside",
     "The number of a control cell is not below BOUNDARY_LENGTH."},
    {Rule::kControlIsNone, Severity::kError, "control-is-none",
     "The cell that is to control a driver is no control cell."},
    {Rule::kSafeTurnsOn, Severity::kWarning, "safe-turns-on",
     "The safe value of a control cell turns its drivers on."},
    {Rule::kPairLegMissing, Severity::kError, "pair-leg-missing", "A pair has one leg only."},
    {Rule::kPairShape, Severity::kError, "pair-shape",
     "The legs of a pair do not have the same number of elements."},
    {Rule::kPairModes, Severity::kWarning, "pair-modes",
     "The legs of a pair do not have the same mode."},
    {Rule::kPairLegTwice, Severity::kError, "pair-leg-twice", "A port is a leg of two pairs."},
};

constexpr bool InOrder() {
    for (std::size_t i = 0; i < std::size(kRules); ++i) {
        if (static_cast<std::size_t>(kRules[i].rule) != i) return false;
    }
    return true;
}
static_assert(InOrder(), "a rule's row stands at the rule's value");

const RuleRow& RowOf(Rule rule) { return kRules[static_cast<std::size_t>(rule)]; }

}  // namespace

std::size_t RuleCount() { return std::size(kRules); }

std::string_view RuleName(Rule rule) { return RowOf(rule).name; }

bool FindingList::IsTold(const Place& place) {
    if (entry_.line != 0) return std::exchange(entry_is_faulty_, true);
    const auto behind =
        std::partition_point(faulty_entries_.begin(), faulty_entries_.end(),
                             [&](const Stretch& stretch) { return stretch.first <= place; });
    return behind != faulty_entries_.begin() && place <= behind[-1].last;
}

void FindingList::EndEntry(const Word& last) {
    const Place place{last.line, last.column + static_cast<int>(last.text.size())};
    // Beyond kMaxFindings nothing is told anyway.
    if (entry_is_faulty_ && faulty_entries_.size() < kMaxFindings) {
        faulty_entries_.push_back({entry_, place});
    }
    entry_ = {};
    entry_is_faulty_ = false;
}

void FindingList::EndText(const Word& last) {
    const Place place{last.line, last.column};
    std::erase_if(findings_, [&](const Finding& finding) {
        return Place{finding.line, finding.column} >= place;
    });
    std::erase_if(faulty_entries_, [&](const Stretch& entry) { return entry.last >= place; });
    entry_ = {};
    Add(Rule::kTextEnds, Behind(last), "the text ends within the description");
    constexpr int kLast = std::numeric_limits<int>::max();
    faulty_entries_.push_back({place, {kLast, kLast}});
}

void FindingList::Add(Rule rule, const Word& where, std::string message, std::string remedy) {
    const std::size_t count = findings_.size();
    AddAt(rule, where.line, where.column, std::move(message), std::move(remedy));
    if (findings_.size() > count) {
        findings_.back().length = static_cast<int>(where.text.size());
    }
}

void FindingList::AddAt(Rule rule, int line, int column, std::string message, std::string remedy) {
    const RuleRow& row = RowOf(rule);
    if (row.severity != Severity::kNote && IsTold({line, column})) return;
    if (findings_.size() >= kMaxFindings) {
        ++surplus_;
        return;
    }
    findings_.push_back(
        {row.severity, line, column, row.name, std::move(message), std::move(remedy), 0});
}

std::vector<Finding> FindingList::Take() {
    std::stable_sort(findings_.begin(), findings_.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.line, a.column) < std::tie(b.line, b.column);
    });
    if (surplus_ > 0) {
        const RuleRow& row = RowOf(Rule::kTooManyFindings);
        findings_.push_back({row.severity, 0, 0, row.name,
                             std::to_string(surplus_) + " more findings are not shown.", "", 0});
        surplus_ = 0;
    }
    return std::exchange(findings_, {});
}

}  // namespace detail

const char* DescribeRule(std::string_view rule) {
    for (const detail::RuleRow& row : detail::kRules) {
        if (rule == row.name) return row.meaning;
    }
    return nullptr;
}

}  // namespace bscan
