// The state machine of a test access port: 16 states, each left by TMS 0 or 1.
#pragma once

namespace tool {

enum class TapState {
    kTestLogicReset,
    kRunTestIdle,
    kSelectDr,
    kCaptureDr,
    kShiftDr,
    kExit1Dr,
    kPauseDr,
    kExit2Dr,
    kUpdateDr,
    kSelectIr,
    kCaptureIr,
    kShiftIr,
    kExit1Ir,
    kPauseIr,
    kExit2Ir,
    kUpdateIr,
};

/// The state behind @p state at a rising edge of TCK.
TapState Next(TapState state, bool tms);

}  // namespace tool
