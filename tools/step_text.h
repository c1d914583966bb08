// Steps as a user gives them: from a file, from the command line, or both.
#pragma once

#include <bscan/scan_program.h>

#include "commands.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct StepText {
    std::string text;    // a step a line
    std::string source;  // how faults name it
};

using Complaint = std::function<void(const std::string&)>;

/// The steps of the file, then those of the command line; nothing after a complaint.
std::optional<StepText> ReadSteps(const StepOptions& options, const Complaint& complain);

/// Complains of each fault, with its place in the source.
void TellFaults(const std::vector<bscan::StepFault>& faults, const std::string& source,
                const Complaint& complain);

}  // namespace tool
