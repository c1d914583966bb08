// What to change in a file that cannot be read.
#pragma once

#include "failure.h"
#include "source_file.h"

#include <string>

namespace tool {

/// One sentence for people; empty when nothing useful can be said.
std::string Advice(const Device& device, const SourceFile& source, const Failure& failure);

}  // namespace tool
