// What was found wrong with a text, and the table of rules that it comes from.
#pragma once

#include <bscan/description.h>

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// One value for each row of the table in findings.cpp, in the same order.
enum class Rule {
    kNoEntity,
    kKeywordMissing,
    kWordMisspelt,
    kStatementUnknown,
    kValueMissing,
    kValueUnexpected,
    kTargetMissing,
    kNameMissing,
    kOtherEntity,
    kTextSurplus,
    kMarkSurplus,
    kSemicolonMissing,
    kSemicolonSurplus,
    kCommaMissing,
    kCommaSurplus,
    kColonMissing,
    kParenthesisMissing,
    kParenthesisSurplus,
    kAmpersandMissing,
    kAmpersandSurplus,
    kStringNotClosed,
    kStringNotOpened,
    kBracketsAroundString,
    kTextOutsideString,
    kQuoteSurplus,
    kCommentBegin,
    kCommentInString,
    kQuoteTypographic,
    kTextEnds,
    kPinMapByElement,
    kListOfOne,
    kNumberMalformed,
    kNumberInQuotes,
    kBlankInBits,
    kBlankMissing,
    kRangeMalformed,
    kRangeReversed,
    kPortTwice,
    kPortOutsideClause,
    kModeMissing,
    kTypeMissing,
    kClauseTwice,
    kPinMapEntryTwice,
    kPinMissing,
    kCellNumberMissing,
    kAttributeTwice,
    kConstantTwice,
    kSaidTwice,
    kAttributeDeclared,
    kTextBeforeEntity,
    kUseBeforeEntity,
    kSecondEntity,
    kEndMissing,
    kEndName,
    kTextBehindEnd,
    kTooManyFindings,
    kModeUnknown,
    kTypeUnknown,
    kPortUnknown,
    kPortUndeclared,
    kPortRange,
    kIndexOutside,
    kIndexOfScalar,
    kIndexMissing,
    kIndexLeftOut,
    kModeAgainstCells,
    kGenericMissing,
    kPackageUndefined,
    kPackageUnknown,
    kPinMapMissing,
    kPinMapAttributeMissing,
    kPinCount,
    kPinListOfScalar,
    kPinTwice,
    kPortWithoutPin,
    kPinMapIncomplete,
    kTapSignalMissing,
    kTapPortMode,
    kTapPortWide,
    kTapPortShared,
    kTapPortInRegister,
    kTapFrequency,
    kCompliancePortMode,
    kCompliancePatternLength,
    kComplianceBits,
    kConformanceMissing,
    kConformanceUnknown,
    kUseMissing,
    kInstructionLengthMissing,
    kInstructionLengthTooSmall,
    kInstructionLength,
    kOpcodesMissing,
    kOpcodeBits,
    kOpcodeLength,
    kOpcodeShared,
    kInstructionRepeated,
    kInstructionTwice,
    kBypassOpcode,
    kExtestOpcode,
    kInstructionMissing,
    kBypassMissing,
    kPreloadMissing,
    kPrivateUnknown,
    kCaptureMissing,
    kCaptureBits,
    kCaptureLength,
    kCaptureEnding,
    kIdcodeBits,
    kIdcodeLength,
    kIdcodeEnding,
    kIdcodeInstructionMissing,
    kIdcodeRegisterMissing,
    kRegisterUnknown,
    kRegisterLengthMissing,
    kRegisterLength,
    kRegisterCaptureLength,
    kRegisterInstructionUnknown,
    kRegisterInstructionTwice,
    kRegisterInstructionRepeated,
    kRegisterOfStandard,
    kBoundaryMissing,
    kBoundaryLengthMissing,
    kBoundaryRegisterMissing,
    kBoundaryLength,
    kCellNumber,
    kCellMissing,
    kCellOutside,
    kCellTwice,
    kCellFields,
    kCellType,
    kCellFunction,
    kCellSafe,
    kCellDisableValue,
    kCellDisableResult,
    kCellWithoutPort,
    kCellWithPort,
    kFunctionAgainstMode,
    kObserverAgainstMode,
    kPortDrivenTwice,
    kControlMissing,
    kControlUnneeded,
    kControlOutside,
    kControlIsNone,
    kSafeTurnsOn,
    kPairLegMissing,
    kPairShape,
    kPairModes,
    kPairLegTwice,
};

// The table, row by row.
std::size_t RuleCount();
std::string_view RuleName(Rule rule);

// Gathers findings in any order and hands them out in the order of the file.
class FindingList {
public:
    // Points at a word; the message names it. Beyond kMaxFindings a finding is only counted.
    void Add(Rule rule, const Word& where, std::string message, std::string remedy = {});
    // Points at a place without a word, such as one where something is missing.
    void AddAt(Rule rule, int line, int column, std::string message, std::string remedy = {});

    // While an entry of a list is read, only its first fault is told: the others mostly follow from
    // it. So do those that are found later within that entry. Notes are no faults.
    void BeginEntry(const Word& first) { entry_ = {first.line, first.column}; }
    void EndEntry(const Word& last);
    // The entry may lack a part: nothing more is told about it.
    void DoubtEntry() { entry_is_faulty_ = true; }

    // The text ends too early, behind its last word. What was found from that word on follows from
    // it, and what is found there later does, too.
    void EndText(const Word& last);

    // The findings, sorted by place; a note at the end tells how many were not kept.
    std::vector<Finding> Take();

private:
    struct Place {
        int line = 0;
        int column = 0;
        auto operator<=>(const Place&) const = default;
    };
    struct Stretch {
        Place first, last;
    };

    // Whether a finding at a place was told already, in the same entry.
    bool IsTold(const Place& place);

    std::vector<Finding> findings_;
    Place entry_;                   // where the entry begins that is being read; line 0 for none
    bool entry_is_faulty_ = false;  // it has its finding
    std::vector<Stretch> faulty_entries_;  // in the order of the file
    std::size_t surplus_ = 0;
};

}  // namespace bscan::detail
