// Reading a file for a command, and telling what is wrong with it.
#pragma once

#include "device.h"

#include <cstddef>
#include <string>

namespace tool {

/// A failed reading.
struct Failure {
    std::string path;
    int code = 0;
    int line = 0;            ///< where a reading by lines ended; 0 when it did not begin
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

/// What is wrong with a file that was read all the same; 0 for one that is read by lines.
struct FindingCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
};
FindingCounts CountFindings(const Device& device);

/// Reads a device for a command. Tells on standard error why it cannot be read, or in one line how
/// many errors and warnings it has.
/// @return whether the file was read; it may have errors.
bool ReadOrReport(Device& device, const Capture* capture);

}  // namespace tool
