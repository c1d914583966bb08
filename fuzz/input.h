/// @file
/// What fuzz targets make of their input, and how they report.
#pragma once

#include "support/text_view.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace bscan::fuzz {

/// Ends the run when something that must hold does not.
inline void Require(const std::string& fault) {
    if (fault.empty()) return;
    std::fprintf(stderr, "fault: %s\n", fault.c_str());
    std::abort();
}

inline void Require(bool holds, const char* claim) {
    if (!holds) Require(std::string("not so: ") + claim);
}

/// Whether a view lies within a text.
inline bool IsWithin(std::string_view part, std::string_view text) {
    return part.empty() ||
           (part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size());
}

/// Whether a text asks for no more ports in one range, and no more cells, than it has characters (a
/// few hundred are fine). Counts up to the ceilings are lawful, and so slow to obey that a fuzzer
/// would do little else; the benchmarks read those.
inline bool IsCheap(std::string_view text) {
    const auto most = std::max<std::int64_t>(512, static_cast<std::int64_t>(text.size()));
    for (std::size_t end = 0;;) {
        const std::size_t begin = text.find_first_of("0123456789", end);
        if (begin == std::string_view::npos) return true;
        end = std::min(text.find_first_not_of("0123456789", begin), text.size());
        const std::int64_t value = std::abs(std::int64_t{detail::DecimalValue(text.substr(begin))});
        const std::string_view before = detail::TrimRight(text.substr(0, begin));
        const std::string_view behind = detail::TrimLeft(text.substr(end));
        const bool counts = before.ends_with("to") || before.ends_with("is") ||
                            behind.starts_with("to") || behind.starts_with("downto");
        if (counts && value > most && value <= 1 << 21) return false;
    }
}

/// Takes decisions off an input from its front; at its end all are 0.
class Decisions {
public:
    Decisions(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool IsEmpty() const { return rest_.empty(); }
    std::string_view Rest() const { return rest_; }

    unsigned Byte() {
        if (rest_.empty()) return 0;
        const auto byte = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }
    unsigned Below(std::size_t limit) { return Byte() % static_cast<unsigned>(limit); }
    bool Coin() { return (Byte() & 1) != 0; }
    std::string Text(std::size_t longest) {
        const std::size_t length = std::min<std::size_t>(Below(longest + 1), rest_.size());
        std::string text(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return text;
    }

private:
    std::string_view rest_;
};

}  // namespace bscan::fuzz
