// Programs in the Serial Vector Format.

#include <bscan/scan_program.h>

#include "support/border.h"

#include <algorithm>
#include <charconv>

namespace bscan {
namespace {

constexpr std::size_t kDigitsInLine = 72;
constexpr std::size_t kCommentWidth = 90;
constexpr double kUsualFrequency = 1e6;

// What a file says goes into one line of a comment, whatever characters it has.
std::string Harmless(std::string_view text) {
    std::string line(text);
    for (char& character : line) {
        if (static_cast<unsigned char>(character) < ' ' || character == '\x7F') character = ' ';
    }
    return line;
}

class SvfWriter {
public:
    SvfWriter(const Chain& chain, const ScanProgram& program, const SvfOptions& options)
        : chain_(chain), program_(program), options_(options) {}

    std::string Write();

private:
    void Header();
    void DeviceComment(const ChainDevice& device);
    void Setup();
    void Comment(std::string_view text, std::string_view indent = "");
    void Command(std::string_view text) { text_.append(text).append(";\n"); }
    void Operation(const ScanOperation& operation);
    void Scan(const char* command, const ScanOperation& operation);
    void Bits(const char* name, const ScanBits& bits);
    void RunTest(const Wait& wait);

    const Chain& chain_;
    const ScanProgram& program_;
    const SvfOptions& options_;
    std::string text_;
};

std::string SvfWriter::Write() {
    Header();
    Setup();
    for (const ScanOperation& operation : program_.operations) Operation(operation);
    return std::move(text_);
}

void SvfWriter::Header() {
    Comment("Written by bscan. Devices from TDI to TDO:");
    for (int i = 0; i < chain_.DeviceCount(); ++i) DeviceComment(chain_.Device(i));
    for (const std::string& note : program_.notes) Comment("Note: " + note);
    text_ += '\n';
}

void SvfWriter::DeviceComment(const ChainDevice& device) {
    const std::string length = std::to_string(device.instruction_length) + " instruction bits";
    if (!device.HasModel()) return Comment(device.name + ": stays in BYPASS, " + length, "  ");
    const std::string package = device.package.empty() ? "" : ", package " + device.package;
    Comment(device.name + ": " + device.component + package + ", " + length, "  ");
    if (!device.compliance.empty()) {
        Comment("hold for compliance: " + device.compliance, "      ");
    }
    if (!device.design_warning.empty()) {
        Comment("design warning: " + device.design_warning, "      ");
    }
}

// Long texts go on in the next line, behind a blank.
void SvfWriter::Comment(std::string_view text, std::string_view indent) {
    std::string line = Harmless(text);
    std::string_view rest = line;
    do {
        std::size_t end = rest.size();
        if (end > kCommentWidth) {
            end = rest.rfind(' ', kCommentWidth);
            if (end == std::string_view::npos || end == 0) end = kCommentWidth;
        }
        text_.append("// ").append(indent).append(rest.substr(0, end)) += '\n';
        rest.remove_prefix(end);
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    } while (!rest.empty());
}

std::string Seconds(double value) {
    char digits[64];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 9);
    static_cast<void>(error);
    std::string text(digits, end);
    std::replace(text.begin(), text.end(), 'e', 'E');
    return text;
}

// Whole hertz, rounded down: a limit of the devices stays one.
std::string Hertz(double value) {
    return std::to_string(static_cast<std::int64_t>(std::clamp(value, 1.0, 1e12)));
}

void SvfWriter::Setup() {
    const double wanted = options_.frequency > 0 ? options_.frequency : kUsualFrequency;
    const double limit = chain_.MaxFrequency();
    Command("FREQUENCY " + Hertz(limit > 0 ? std::min(wanted, limit) : wanted) + " HZ");
    for (const char* part : {"HIR", "HDR", "TIR", "TDR"}) Command(std::string(part) + " 0");
    Command("ENDIR IDLE");
    Command("ENDDR IDLE");
}

void SvfWriter::Operation(const ScanOperation& operation) {
    switch (operation.kind) {
        case OperationKind::kComment:
            text_ += '\n';
            return Comment(operation.text);
        case OperationKind::kReset:
            Command("STATE RESET");
            return Command("STATE IDLE");
        case OperationKind::kInstructionScan:
            return Scan("SIR", operation);
        case OperationKind::kDataScan:
            return Scan("SDR", operation);
        case OperationKind::kWait:
            return RunTest(operation.wait);
    }
}

void SvfWriter::Scan(const char* command, const ScanOperation& operation) {
    text_.append(command).append(" ").append(std::to_string(operation.out.Size()));
    Bits("TDI", operation.out);
    const bool compares = std::any_of(operation.mask.Bytes().begin(), operation.mask.Bytes().end(),
                                      [](std::uint8_t byte) { return byte != 0; });
    if (compares) {
        Bits("TDO", operation.wanted);
        Bits("MASK", operation.mask);
    }
    Command("");
}

void SvfWriter::Bits(const char* name, const ScanBits& bits) {
    const std::string hex = bits.Hex();
    text_.append(" ").append(name).append(" (");
    for (std::size_t at = 0; at < hex.size(); at += kDigitsInLine) {
        if (hex.size() > kDigitsInLine) text_ += "\n    ";
        text_.append(hex, at, kDigitsInLine);
    }
    text_ += ')';
}

void SvfWriter::RunTest(const Wait& wait) {
    if (wait.unit == WaitUnit::kTck) {
        return Command("RUNTEST IDLE " + std::to_string(wait.count) + " TCK");
    }
    const double unit = wait.unit == WaitUnit::kMicroseconds ? 1e-6 : 1e-3;
    Command("RUNTEST IDLE " + Seconds(wait.count * unit) + " SEC");
}

}  // namespace

std::string WriteSvf(const Chain& chain, const ScanProgram& program, const SvfOptions& options) {
    if (!program.result.Ok()) return {};
    return detail::Guarded([&] { return SvfWriter(chain, program, options).Write(); },
                           std::string());
}

}  // namespace bscan
