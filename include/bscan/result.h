/// @file
/// The result codes of the library and their meaning.
#pragma once

#include <bscan/export.h>

namespace bscan {

/// What an operation with an `int` result returns: 0, or one of these negative codes. The words in
/// front of a code are those of Describe().
enum ResultCode : int {
    /// success
    kOk = 0,
    /// no file is open, a port grouping is malformed, or the device refuses a cell
    kFailed = -1,
    /// the default directory cannot be entered
    kBadDirectory = -2,
    /// the file ended, or could not be read, where a line was wanted
    kReadFailed = -3,
    /// the file was already at its end when a line was wanted
    kEndOfFile = -4,
    /// the line is not what an entity may hold here
    kUnexpectedLine = -5,
    /// no output buffer was passed for a string value
    kNoOutputBuffer = -6,
    /// the device pin map could not be created
    kNoPinMap = -7,
    /// a value is missing, malformed or beyond its limit
    kBadValue = -8,
    /// a boundary length stands before any generic or port clause
    kLengthWithoutPorts = -9,
    /// the file cannot be opened
    kCannotOpen = -10,
    /// no pin name was passed
    kNoPinName = -11,
    /// the selected package has no pin of that name
    kUnknownPin = -13,
    /// an instruction length has no instruction register to go to
    kLengthWithoutRegister = -14,
    /// an instruction capture has no instruction register to go to
    kCaptureWithoutRegister = -15,
    /// an INSTRUCTION_OPCODE entry is malformed
    kBadOpcode = -16,
    /// a REGISTER_ACCESS entry is malformed
    kBadRegisterAccess = -17,
    /// the text of a statement exceeds the limit
    kTextTooLong = -18,
    /// out of memory
    kOutOfMemory = -19,
    /// the file repeats a statement too often
    kRepeatedTooOften = -20,
    /// the text has no entity
    kNoEntity = -21,
    /// the parser has a model already
    kModelExists = -22,
    /// the file has no pin map of that name
    kNoSuchPackage = -23,
    /// no OpenOCD can be reached
    kCannotConnect = -24,
    /// there is no connection to OpenOCD, or it was lost
    kNoConnection = -25,
    /// OpenOCD refuses a command
    kCommandFailed = -26,
};

/// Tells in words what a result code means.
///
/// @param code  a result of any operation of the library.
/// @return a static text without a full stop, never null; "unknown result" for a code that the
///         library does not use.
BSCAN_EXPORT const char* Describe(int code);

}  // namespace bscan
