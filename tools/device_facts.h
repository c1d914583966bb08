// What a file says about its device beside ports and cells, in words and for programs.
#pragma once

#include "device.h"
#include "table.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// One fact of the summary.
struct Fact {
    std::string key;    ///< name in CSV and in diff
    std::string title;  ///< heading for people
    Json value;         ///< a text, or a list of texts; null when the file does not tell
};

/// The facts of the test logic in the order in which they are shown; none of a device that was read
/// by lines.
std::vector<Fact> TestFacts(const Device& device);

/// The same for programs: one object with a field for each subject.
Json TestFactsJson(const Device& device);

/// What the compliance-enable ports must be, such as "NRST (pin 7) must be 0"; empty when the file
/// has no compliance pattern.
std::string ComplianceText(const Device& device);

/// The design warning on one line; empty without one.
std::string DesignWarning(const Device& device);

/// A code such as IDCODE in hexadecimal, X for four unknown bits; as bits when that cannot be.
std::string CodeText(std::string_view bits);

/// The attributes and constants that have no place elsewhere: name, what they are of, value.
Table AttributeTable(const Device& device);

/// A text with its runs of white space turned into single blanks.
std::string OneLine(std::string_view text);

}  // namespace tool
