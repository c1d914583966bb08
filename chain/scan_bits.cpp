#include <bscan/scan_bits.h>

#include <algorithm>

namespace bscan {
namespace {

std::optional<unsigned> DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
    if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + 10);
    if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
    return std::nullopt;
}

std::size_t BytesFor(int size) { return (static_cast<std::size_t>(size) + 7) / 8; }

}  // namespace

ScanBits::ScanBits(int size, bool value)
    : size_(std::max(size, 0)), bytes_(BytesFor(size_), value ? 0xFF : 0) {
    if (value && size_ % 8 != 0) {
        bytes_.back() = static_cast<std::uint8_t>((1U << (static_cast<unsigned>(size_) % 8U)) - 1);
    }
}

std::optional<ScanBits> ScanBits::FromHex(std::string_view text, int size) {
    ScanBits bits(size);
    std::size_t position = 0;
    for (std::size_t i = text.size(); i-- > 0;) {
        const std::optional<unsigned> value = DigitValue(text[i]);
        if (!value) return std::nullopt;
        for (unsigned bit = 0; bit < 4; ++bit, ++position) {
            if ((*value >> bit & 1U) == 0) continue;
            if (position >= static_cast<std::size_t>(bits.size_)) return std::nullopt;
            bits.Set(static_cast<int>(position), true);
        }
    }
    return bits;
}

std::optional<ScanBits> ScanBits::FromText(std::string_view text) {
    ScanBits bits(static_cast<int>(text.size()));
    for (int i = 0; i < bits.size_; ++i) {
        const char character = text[static_cast<std::size_t>(i)];
        if (character != '0' && character != '1') return std::nullopt;
        if (character == '1') bits.Set(i, true);
    }
    return bits;
}

bool ScanBits::Get(int position) const {
    if (position < 0 || position >= size_) return false;
    const auto index = static_cast<unsigned>(position);
    return (bytes_[index / 8] >> (index % 8) & 1U) != 0;
}

void ScanBits::Set(int position, bool value) {
    if (position < 0 || position >= size_) return;
    const auto index = static_cast<unsigned>(position);
    const auto bit = static_cast<std::uint8_t>(1U << (index % 8));
    std::uint8_t& byte = bytes_[index / 8];
    byte = static_cast<std::uint8_t>(value ? byte | bit : byte & ~bit);
}

void ScanBits::Append(const ScanBits& bits) {
    const int added = bits.size_;  // a row may be appended to itself
    const int first = size_;
    bytes_.resize(BytesFor(size_ + added));
    size_ += added;
    for (int i = 0; i < added; ++i) Set(first + i, bits.Get(i));
}

ScanBits ScanBits::Slice(int first, int count) const {
    const int begin = std::clamp(first, 0, size_);
    ScanBits slice(std::min(count, size_ - begin));
    for (int i = 0; i < slice.size_; ++i) slice.Set(i, Get(begin + i));
    return slice;
}

std::string ScanBits::Hex() const {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text((static_cast<std::size_t>(size_) + 3) / 4, '0');
    for (std::size_t digit = 0; digit < text.size(); ++digit) {
        const unsigned value = bytes_[digit / 2] >> (digit % 2 * 4) & 0xFU;
        text[text.size() - 1 - digit] = kDigits[value];
    }
    return text;
}

std::string ScanBits::Text() const {
    std::string text(static_cast<std::size_t>(size_), '0');
    for (int i = 0; i < size_; ++i) {
        if (Get(i)) text[static_cast<std::size_t>(i)] = '1';
    }
    return text;
}

}  // namespace bscan
