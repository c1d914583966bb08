// The words of a description as the standard spells them. What is none of its words stays as it is.
#pragma once

#include <bscan/facts.h>

#include <string>
#include <string_view>

namespace tool {

std::string LowerCase(std::string_view text);

/// A text with one blank in the place of several.
std::string CollapseBlanks(std::string_view text);

/// A number; the word that stands in its place when it is not above 0.
std::string NumberText(int number, const bscan::Word& word);

/// "inout bit_vector (7 downto 0)"
std::string PortTypeText(const bscan::Port& port);

/// "STD_1149_1_2001.all"
std::string UseClauseText(std::string_view clause);

/// The name of an edition or package of the standard in capitals, any other name as it is.
std::string StandardName(std::string_view name);

/// "10.0e6"
std::string FrequencyText(const bscan::TapSignals& tap);
std::string ClockStopText(const bscan::TapSignals& tap);

/// "USER[8]"
std::string RegisterName(const bscan::RegisterAccess& access);
/// "PROBE CAPTURES 0101"
std::string RegisterInstructionText(const bscan::RegisterInstruction& instruction);

std::string FunctionText(const bscan::Cell& cell);
/// A safe value, disable value or disable result.
std::string LevelText(const bscan::Word& word);

/// What an attribute is of: entity, signal, component.
std::string KeywordText(std::string_view word);
/// Whether an attribute is of the entity; one that does not tell is.
bool IsEntity(std::string_view target_class);

}  // namespace tool
