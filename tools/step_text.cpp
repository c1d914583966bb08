#include "step_text.h"

#include "printable.h"
#include "text_file.h"

#include <fmt/format.h>

namespace tool {

std::optional<StepText> ReadSteps(const StepOptions& options, const Complaint& complain) {
    StepText steps{"", "step"};
    if (!options.file.empty()) {
        std::optional<std::string> text = ReadText(options.file);
        if (!text) {
            complain(fmt::format("cannot read {}", Printable(options.file)));
            return std::nullopt;
        }
        steps = {std::move(*text) + '\n', options.file};
    }
    for (const std::string& step : options.steps) steps.text += step + '\n';
    return steps;
}

void TellFaults(const std::vector<bscan::StepFault>& faults, const std::string& source,
                const Complaint& complain) {
    for (const bscan::StepFault& fault : faults) {
        std::string text;
        if (fault.line > 0) text += fmt::format("{}:{}: ", source, fault.line);
        if (!fault.step.empty()) text += fmt::format("{}: ", fault.step);
        complain(Printable(text + fault.message));
    }
}

}  // namespace tool
