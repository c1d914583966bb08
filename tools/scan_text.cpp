#include "scan_text.h"

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

std::optional<Capture> ParseCapture(std::string_view text) {
    Capture capture;
    bool comment = false;
    for (const char character : text) {
        if (character == '\n') comment = false;
        if (character == '#') comment = true;
        const bool space = std::string_view(" \t\r\n_").find(character) != std::string_view::npos;
        if (comment || space) continue;
        if (std::string_view("01xX").find(character) == std::string_view::npos) return std::nullopt;
        capture.data.push_back(character == '1' ? 1 : 0);
        capture.mask.push_back(character == '0' || character == '1' ? 1 : 0);
    }
    return capture;
}

}  // namespace tool
