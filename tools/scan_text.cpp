#include "scan_text.h"

#include "text_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tool {
namespace {

constexpr std::size_t kCellsInLine = 32;

bool BitIsSet(const unsigned char* bytes, int cell) {
    return (bytes[cell / 8] & (0x80U >> (static_cast<unsigned>(cell) % 8U))) != 0;
}

std::string ByEights(std::string_view bits) {
    std::string text;
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (i > 0 && i % 8 == 0) text += ' ';
        text += bits[i];
    }
    return text;
}

}  // namespace

std::string BitText(BScanPinMap& map) {
    const unsigned char* bytes = map.GetBScanBitArray();
    std::string text;
    for (int cell = 0; cell < map.GetBScanLength(); ++cell) {
        text += BitIsSet(bytes, cell) ? '1' : '0';
    }
    return text;
}

std::vector<std::string> ByteTexts(BScanPinMap& map) {
    const unsigned char* bytes = map.GetBScanBitArray();
    std::vector<std::string> texts((static_cast<std::size_t>(map.GetBScanLength()) + 7) / 8);
    std::transform(bytes, bytes + texts.size(), texts.begin(),
                   [](unsigned char byte) { return fmt::format("{:02x}", byte); });
    return texts;
}

Table VectorTable(BScanPinMap& map) {
    Table table{{{"cell", "Cell"}, {"bits", "Bits"}, {"bytes", "Bytes"}}, {}};
    const std::string bits = BitText(map);
    const std::vector<std::string> bytes = ByteTexts(map);
    for (std::size_t cell = 0; cell < bits.size(); cell += kCellsInLine) {
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(cell / 8);
        const auto last = first + std::min<std::ptrdiff_t>(kCellsInLine / 8, bytes.end() - first);
        table.rows.push_back({cell, ByEights(std::string_view(bits).substr(cell, kCellsInLine)),
                              fmt::format("{}", fmt::join(first, last, " "))});
    }
    return table;
}

std::string HexText(BScanPinMap& map) { return fmt::format("{}", fmt::join(ByteTexts(map), "")); }

namespace {

// What counts of a capture: neither comments nor what may stand between its characters.
std::string WithoutSpace(std::string_view text) {
    std::string bare;
    bool comment = false;
    for (const char character : text) {
        if (character == '\n') comment = false;
        if (character == '#') comment = true;
        const bool space = std::string_view(" \t\r\n_").find(character) != std::string_view::npos;
        if (!comment && !space) bare += character;
    }
    return bare;
}

// The digits of a capture in hexadecimal; empty for one in bits. One of 0, 1 and x alone is bits,
// also when it begins with 0x.
std::string_view HexDigits(std::string_view bare) {
    constexpr std::string_view kPrefix = "hex:";
    if (bare.substr(0, kPrefix.size()) == kPrefix) return bare.substr(kPrefix.size());
    const bool prefixed = bare.substr(0, 2) == "0x" || bare.substr(0, 2) == "0X";
    const bool bits = bare.find_first_not_of("01xX") == std::string_view::npos;
    return prefixed && !bits ? bare.substr(2) : std::string_view();
}

void Append(Capture& capture, bool value, bool known) {
    capture.data.push_back(value ? 1 : 0);
    capture.mask.push_back(known ? 1 : 0);
}

bool AppendDigit(Capture& capture, char digit) {
    constexpr std::string_view kDigits = "0123456789abcdefxABCDEFX";
    const bool known = digit != 'x' && digit != 'X';
    if (kDigits.find(digit) == std::string_view::npos) return false;
    const unsigned value =
        known ? static_cast<unsigned>(std::stoi(std::string(1, digit), nullptr, 16)) : 0;
    for (unsigned bit = 4; bit-- > 0;) Append(capture, (value >> bit & 1U) != 0, known);
    return true;
}

bool AppendBit(Capture& capture, char bit) {
    if (std::string_view("01xX").find(bit) == std::string_view::npos) return false;
    Append(capture, bit == '1', bit == '0' || bit == '1');
    return true;
}

}  // namespace

std::optional<Capture> ParseCapture(std::string_view text) {
    const std::string bare = WithoutSpace(text);
    Capture capture;
    const std::string_view digits = HexDigits(bare);
    capture.is_hexadecimal = !digits.empty();
    for (const char character : capture.is_hexadecimal ? digits : std::string_view(bare)) {
        const bool taken = capture.is_hexadecimal ? AppendDigit(capture, character)
                                                  : AppendBit(capture, character);
        if (!taken) return std::nullopt;
    }
    return capture;
}

std::string ReadCapture(const CaptureOptions& options, const DeviceFile& device, Capture& capture) {
    if (options.file == "-" && device.path == "-") {
        return "standard input cannot be both the device and the capture";
    }
    const std::optional<std::string> text =
        options.file.empty() ? options.bits : ReadText(options.file);
    if (!text) return fmt::format("cannot read {}", NameOf(options.file));
    const std::optional<Capture> read = ParseCapture(*text);
    if (!read) {
        return "a capture is written with 0, 1 and x, cell 0 first, or in hexadecimal behind hex:, "
               "with cell 0 as the 8 of the first digit";
    }
    capture = *read;
    return {};
}

bool FitsRegister(const Capture& capture, int length) {
    const std::size_t cells = static_cast<std::size_t>(length);
    const std::size_t size = capture.data.size();
    if (!capture.is_hexadecimal) return size == cells;
    const auto first_surplus =
        capture.data.begin() + static_cast<std::ptrdiff_t>(std::min(cells, size));
    return size >= cells && size < cells + 8 &&
           std::find(first_surplus, capture.data.end(), 1) == capture.data.end();
}

std::string CaptureProblem(const Capture& capture, const Device& device) {
    const int length = device.map().GetBScanLength();
    if (FitsRegister(capture, length)) return {};
    return fmt::format("the capture has {} bits{}, the boundary register of {} has {}",
                       capture.data.size(), capture.is_hexadecimal ? " in hexadecimal" : "",
                       NameOf(device.path()), length);
}

}  // namespace tool
