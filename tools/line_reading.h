// What BScanParser::Read makes of a file, beside what the file means.
#pragma once

#include <bscan/description.h>

#include "table.h"

#include <string>

namespace tool {

/// Reads a text by lines and compares the model with that of the description.
/// @return {code, line, differs}: the result, the line at which the reading stopped (null when it
///         did not), and a list of {cause, count} of what the model has otherwise.
Json ReadByLines(const std::string& text, const bscan::Description& description);

/// The same in words for people, with a line end.
std::string LineReadingText(const std::string& file, const Json& lines);

}  // namespace tool
