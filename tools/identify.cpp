// bscan identify: which files describe the device of an IDCODE.

#include "commands.h"
#include "device_library.h"
#include "printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace tool {
namespace {

bool HasPrefix(std::string_view word, char letter) {
    return word.size() > 1 && word[0] == '0' && (word[1] | 0x20) == letter;
}

std::optional<std::uint32_t> ParseDigits(std::string_view digits, int base) {
    std::uint32_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

// 0x and hexadecimal digits, 0b and 32 bits, or just 8 hexadecimal digits; underscores between.
std::optional<std::uint32_t> ParseIdcode(std::string word) {
    std::erase(word, '_');
    const std::string_view digits =
        std::string_view(word).substr(std::min<std::size_t>(2, word.size()));
    if (HasPrefix(word, 'x')) return ParseDigits(digits, 16);
    if (HasPrefix(word, 'b') && digits.size() == 32) return ParseDigits(digits, 2);
    return word.size() == 8 ? ParseDigits(word, 16) : std::nullopt;
}

}  // namespace

int Identify(const IdentifyOptions& options) {
    std::vector<std::uint32_t> idcodes;
    std::vector<std::string> paths;
    for (const std::string& word : options.words) {
        const std::optional<std::uint32_t> idcode = ParseIdcode(word);
        if (idcode) {
            idcodes.push_back(*idcode);
        } else if (HasPrefix(word, 'x') || HasPrefix(word, 'b')) {
            Write(stderr,
                  fmt::format("bscan identify: {} is no IDCODE of 32 bits\n", Printable(word)));
            return kUsage;
        } else {
            paths.push_back(word);
        }
    }
    if (idcodes.empty()) {
        Write(stderr, "bscan identify: name an IDCODE, such as 0x4BA00477\n");
        return kUsage;
    }
    if (paths.empty()) paths.emplace_back(".");
    return PrintMatches(idcodes, paths, options.jobs, options.format);
}

}  // namespace tool
