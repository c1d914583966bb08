#include "tap.h"

#include <array>
#include <cstddef>

namespace tool {

TapState Next(TapState state, bool tms) {
    using enum TapState;
    struct Row {
        TapState on_0;
        TapState on_1;
    };
    static constexpr std::array<Row, 16> kNext = {{
        {kRunTestIdle, kTestLogicReset},  // Test-Logic-Reset
        {kRunTestIdle, kSelectDr},        // Run-Test/Idle
        {kCaptureDr, kSelectIr},          // Select-DR-Scan
        {kShiftDr, kExit1Dr},             // Capture-DR
        {kShiftDr, kExit1Dr},             // Shift-DR
        {kPauseDr, kUpdateDr},            // Exit1-DR
        {kPauseDr, kExit2Dr},             // Pause-DR
        {kShiftDr, kUpdateDr},            // Exit2-DR
        {kRunTestIdle, kSelectDr},        // Update-DR
        {kCaptureIr, kTestLogicReset},    // Select-IR-Scan
        {kShiftIr, kExit1Ir},             // Capture-IR
        {kShiftIr, kExit1Ir},             // Shift-IR
        {kPauseIr, kUpdateIr},            // Exit1-IR
        {kPauseIr, kExit2Ir},             // Pause-IR
        {kShiftIr, kUpdateIr},            // Exit2-IR
        {kRunTestIdle, kSelectDr},        // Update-IR
    }};
    const Row& row = kNext[static_cast<std::size_t>(state)];
    return tms ? row.on_1 : row.on_0;
}

}  // namespace tool
