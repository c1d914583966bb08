// What went wrong with a file.
#pragma once

#include "device.h"

#include <string>

namespace tool {

/// A failed reading.
struct Failure {
    std::string path;
    int code = 0;
    int line = 0;            ///< where the reading ended; 0 when it did not begin
    std::string reason;      ///< what the code means
    std::string statement;   ///< the statement that failed, such as BOUNDARY_REGISTER; may be empty
    int statement_line = 0;  ///< where that statement begins

    /// FILE:LINE: what the code means (code)
    std::string Headline() const;
};

/// Looks into a device whose reading failed with @p code.
Failure Diagnose(const Device& device, int code);

/// Prints a failure on standard error: the headline, the statement, and where to learn more.
void Report(const Failure& failure);

/// Reads a device; reports a failure.
/// @return whether the file was read.
bool ReadOrReport(Device& device, const Capture* capture);

}  // namespace tool
