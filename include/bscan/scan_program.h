/// @file
/// Steps in words, such as "drive U1.D0=1", and the scans that do them.
///
/// A text of steps becomes a list of Step by ParseSteps(), that becomes a ScanProgram by
/// PlanSteps(), and whoever has a chain at hand plays its operations one after the other:
/// WriteSvf() for a player of SVF, a program over a live link, a simulation.
#pragma once

#include <bscan/chain.h>
#include <bscan/export.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bscan {

/// What a step does.
enum class StepKind {
    kDrive,   ///< drives or releases pins; other pins keep what they do
    kExpect,  ///< compares pins under EXTEST, after the drives so far
    kSample,  ///< compares pins without disturbing them
    kWait,    ///< waits in Run-Test/Idle
    kReset,   ///< resets the test logic, which gives all pins back to the device
    kNote,    ///< tells something to people
};

enum class WaitUnit { kTck, kMicroseconds, kMilliseconds };

/// A time for which the chain stays in Run-Test/Idle.
struct Wait {
    int count = 0;
    WaitUnit unit = WaitUnit::kTck;
};

/// A pin and its level: 0 or 1, and SIG_Z to release it.
struct PinLevel {
    ChainPin pin;
    eSignal level = SIG_X;
};

struct Step {
    StepKind kind = StepKind::kNote;
    int line = 0;      ///< of the text of steps, from 1
    std::string text;  ///< as written, without its comment
    std::vector<PinLevel> pins;
    Wait wait;
};

/// Why a step cannot be done.
struct StepFault {
    int line = 0;         ///< from 1; 0 when no line is to blame
    std::string step;     ///< as written
    std::string message;  ///< a sentence
};

struct Steps {
    ChainResult result;  ///< kOk, or what is wrong with the first faulty step; kOutOfMemory
    std::vector<Step> steps;
    std::vector<StepFault> faults;
};

/// Reads steps, one a line; '#' at the beginning or behind a blank starts a comment.
///
///     drive PIN=LEVEL ...    0, 1, a number, or Z to release
///     expect PIN=LEVEL ...   0, 1 or a number
///     sample PIN=LEVEL ...   0, 1 or a number
///     wait N tck|us|ms
///     reset
///     note TEXT
///
/// PIN is as Chain::FindPins() takes it, LEVEL as PinLevels::Parse(): a number such as 0x5A has a
/// bit for each element of a vector, the most significant one for its left end.
BSCAN_EXPORT Steps ParseSteps(const Chain& chain, std::string_view text);

/// What a player has to do next.
enum class OperationKind {
    kComment,          ///< nothing; text says what the next operations are for
    kReset,            ///< to Test-Logic-Reset, and from there to Run-Test/Idle
    kInstructionScan,  ///< shift `out` through the instruction registers, back to Run-Test/Idle
    kDataScan,         ///< shift `out` through the selected registers, back to Run-Test/Idle
    kWait,             ///< stay in Run-Test/Idle
};

/// A pin that a scan looks at.
struct PinCheck {
    ChainPin pin;
    int bit = -1;  ///< of the scan
    eSignal wanted = SIG_X;
    bool of_control = false;  ///< the bit tells whether the pin's driver is on, not its level
};

struct ScanOperation {
    OperationKind kind = OperationKind::kComment;
    int step = -1;     ///< which step it belongs to, from 0; -1 for none
    std::string text;  ///< of a comment
    Wait wait;
    ScanBits out;                              ///< into TDI
    ScanBits wanted;                           ///< out of TDO; empty when nothing is compared
    ScanBits mask;                             ///< 1 where a bit is compared; as long as `wanted`
    std::shared_ptr<const ScanFields> fields;  ///< what the bits belong to
    std::vector<PinCheck> checks;              ///< the compared bits that belong to pins
};

/// A compared bit that came back otherwise.
struct FailedCheck {
    int device = -1;
    ChainPin pin;  ///< no pin when an IDCODE differs
    eSignal wanted = SIG_X;
    eSignal seen = SIG_X;  ///< SIG_Z for a pin whose driver is off
};

/// Compares what came back from an operation.
///
/// @return each pin that shows something else, or each device whose IDCODE differs, once.
BSCAN_EXPORT std::vector<FailedCheck> Compare(const ScanOperation& operation,
                                              const ScanBits& captured);

struct ProgramOptions {
    bool check_idcodes = true;  ///< compare IDCODEs first, without their version and bits of x
    /// For each device, what a capture under SAMPLE has for its cells (PinDriver::Preset); devices
    /// beyond its end, and those whose list is empty, start from their preset.
    std::vector<std::vector<eSignal>> sample;
};

struct ScanProgram {
    ChainResult result;  ///< as of Steps; operations may not be played unless it is kOk
    std::vector<ScanOperation> operations;
    std::vector<StepFault> faults;
    std::vector<std::string> notes;  ///< sentences that people should know before they play it
};

/// Works out the scans for steps: reset; IDCODEs; the first vector preloaded, so that no pin
/// glitches when EXTEST comes; then each step; and reset.
///
/// Every device that has EXTEST takes part, so that none drives against another: its drivers that
/// nobody asked for are off (PinDriver::Preset). Once pins are driven, "sample" looks at them under
/// EXTEST, since SAMPLE would let go of them.
///
/// @param chain  its drivers and its selection change on the way.
/// @param steps  of that chain, as ParseSteps() gives them.
/// @param options  what to do beside them.
BSCAN_EXPORT ScanProgram PlanSteps(Chain& chain, const std::vector<Step>& steps,
                                   const ProgramOptions& options = {});

struct SvfOptions {
    double frequency = 0;  ///< of TCK in hertz; 0 for 1 MHz. Never more than the devices allow.
};

/// Writes a program in the Serial Vector Format: each command begins a line, long hexadecimal
/// texts go on in the next, and every step's text stands before its commands as a comment.
///
/// @return an empty text when the program's result is not kOk, or memory is exhausted.
BSCAN_EXPORT std::string WriteSvf(const Chain& chain, const ScanProgram& program,
                                  const SvfOptions& options = {});

}  // namespace bscan
