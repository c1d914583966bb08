#include "drawing/pin_kinds.h"

#include <algorithm>
#include <array>

namespace bscan::drawing {
namespace {

// Light fills keep black text readable; the marks and outlines tell the kinds apart in print.
constexpr std::array<PinKind, kKindCount> kKinds = {{
    {"unknown", "?", "of no known mode", "fill: #ffffff; stroke-dasharray: 1 3;"},
    {"in", "in", "in: receives", "fill: #bcdcf5;"},
    {"out", "out", "out: drives", "fill: #f8c58c; stroke-width: 2.5;"},
    {"inout", "i/o", "inout: does both",
     "fill: #c3e6b5; stroke-width: 2.5; stroke-dasharray: 7 2;"},
    {"buffer", "buf", "buffer: always drives", "fill: #e5c3ec; stroke-width: 4;"},
    {"linkage", "", "linkage: power, ground, analogue", "fill: #e4e4e4; stroke-dasharray: 2 2;"},
    {"linkage-in", "a.in", "linkage_in: receives, not tested",
     "fill: #dcebf7; stroke-dasharray: 2 2;"},
    {"linkage-out", "a.out", "linkage_out: drives, not tested",
     "fill: #fae3c8; stroke-dasharray: 2 2;"},
    {"linkage-inout", "a.i/o", "linkage_inout: does both, not tested",
     "fill: #e0f0d9; stroke-dasharray: 2 2;"},
    {"linkage-buffer", "a.buf", "linkage_buffer: always drives, not tested",
     "fill: #f1e2f5; stroke-dasharray: 2 2;"},
    {"linkage-mechanical", "mech", "linkage_mechanical: carries no signal",
     "fill: #ffffff; stroke-dasharray: 2 2;"},
    {"power-positive", "+", "power_pos: positive supply", "fill: #f2aeae; stroke-width: 1.5;"},
    {"power-ground", "gnd", "power_0: ground", "fill: #b5b5b5; stroke-width: 1.5;"},
    {"power-negative", "\xE2\x88\x92", "power_neg: negative supply",
     "fill: #c3b9ea; stroke-width: 1.5;"},
    {"reference-in", "v.in", "vref_in: reference voltage, received",
     "fill: #b4e3de; stroke-width: 1.5;"},
    {"reference-out", "v.out", "vref_out: reference voltage, given",
     "fill: #d9c9a3; stroke-width: 1.5;"},
    {"tap", "tap", "test access port", "fill: #ffe14d; stroke: #7a5c00; stroke-width: 4;"},
    {"compliance", "=", "must hold a level for the test logic to work",
     "fill: #ffd9d9; stroke: #c00000; stroke-width: 4;"},
}};

std::string NameOf(const ElementName& name) {
    std::string text = UpperCased(name.port.text);
    if (name.index) text += "(" + std::to_string(*name.index) + ")";
    return text;
}

}  // namespace

const PinKind& KindAt(int kind) { return kKinds[static_cast<std::size_t>(kind)]; }

PinKinds::PinKinds(const Facts& facts) : facts_(facts) {
    const Compliance& compliance = facts.compliance;
    for (const bscan::Word& pattern : compliance.patterns) {
        const std::size_t count = std::min(pattern.text.size(), compliance.ports.size());
        for (std::size_t i = 0; i < count; ++i) {
            const char level = pattern.text[i];
            if (level != '0' && level != '1') continue;
            std::string& levels = compliance_[NameOf(compliance.ports[i])];
            if (levels.find(level) == std::string::npos) levels += level;
        }
    }
}

std::string_view PinKinds::TapRole(const DeclaredElement& element) const {
    const TapSignals& tap = facts_.tap;
    if (Means(tap.tdi, element)) return "TDI";
    if (Means(tap.tdo, element)) return "TDO";
    if (Means(tap.tms, element)) return "TMS";
    if (Means(tap.tck, element)) return "TCK";
    return Means(tap.trst, element) ? "TRST" : "";
}

const std::string& PinKinds::ComplianceLevels(const DeclaredElement& element) const {
    static const std::string kNone;
    if (compliance_.empty()) return kNone;
    auto found = compliance_.find(UpperCased(element.Label()));
    const bool single = !element.port->range || element.port->range->Count() == 1;
    if (found == compliance_.end() && single) {
        found = compliance_.find(UpperCased(element.port->name.text));
    }
    return found == compliance_.end() ? kNone : found->second;
}

int PinKinds::Of(const DeclaredElement& element) const {
    if (!TapRole(element).empty()) return kTapKind;
    if (!ComplianceLevels(element).empty()) return kComplianceKind;
    return static_cast<int>(element.port->mode);
}

std::string PinKinds::Mark(const DeclaredElement& element) const {
    const std::string_view role = TapRole(element);
    if (!role.empty()) return std::string(role);
    const std::string& levels = ComplianceLevels(element);
    if (levels.size() == 1) return "=" + levels;
    return std::string(KindAt(Of(element)).mark);
}

}  // namespace bscan::drawing
