// Findings about a file as a compiler would show them.
#pragma once

#include <bscan/description.h>

#include "table.h"
#include "terminal.h"

#include <string>
#include <string_view>

namespace tool {

/// What is found in one file, ready to be passed from process to process:
/// {file, result, component, findings}, where a finding has also its `source` line and the `length`
/// of the words that it points at.
/// @param text  what the description was read from.
Json FindingsOf(const std::string& file, std::string_view text,
                const bscan::Description& description);

/// A finding of such a record: FILE:LINE:COLUMN: severity: message [rule], the source line with a
/// caret under the words, and the remedy. It ends with a line end.
std::string FindingText(const std::string& file, const Json& finding, const Style& style);

}  // namespace tool
