// Searching a text for single characters, many places at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>
#include <string_view>

namespace bscan::detail {

// Sixteen characters that are compared in one step; every x86-64 processor can.
class Block {
public:
    static constexpr std::size_t kSize = sizeof(__m128i);

    // Some of the sixteen.
    class Matches {
    public:
        std::uint32_t Places() const {
            return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes_));
        }
        friend Matches operator&(Matches left, Matches right) {
            return Matches(_mm_and_si128(left.bytes_, right.bytes_));
        }
        friend Matches operator|(Matches left, Matches right) {
            return Matches(_mm_or_si128(left.bytes_, right.bytes_));
        }

    private:
        friend class Block;
        explicit Matches(__m128i bytes) : bytes_(bytes) {}

        __m128i bytes_;
    };

    // All of them must be readable.
    explicit Block(const char* text) { std::memcpy(&characters_, text, kSize); }

    // The first eight characters of a text of that many at least, and its last eight.
    static Block Ends(std::string_view text) {
        const char* const last = text.data() + text.size() - kSize / 2;
        return Block(_mm_unpacklo_epi64(LoadHalf(text.data()), LoadHalf(last)));
    }

    // Which characters are one of those sought.
    template <class... Characters>
    Matches Find(Characters... sought) const {
        return (Matches(_mm_cmpeq_epi8(characters_, _mm_set1_epi8(sought))) | ...);
    }

    // The same, one bit for each character.
    template <class... Characters>
    std::uint32_t Places(Characters... sought) const {
        return Find(sought...).Places();
    }

private:
    explicit Block(__m128i characters) : characters_(characters) {}
    static __m128i LoadHalf(const char* text) {
        std::int64_t half = 0;
        std::memcpy(&half, text, sizeof half);
        return _mm_cvtsi64_si128(half);
    }

    __m128i characters_;
};

// The position of the first of some characters; npos without one.
template <class... Characters>
std::size_t Find(std::string_view text, Characters... sought) {
    constexpr std::size_t kNone = std::string_view::npos;
    const std::size_t size = text.size();
    if (size >= Block::kSize) {
        for (std::size_t at = 0; at < size; at += Block::kSize) {
            // The last block overlaps the one before, in which nothing was found.
            const std::size_t begin = at < size - Block::kSize ? at : size - Block::kSize;
            const std::uint32_t places = Block(text.data() + begin).Places(sought...);
            if (places != 0) return begin + static_cast<std::size_t>(std::countr_zero(places));
        }
        return kNone;
    }
    if (constexpr std::size_t kHalf = Block::kSize / 2; size >= kHalf) {
        const std::uint32_t places = Block::Ends(text).Places(sought...);
        if (places == 0) return kNone;
        const auto at = static_cast<std::size_t>(std::countr_zero(places));
        return at < kHalf ? at : at - 2 * kHalf + size;
    }
    for (std::size_t at = 0; at < size; ++at) {
        if (((text[at] == sought) || ...)) return at;
    }
    return kNone;
}

// How many characters a window shows.
inline constexpr std::size_t kWindow = 64;

// Looks at the part of a text that begins at a position: one bit for each of its first 64
// characters that is one of those sought.
template <class... Characters>
std::uint64_t PlacesInWindow(std::string_view text, std::size_t position, Characters... sought) {
    if (position >= text.size()) return 0;
    const char* const window = text.data() + position;
    const std::size_t left = text.size() - position;
    const auto look = [&](std::size_t at) {
        return std::uint64_t{Block(window + at).Places(sought...)} << at;
    };
    std::uint64_t places = 0;
    if (left >= kWindow) {
        for (std::size_t at = 0; at < kWindow; at += Block::kSize) places |= look(at);
    } else if (left >= Block::kSize) {
        // The last block overlaps the one before.
        const std::size_t last = left - Block::kSize;
        for (std::size_t at = 0; at < last; at += Block::kSize) places |= look(at);
        places |= look(last);
    } else if (text.size() >= Block::kSize) {
        // The last block begins in front of the window.
        const std::size_t before = Block::kSize - left;
        places = std::uint64_t{Block(window - before).Places(sought...)} >> before;
    } else {
        for (std::size_t at = 0; at < left; ++at) {
            places |= std::uint64_t{((window[at] == sought) || ...)} << at;
        }
    }
    return places;
}

// Walks over the places of some characters in a text, in their order.
template <char... kSought>
class Marks {
public:
    static constexpr std::size_t kNone = std::string_view::npos;

    explicit Marks(std::string_view text) : text_(text) { LookFrom(0); }

    // The next place; kNone when there is none.
    std::size_t Next() {
        while (places_ == 0) {
            if (window_ >= text_.size() || text_.size() - window_ <= kWindow) return kNone;
            LookFrom(window_ + kWindow);
        }
        const std::size_t place = window_ + static_cast<std::size_t>(std::countr_zero(places_));
        places_ &= places_ - 1;
        return place;
    }

    // Continues from a position, which must not lie before the last place given.
    void SkipTo(std::size_t position) {
        if (position - window_ < kWindow) {
            places_ &= ~std::uint64_t{0} << (position - window_);
        } else {
            LookFrom(position);
        }
    }

private:
    void LookFrom(std::size_t position) {
        window_ = position;
        places_ = PlacesInWindow(text_, position, kSought...);
    }

    std::string_view text_;
    std::size_t window_ = 0;  // where the characters that were looked at begin
    std::uint64_t places_ = 0;
};

}  // namespace bscan::detail
