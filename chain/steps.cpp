// Steps as people write them.

#include <bscan/limits.h>
#include <bscan/pin_names.h>
#include <bscan/scan_program.h>

#include "chain/faults.h"
#include "support/border.h"
#include "support/text_view.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace bscan {
namespace {

using detail::FaultList;
using detail::IsBlank;
using detail::Trim;

// '#' begins a comment where a word could begin, so that it can be part of a name.
std::string_view WithoutComment(std::string_view line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '#' && (i == 0 || IsBlank(line[i - 1]))) return line.substr(0, i);
    }
    return line;
}

std::string_view TakeWord(std::string_view& rest) {
    rest = Trim(rest);
    std::size_t end = 0;
    while (end < rest.size() && !IsBlank(rest[end])) ++end;
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    return word;
}

class StepReader {
public:
    explicit StepReader(const Chain& chain) : chain_(chain) {}

    void ReadLine(std::string_view line, int number);
    Steps Take() { return {faults_.Result(), std::move(steps_), faults_.Take()}; }

private:
    struct Row {
        std::string_view word;
        StepKind kind;
        void (StepReader::*read)(std::string_view rest, Step& step);
    };
    static const Row kRows[];

    void ReadPins(std::string_view rest, Step& step);
    void ReadPin(std::string_view word, Step& step);
    void ReadWait(std::string_view rest, Step& step);
    void ReadNothing(std::string_view rest, Step& step);
    void ReadAnything(std::string_view, Step&) {}

    const Chain& chain_;
    std::vector<Step> steps_;
    FaultList faults_;
    std::size_t pin_count_ = 0;
};

const StepReader::Row StepReader::kRows[] = {
    {"drive", StepKind::kDrive, &StepReader::ReadPins},
    {"expect", StepKind::kExpect, &StepReader::ReadPins},
    {"sample", StepKind::kSample, &StepReader::ReadPins},
    {"wait", StepKind::kWait, &StepReader::ReadWait},
    {"reset", StepKind::kReset, &StepReader::ReadNothing},
    {"note", StepKind::kNote, &StepReader::ReadAnything},
};

void StepReader::ReadLine(std::string_view line, int number) {
    std::string_view rest = Trim(WithoutComment(line));
    if (rest.empty()) return;
    Step step;
    step.line = number;
    step.text = rest;
    const std::string_view word = TakeWord(rest);
    for (const Row& row : kRows) {
        if (row.word != word) continue;
        step.kind = row.kind;
        (this->*row.read)(rest, step);
        steps_.push_back(std::move(step));
        return;
    }
    faults_.Add(step, "A step begins with drive, expect, sample, wait, reset or note.");
}

void StepReader::ReadPins(std::string_view rest, Step& step) {
    bool any = false;
    for (std::string_view word = TakeWord(rest); !word.empty(); word = TakeWord(rest)) {
        any = true;
        ReadPin(word, step);
    }
    if (!any) faults_.Add(step, "Name at least one pin, as PIN=LEVEL.");
}

// What looking for a name costs, in elements that are passed.
std::size_t CostOf(const Chain& chain, std::string_view name) {
    std::size_t cost = 0;
    if (!IsPinPattern(name)) return cost;
    for (int device = 0; device < chain.DeviceCount(); ++device) {
        const PinDriver* const driver = chain.Driver(device);
        if (driver != nullptr) cost += static_cast<std::size_t>(driver->ElementCount());
    }
    return cost;
}

void StepReader::ReadPin(std::string_view word, Step& step) {
    const std::size_t equals = std::min(word.rfind('='), word.size());
    const std::string_view name = word.substr(0, equals);
    const bool drives = step.kind == StepKind::kDrive;
    const std::optional<PinLevels> levels =
        equals == word.size() ? std::nullopt : PinLevels::Parse(word.substr(equals + 1));
    if (name.empty() || !levels || (levels->Of(0, 1) == SIG_Z && !drives)) {
        faults_.Add(step, "'" + std::string(word) + "' is not of the form PIN=0, PIN=1" +
                              (drives ? ", PIN=Z or PIN=0x5A." : " or PIN=0x5A."));
        return;
    }
    pin_count_ += CostOf(chain_, name);
    if (pin_count_ > kMaxProgramPins) return faults_.Add(step, "The steps name too many pins.");
    std::vector<ChainPin> pins;
    const ChainResult result = chain_.FindPins(name, pins);
    if (!result.Ok()) return faults_.Add(step, result);
    pin_count_ += pins.size();
    if (pin_count_ > kMaxProgramPins) return faults_.Add(step, "The steps name too many pins.");
    if (levels->IsNumber() && (IsPinPattern(name) || !levels->Fits(pins.size()))) {
        return faults_.Add(step, "The number in '" + std::string(word) + "' does not fit " +
                                     std::to_string(pins.size()) + " elements of one port.");
    }
    for (std::size_t i = 0; i < pins.size(); ++i) {
        step.pins.push_back({pins[i], levels->Of(i, pins.size())});
    }
}

void StepReader::ReadWait(std::string_view rest, Step& step) {
    constexpr struct {
        std::string_view text;
        WaitUnit unit;
    } kUnits[] = {
        {"tck", WaitUnit::kTck}, {"us", WaitUnit::kMicroseconds}, {"ms", WaitUnit::kMilliseconds}};
    const std::string_view number = TakeWord(rest);
    const std::string_view unit = TakeWord(rest);
    const auto [end, error] =
        std::from_chars(number.data(), number.data() + number.size(), step.wait.count);
    const bool read = error == std::errc() && end == number.data() + number.size();
    for (const auto& row : kUnits) {
        if (!read || row.text != unit || step.wait.count < 1 || !Trim(rest).empty()) continue;
        step.wait.unit = row.unit;
        return;
    }
    faults_.Add(step, "Write wait N tck, wait N us or wait N ms, N being a whole number from 1.");
}

void StepReader::ReadNothing(std::string_view rest, Step& step) {
    if (!Trim(rest).empty()) faults_.Add(step, "Nothing may stand behind this word.");
}

}  // namespace

Steps ParseSteps(const Chain& chain, std::string_view text) {
    Steps no_memory;
    no_memory.result.code = ChainCode::kOutOfMemory;
    return detail::Guarded(
        [&] {
            StepReader reader(chain);
            for (int number = 1; !text.empty(); ++number) {
                const std::size_t end = std::min(text.find('\n'), text.size());
                reader.ReadLine(text.substr(0, end), number);
                text.remove_prefix(std::min(end + 1, text.size()));
            }
            return reader.Take();
        },
        std::move(no_memory));
}

}  // namespace bscan
