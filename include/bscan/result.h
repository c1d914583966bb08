/// @file
/// The result codes of the library and their meaning.
#pragma once

#include <bscan/export.h>

namespace bscan {

/// What an operation with an `int` result returns: 0, or one of these negative codes.
enum ResultCode : int {
    kOk = 0,               ///< success
    kFailed = -1,          ///< no file open, a malformed PORT_GROUPING or a refused cell
    kBadDirectory = -2,    ///< the default directory cannot be entered
    kReadFailed = -3,      ///< the file ended, or failed, while a line was being read
    kEndOfFile = -4,       ///< the file was already at its end when a line was wanted
    kUnexpectedLine = -5,  ///< no entity line first, or a line of the entity that no rule accepts
    kNoOutputBuffer = -6,  ///< no output buffer was passed for a string value
    kNoPinMap = -7,        ///< the device pin map could not be created
    kBadValue = -8,        ///< a value is missing, malformed or beyond its limit
    kLengthWithoutPorts = -9,       ///< a boundary length before any generic or port clause
    kCannotOpen = -10,              ///< the BSDL file cannot be opened
    kNoPinName = -11,               ///< the pin name argument is null
    kUnknownPin = -13,              ///< the selected package has no pin of that name
    kLengthWithoutRegister = -14,   ///< an instruction length without an instruction register
    kCaptureWithoutRegister = -15,  ///< an instruction capture without an instruction register
    kBadOpcode = -16,               ///< an INSTRUCTION_OPCODE entry is malformed
    kBadRegisterAccess = -17,       ///< a REGISTER_ACCESS entry is malformed
    kTextTooLong = -18,             ///< the text of a statement exceeds the limit
    kOutOfMemory = -19,             ///< out of memory
};

/// Tells in words what a result code means.
///
/// @param code  a result of any operation of the library.
/// @return a static text without a full stop, never null; "unknown result" for a code that the
///         library does not use.
BSCAN_EXPORT const char* Describe(int code);

}  // namespace bscan
