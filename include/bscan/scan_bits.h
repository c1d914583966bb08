/// @file
/// The bits of one scan.
#pragma once

#include <bscan/export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bscan {

/// A row of bits in the order in which they are shifted: bit 0 goes into TDI first, and of what is
/// captured, bit 0 comes out of TDO first.
///
/// As hexadecimal text, as SVF and OpenOCD write a scan, bit 0 is the lowest bit of the last digit.
/// A position outside the row reads as 0, and setting it changes nothing. Making a row, copying it
/// and making a text may throw std::bad_alloc, as any value does.
class BSCAN_EXPORT ScanBits {
public:
    ScanBits() = default;
    /// Makes a row of @p size bits of one value; empty for a negative size.
    explicit ScanBits(int size, bool value = false);

    /// Reads hexadecimal text of any length, letter case ignored, as the row of @p size bits.
    /// @return nothing for another character and for a 1 beyond @p size.
    static std::optional<ScanBits> FromHex(std::string_view text, int size);
    /// Reads text of 0 and 1, bit 0 first. @return nothing for another character.
    static std::optional<ScanBits> FromText(std::string_view text);

    int Size() const { return size_; }
    bool Empty() const { return size_ == 0; }
    bool Get(int position) const;
    void Set(int position, bool value);
    /// Appends a row behind this one: its bits are shifted later.
    void Append(const ScanBits& bits);
    /// @return @p count bits from @p first; as many of them as there are.
    ScanBits Slice(int first, int count) const;

    /// @return (Size() + 3) / 4 upper-case digits.
    std::string Hex() const;
    /// @return a character 0 or 1 for each bit, bit 0 first.
    std::string Text() const;

    /// @return bit n as the bit 1 << (n % 8) of byte n / 8; bits beyond the size are 0.
    const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

    friend bool operator==(const ScanBits& a, const ScanBits& b) {
        return a.size_ == b.size_ && a.bytes_ == b.bytes_;
    }
    friend bool operator!=(const ScanBits& a, const ScanBits& b) { return !(a == b); }

private:
    int size_ = 0;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace bscan
