// What a pin is for, as a drawing shows it.
#pragma once

#include "drawing/declared_elements.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace bscan::drawing {

/// How pins of one purpose look.
struct PinKind {
    std::string_view css_class;
    std::string_view mark;  ///< short text on the pin, so that print without colours tells enough
    std::string_view legend;
    std::string_view css;  ///< style of the pin's outline and filling
};

/// One kind for each PortMode, in its order, then that of the TAP's ports and that of the ports
/// that hold the compliance pattern.
inline constexpr int kTapKind = static_cast<int>(PortMode::kReferenceOut) + 1;
inline constexpr int kComplianceKind = kTapKind + 1;
inline constexpr int kKindCount = kComplianceKind + 1;

const PinKind& KindAt(int kind);

/// Tells what the ports of one file are for.
class PinKinds {
public:
    /// @param facts  must live as long.
    explicit PinKinds(const Facts& facts);

    /// @return the number of the element's kind.
    int Of(const DeclaredElement& element) const;
    /// @return the mark on its pin: the TAP port's role, the level that compliance asks for, or
    ///         that of its mode.
    std::string Mark(const DeclaredElement& element) const;
    /// @return the levels that compliance asks for, such as "1", or "01" when the patterns differ;
    ///         empty when it asks for none.
    const std::string& ComplianceLevels(const DeclaredElement& element) const;

private:
    std::string_view TapRole(const DeclaredElement& element) const;

    const Facts& facts_;
    // Levels by the port as the file names it, in upper case.
    std::unordered_map<std::string, std::string> compliance_;
};

}  // namespace bscan::drawing
