/// @file
/// A growing sequence of bytes, the output of BScanParser::GetCompleteStringValue.
#pragma once

#include <bscan/export.h>

#include <string>

/// Bytes that are appended at the end and read by index.
class BSCAN_EXPORT LByteBuffer {
public:
    /// Makes an empty buffer.
    LByteBuffer();
    ~LByteBuffer();

    /// Appends a text without its terminator. A null text appends nothing, and nothing is
    /// appended when memory is exhausted.
    ///
    /// @return the buffer on which to go on writing: this one.
    LByteBuffer* WriteData(char* text);

    /// Appends one byte.
    ///
    /// @return true when it was stored; false when memory is exhausted.
    bool WriteData(char byte);

    /// @return the number of bytes stored.
    unsigned int GetTotalSize();

    /// @param index  position of the byte, from 0.
    /// @return that byte; 0 when there is no such position.
    char ReadData(int index);

private:
    std::string bytes_;
};
