// bscan svf: steps on the pins of a chain as a file in the Serial Vector Format.

#include <bscan/scan_program.h>

#include "commands.h"
#include "printable.h"
#include "scan_text.h"
#include "text_file.h"

#include <fmt/format.h>

#include <fstream>

namespace tool {
namespace {

void Complain(const std::string& message) {
    Write(stderr, fmt::format("bscan svf: {}\n", message));
}

void Report(const std::vector<bscan::StepFault>& faults, const std::string& source) {
    for (const bscan::StepFault& fault : faults) {
        std::string text;
        if (fault.line > 0) text += fmt::format("{}:{}: ", source, fault.line);
        if (!fault.step.empty()) text += fmt::format("{}: ", fault.step);
        text += fault.message;
        Complain(Printable(text));
    }
}

// A capture is BITS or a file with them, behind DEVICE= in a chain of several.
bool TakeSample(const bscan::Chain& chain, const std::string& text,
                bscan::ProgramOptions& program) {
    const std::size_t equals = text.find('=');
    const std::string name = equals == std::string::npos ? "" : text.substr(0, equals);
    int device = name.empty() && chain.DeviceCount() == 1 ? 0 : chain.FindDevice(name);
    const bscan::PinDriver* driver = chain.Driver(device);
    if (driver == nullptr) {
        Complain(fmt::format("'{}' names no device with a file: write DEVICE=BITS or DEVICE=PATH",
                             Printable(text)));
        return false;
    }
    const std::string source = equals == std::string::npos ? text : text.substr(equals + 1);
    std::optional<Capture> capture = ParseCapture(source);
    if (!capture) {
        const std::optional<std::string> content = ReadText(source);
        if (content) capture = ParseCapture(*content);
    }
    const int length = driver->Device().GetBScanLength();
    if (!capture || capture->data.size() != static_cast<std::size_t>(length)) {
        Complain(fmt::format("'{}' is no capture of {} bits 0, 1 or x for {}, and no file with one",
                             Printable(source), length, chain.Device(device).name));
        return false;
    }
    program.sample.resize(static_cast<std::size_t>(chain.DeviceCount()));
    std::vector<eSignal>& levels = program.sample[static_cast<std::size_t>(device)];
    for (std::size_t i = 0; i < capture->data.size(); ++i) {
        levels.push_back(capture->mask[i] == 0 ? SIG_X : capture->data[i] != 0 ? SIG_1 : SIG_0);
    }
    return true;
}

bool WriteFile(const std::string& path, const std::string& text) {
    if (path.empty() || path == "-") {
        Write(stdout, text);
        return true;
    }
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) Complain(fmt::format("cannot write {}", Printable(path)));
    return static_cast<bool>(stream);
}

struct StepText {
    std::string text;
    std::string source;  // how faults name it
};

std::optional<StepText> StepsOf(const StepOptions& options) {
    StepText steps{"", "step"};
    if (!options.file.empty()) {
        std::optional<std::string> text = ReadText(options.file);
        if (!text) {
            Complain(fmt::format("cannot read {}", Printable(options.file)));
            return std::nullopt;
        }
        steps = {std::move(*text) + '\n', options.file};
    }
    for (const std::string& step : options.steps) steps.text += step + '\n';
    return steps;
}

}  // namespace

int Svf(const SvfOptions& options) {
    LoadedChain loaded;
    if (!LoadChain("svf", options.chain, loaded)) return kProblem;
    const std::optional<StepText> text = StepsOf(options.steps);
    if (!text) return kProblem;
    const bscan::Steps steps = bscan::ParseSteps(loaded.chain, text->text);
    Report(steps.faults, text->source);
    if (!steps.result.Ok()) return kProblem;

    bscan::ProgramOptions program_options;
    program_options.check_idcodes = !options.no_idcode;
    for (const std::string& sample : options.samples) {
        if (!TakeSample(loaded.chain, sample, program_options)) return kProblem;
    }
    const bscan::ScanProgram program = bscan::PlanSteps(loaded.chain, steps.steps, program_options);
    Report(program.faults, text->source);
    if (!program.result.Ok()) return kProblem;
    for (const std::string& note : program.notes) {
        Complain(fmt::format("note: {}", Printable(note)));
    }
    const std::string svf = bscan::WriteSvf(loaded.chain, program, {options.frequency});
    return WriteFile(options.output, svf) ? kSuccess : kProblem;
}

}  // namespace tool
