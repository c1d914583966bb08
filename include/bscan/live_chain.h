/// @file
/// A scan chain on hardware that a running OpenOCD reaches.
#pragma once

#include <bscan/chain.h>
#include <bscan/export.h>
#include <bscan/openocd.h>
#include <bscan/scan_program.h>

#include <functional>
#include <string>
#include <vector>

namespace bscan {

/// What a pin does, as a capture tells.
struct PinState {
    ChainPin pin;
    PortType direction = PORT_NONE;  ///< PORT_OUT while its driver is on; PORT_NONE: cannot be told
    eSignal level = SIG_X;           ///< SIG_0 or SIG_1; SIG_X when no cell tells
};

/// Plays the scans of a chain through OpenOCD.
///
/// OpenOCD shifts the registers of one TAP at a time, and a chain that drives pins of several
/// devices needs all at once. So the configuration that "bscan openocd" writes declares the whole
/// chain as one more TAP, kWholeChainTap, which is used here in place of the single ones. A chain
/// of one device needs none.
///
/// Call Attach() first. An object that drives gives the pins back when it is destroyed, as does
/// every operation that fails. The link and the chain must live as long.
class BSCAN_EXPORT LiveChain {
public:
    static constexpr const char* kWholeChainTap = "bscan.chain";
    /// OpenOCD takes no longer instruction scan.
    static constexpr int kMaxInstructionBits = 64;

    LiveChain(OpenOcd& link, Chain& chain);
    LiveChain(const LiveChain&) = delete;
    LiveChain& operator=(const LiveChain&) = delete;
    ~LiveChain();

    /// Takes the chain over from OpenOCD's own TAPs, and compares the IDCODEs of its devices,
    /// without their version.
    ///
    /// @param check_idcodes  false to leave that to somebody else.
    ChainResult Attach(bool check_idcodes = true);

    /// Lets OpenOCD look at its own TAPs, before Attach(): their IDCODEs, and the length of the
    /// instruction registers and what they capture, as its configuration tells. Every device has
    /// IDCODE or BYPASS meanwhile, so that nothing is driven even where the chain is another. Where
    /// a device's file leaves open what it has after a reset, nothing is looked at.
    ChainResult CheckTaps();

    /// Takes a capture under SAMPLE, which disturbs no pin; while pins are driven, under EXTEST.
    ///
    /// @param captured  receives it; its bits are those of Chain::DataBits() at that time.
    ChainResult Capture(ScanBits& captured);

    /// Takes a capture and tells what each pin does.
    ChainResult Read(const std::vector<ChainPin>& pins, std::vector<PinState>& states);

    /// Drives and releases pins; others keep what they do. The first call preloads the boundary
    /// registers, in which drivers that nobody asked for are off, and enters EXTEST.
    ChainResult Drive(const std::vector<PinLevel>& levels);

    /// What a comparison of a program found.
    using OnFailure = std::function<void(const ScanOperation& operation, const FailedCheck& check)>;
    /// Called before an operation is played. @return false to end the program there.
    using OnOperation = std::function<bool(const ScanOperation& operation)>;

    /// Plays a program to its end, whatever its comparisons find, unless @p before says no.
    ChainResult Play(const ScanProgram& program, const OnOperation& before,
                     const OnFailure& failed);

    /// Takes what came back from a data scan. @return false to end the program there.
    using OnCapture = std::function<bool(const ScanOperation& operation, const ScanBits& captured)>;

    /// Plays a program and hands out what each data scan with fields brings back; those without,
    /// which read what a reset selects, are left out, as OpenOCD does not allow them. Nothing is
    /// compared, not even by OpenOCD, so that what a broken chain gives can be looked at. The pins
    /// are given back at the end, whatever it is.
    ChainResult PlayAndCapture(const ScanProgram& program, const OnCapture& captured);

    /// Brings the chain into reset, where every pin is the device's own again.
    ChainResult Release();

    /// Releases, and gives the chain back to OpenOCD's own TAPs.
    ChainResult Detach();

private:
    BSCAN_LOCAL ChainResult Command(const std::string& tcl, std::string& answer);
    BSCAN_LOCAL ChainResult ChooseTap();
    BSCAN_LOCAL ChainResult CheckIdcodes();
    BSCAN_LOCAL ChainResult Reset();
    BSCAN_LOCAL ChainResult ScanInstruction(const ScanBits& out);
    BSCAN_LOCAL ChainResult ScanData(const ScanBits& out, ScanBits* captured);
    BSCAN_LOCAL ChainResult SelectAndScan(const char* instruction, const char* instead);
    BSCAN_LOCAL ChainResult Enter(bool extest);
    BSCAN_LOCAL ChainResult PlayOne(const ScanOperation& operation, const OnFailure& failed);
    BSCAN_LOCAL ChainResult PlayOperations(const ScanProgram& program, const OnCapture& captured);
    BSCAN_LOCAL ChainResult PlayWait(const Wait& wait);

    OpenOcd& link_;
    Chain& chain_;
    std::string tap_;        // through which everything is shifted; empty while not attached
    std::string take_over_;  // the commands that put it in the place of OpenOCD's own
    bool driving_ = false;
};

/// Tells what a pin does in what came back from a scan of the chain's present selection.
BSCAN_EXPORT PinState StateOf(const Chain& chain, ChainPin pin, const ScanBits& captured);

}  // namespace bscan
