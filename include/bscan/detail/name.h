/// @file
/// What ports and cells keep their names in. Nothing in it is for hosts.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace bscan::detail {

// A text that ends with a zero byte, or none. Up to 15 characters, which is most names of ports and
// pins, are kept in place.
class Name {
public:
    Name() = default;
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;
    ~Name() { Release(); }

    bool IsSet() const { return Tag() != kNone; }

    // The text, which may be written up to its length; null without one.
    char* Text() const {
        if (Tag() == kOutside) return Outside();
        return IsSet() ? const_cast<char*>(bytes_) : nullptr;  // NOLINT: see above
    }

    // The text without its end; empty without one.
    std::string_view View() const {
        if (Tag() == kOutside) return Outside();
        return {bytes_, IsSet() ? LengthInPlace() : 0};
    }

    // Throws when memory is exhausted, and is unchanged then.
    void Assign(std::string_view text) {
        char* const outside = text.size() > kInPlace ? new char[text.size() + 1] : nullptr;
        if (outside != nullptr) {
            std::memcpy(outside, text.data(), text.size());
            outside[text.size()] = '\0';
            Release();
            std::memcpy(bytes_, &outside, sizeof outside);
            bytes_[kInPlace] = kOutside;
            return;
        }
        // The text may be a part of this one, so it is read first.
        const Words words = InPlace(text);
        Release();
        SetWords(words);
    }

    void Swap(Name& other) noexcept {
        const Words words = GetWords();
        SetWords(other.GetWords());
        other.SetWords(words);
    }

private:
    static constexpr std::size_t kInPlace = 15;
    // The last byte: 0 behind a text in place.
    static constexpr char kOutside = 1;
    static constexpr char kNone = 2;

    // All bytes, as the processor moves them.
    struct Words {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
    };

    Words GetWords() const {
        return {Load<std::uint64_t>(bytes_), Load<std::uint64_t>(bytes_ + 8)};
    }
    void SetWords(Words words) {
        std::memcpy(bytes_, &words.low, sizeof words.low);
        std::memcpy(bytes_ + 8, &words.high, sizeof words.high);
    }

    template <class Piece>
    static std::uint64_t Load(const char* text) {
        Piece piece = 0;
        std::memcpy(&piece, text, sizeof piece);
        return piece;
    }

    // A text to keep in place. It is read in two pieces of a fixed size; where they overlap, both
    // hold the same bits.
    static Words InPlace(std::string_view text) {
        const std::size_t size = text.size();
        if (size > 8) {
            const char* const last = text.data() + size - 8;
            return {Load<std::uint64_t>(text.data()), Load<std::uint64_t>(last) >> (16 - size) * 8};
        }
        if (size >= 4) return {Ends<std::uint32_t>(text), 0};
        if (size >= 2) return {Ends<std::uint16_t>(text), 0};
        return {size == 0 ? 0 : Load<std::uint8_t>(text.data()), 0};
    }

    template <class Piece>
    static std::uint64_t Ends(std::string_view text) {
        const std::size_t last = text.size() - sizeof(Piece);
        return Load<Piece>(text.data()) | Load<Piece>(text.data() + last) << last * 8;
    }

    // Up to the first zero byte, which is the last one at the latest.
    std::size_t LengthInPlace() const {
        constexpr std::uint64_t kLowBits = 0x0101010101010101U;
        constexpr std::uint64_t kHighBits = kLowBits << 7;
        for (std::size_t at = 0;; at += sizeof(std::uint64_t)) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes_ + at, sizeof word);
            // The lowest bit that is set belongs to the first zero byte.
            const std::uint64_t zeros = (word - kLowBits) & ~word & kHighBits;
            if (zeros != 0) return at + static_cast<std::size_t>(std::countr_zero(zeros)) / 8;
        }
    }

    char Tag() const { return bytes_[kInPlace]; }

    char* Outside() const {
        char* text = nullptr;
        std::memcpy(&text, bytes_, sizeof text);
        return text;
    }

    void Release() {
        if (Tag() == kOutside) delete[] Outside();
    }

    alignas(char*) char bytes_[kInPlace + 1] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, kNone};
};

}  // namespace bscan::detail
