/// @file
/// The pins of one device package, in the order that numbers them.
#pragma once

#include <bscan/export.h>
#include <bscan/object.h>

#include <cstddef>
#include <string>
#include <vector>

namespace bscan::detail {
class MainPass;
class ModelFiller;
class PackagePass;
}

/// A package's name and the ordered list of its pin designators, such as A1 or AB12.
///
/// Indexes count from 0; the package pin number that the rest of the library uses is the index
/// plus 1. Texts handed in are copied; a null text changes nothing. Nothing changes either when
/// memory is exhausted; copying a map may throw std::bad_alloc.
class BSCAN_EXPORT PackagePinMap : public LObject {
public:
    /// Makes a map without pins and with an empty name.
    PackagePinMap();
    PackagePinMap(const PackagePinMap&) = default;
    PackagePinMap& operator=(const PackagePinMap&) = default;
    ~PackagePinMap() override;

    /// Sets the package's name. The reader stores it in lower case.
    void SetPackageName(const char* name);
    /// @return the name, empty when never set; valid until it is set again.
    const char* GetPackageName() const;

    /// Appends a designator. The same one may be added twice.
    void AddPin(const char* pin);
    /// Replaces the designator at @p index; an index outside the list changes nothing.
    void SetPin(int index, const char* pin);
    /// @return the designator at @p index, valid until it is replaced or a pin is added; null when
    ///         the index is outside the list.
    const char* GetPin(int index) const;
    /// @return the index of the first designator equal to @p pin, letter case included; -1 when
    ///         none is, or @p pin is null. The search walks the list.
    int GetPinNumber(const char* pin) const;
    /// @return the number of designators.
    int GetNumberOfPins() const;

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;
    friend class bscan::detail::PackagePass;

    std::vector<std::string> pins_;
    std::vector<std::size_t> order_;  // the pins in the order of the pin map that named them
    std::string name_;
};
