/// @file
/// How people name the pins of a device, and the levels that they ask for.
#pragma once

#include <bscan/export.h>
#include <bscan/facts.h>
#include <bscan/pin_driver.h>
#include <bscan/signal.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bscan {

/// The names of the port elements of one device.
///
/// An element is named by its position, as in PinDriver. The names are copied, so that the device
/// and the facts need not live as long. Lookups change nothing. Nothing throws but what allocates.
class BSCAN_EXPORT PinNames {
public:
    PinNames() = default;

    /// Learns the names of a device.
    ///
    /// @param pins  the device's pins.
    /// @param facts  what its file says, for declared names and indexes; null when that is not
    ///        known: indexes then count from 0 at the lowest of a vector.
    PinNames(const PinDriver& pins, const Facts* facts);

    /// Finds the elements that a text names, by the first of these ways that finds any:
    ///
    /// 1. the package pin of that designator, letter case included: B3;
    /// 2. the port of that name, letter case ignored: TDI; D for all of a vector, D(3) or D[3] for
    ///    one element by its declared index, D(3..0) for several; with '*' for any characters, all
    ///    ports whose names fit: IO*;
    /// 3. the package pin of that number.
    ///
    /// A prefix "pin:", "port:" or "number:" asks for one of them alone.
    ///
    /// @return their positions, in the order of declaration; those of a range in its order. Empty
    ///         when nothing has that name, or the range is not all within the declared one.
    std::vector<int> Find(std::string_view text) const;

    /// @return the element's name as Find() takes it, such as TDI or D(3); empty for no element.
    std::string Label(int element) const;
    /// @return the name of its port; empty for no element.
    std::string_view PortOf(int element) const;
    /// @return its index in a vector; none for a single bit.
    std::optional<int> IndexOf(int element) const;

private:
    struct Named {
        std::string port;
        std::string pin;
        int index = 0;
        int number = -1;
        bool is_vector = false;
    };
    using Places = std::vector<int>;

    BSCAN_LOCAL Places ByPort(std::string_view text) const;
    BSCAN_LOCAL Places ByPin(std::string_view text) const;
    BSCAN_LOCAL Places ByNumber(std::string_view text) const;
    BSCAN_LOCAL Places OfPort(std::string_view name) const;
    BSCAN_LOCAL Places OfIndex(const std::string& upper, int index) const;
    BSCAN_LOCAL const Named* At(int element) const;

    std::vector<Named> elements_;
    std::unordered_map<std::string, Places> by_port_;  // in upper case
    std::unordered_map<std::string, Places> by_pin_;
    std::unordered_map<int, Places> by_number_;
};

/// The levels that a text asks of the elements of a name: one for all of them, or the bits of a
/// number, the most significant one for the first element. That is the left end of a vector as
/// declared, or of the range that was asked for.
class BSCAN_EXPORT PinLevels {
public:
    /// Reads 0, 1, Z (in either case), or a number such as 0x5A or 0b1010.
    /// @return nothing for any other text.
    static std::optional<PinLevels> Parse(std::string_view text);

    bool IsNumber() const { return is_number_; }
    /// @return whether the number has no 1 beyond so many bits; true for a level.
    bool Fits(std::size_t count) const { return !is_number_ || bits_.size() <= count; }
    /// @return the level of one of @p count elements, from 0.
    eSignal Of(std::size_t place, std::size_t count) const;

private:
    bool is_number_ = false;
    eSignal level_ = SIG_X;
    std::string bits_;  // 0 and 1, the first of them a 1
};

/// @return whether a name may stand for several ports, so that no number can be meant for it.
BSCAN_EXPORT bool IsPinPattern(std::string_view name);

}  // namespace bscan
