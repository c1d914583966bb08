/// @file
/// A differential pin pair of the PORT_GROUPING attribute.
#pragma once

#include <bscan/export.h>

#include <string>

namespace bscan::detail {
class MainPass;
class ModelFiller;
}

/// The two ports of a differential pair and, once known, their cells.
///
/// Names are copied; a null name changes nothing. A getter's text is valid until the name is set
/// again or the pair is destroyed. Copying a pair may throw std::bad_alloc.
class BSCAN_EXPORT CDifferentialPair {
public:
    /// Makes a pair with empty names and both positions -1.
    CDifferentialPair();
    CDifferentialPair(const CDifferentialPair&) = default;
    CDifferentialPair& operator=(const CDifferentialPair&) = default;
    virtual ~CDifferentialPair();

    void SetPositiveElement(const char* name);
    /// @return the port name of the positive leg, in upper case when a file was read.
    const char* GetPositiveElement() const;

    void SetNegativeElement(const char* name);
    /// @return the port name of the negative leg, in upper case when a file was read.
    const char* GetNegativeElement() const;

    void SetPositiveBScanPosition(int position);
    /// @return the boundary register position of the positive leg's cell; -1 while not known.
    int GetPositiveBScanPosition() const;

    void SetNegativeBScanPosition(int position);
    /// @return the boundary register position of the negative leg's cell; -1 while not known.
    int GetNegativeBScanPosition() const;

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;

    std::string positive_element_;
    std::string negative_element_;
    int positive_position_ = -1;
    int negative_position_ = -1;
};
