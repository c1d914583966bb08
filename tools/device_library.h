// Finding the files that describe a device by its IDCODE.
#pragma once

#include "output.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

/// A file that describes a device.
struct LibraryMatch {
    std::uint32_t idcode = 0;
    std::string file;
    std::string component;
    std::vector<std::string> packages;
    int instruction_length = 0;
    bool version_differs = false;  ///< its version nibble is another
};

/// Looks for IDCODEs among files and those in folders. Bits of x in a file match any; so does the
/// version, with a mark. Reports files that cannot be read.
/// @param jobs  files to read at a time; 0 for one for each processor.
std::vector<LibraryMatch> FindMatches(const std::vector<std::uint32_t>& idcodes,
                                      const std::vector<std::string>& paths, int jobs);

/// Prints, for each IDCODE, what describes it. @return the exit status: a problem when one has
/// none.
int PrintMatches(const std::vector<std::uint32_t>& idcodes, const std::vector<std::string>& paths,
                 int jobs, Format format);

}  // namespace tool
