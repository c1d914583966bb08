/// @file
/// The error list file and the messages that a host reports through BScanParser::ProcessException.
///
/// The error list is UTF-8 text with one element a line: group, number and result value, each
/// decimal from 0 to 65535 and followed by white space, then the message to the end of the line.
/// Empty lines and lines that begin with '#' are skipped, malformed lines too. Of two elements
/// with the same group and number the first counts. In a message, the first "%d" stands for the
/// line number and the second for the column number; every other character is copied as it is.
/// A byte order mark at the beginning is passed over. More than the first 16 MiB are not read.
#pragma once

#include <bscan/export.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

/// One element of the error list.
class BSCAN_EXPORT ErrorElement {
public:
    /// @param message  the message format.
    /// @param result  the result value.
    ErrorElement(std::string message, std::uint16_t result);

    /// @return the message format, owned by the element and valid as long as it; null when the
    ///         element has none.
    const char* GetErrorMessage();

    /// @return the element's result value, which BScanParser::ProcessException returns.
    std::uint16_t GetResult() const;

private:
    std::string message_;
    std::uint16_t result_;
};

/// The table of error elements and the messages recorded so far.
class BSCAN_EXPORT ErrorHandler {
public:
    /// Makes a handler without a table.
    ErrorHandler();
    ErrorHandler(const ErrorHandler&) = delete;
    ErrorHandler& operator=(const ErrorHandler&) = delete;
    /// Releases the table and the recorded messages.
    virtual ~ErrorHandler();

    /// Names the directory in which Initialize() looks; null or empty means the working directory.
    void SetDefaultDir(const char* directory);

    /// Loads an error list file into the table, in place of what it held.
    ///
    /// @param filename  name of the file in the default directory.
    /// @param reserved  not used.
    /// @return 0, also when there is no such file (the table is empty then);
    ///         bscan::kOutOfMemory when memory is exhausted.
    int Initialize(char* filename, int reserved);

    /// @return the element with these two keys, owned by the handler and valid until it is
    ///         initialized again or destroyed; null without one.
    ErrorElement* GetErrorElement(unsigned short group, unsigned short number);

    /// Records a copy of a message. A null message is not recorded.
    void SetErrorOccured(char* message);

    /// @return the number of messages recorded.
    int GetErrorCount() const;

    /// @param index  0 for the oldest message.
    /// @return the message, owned by the handler and valid until the next one is recorded; null
    ///         when there is no such message.
    const char* GetError(int index) const;

private:
    friend class BScanParser;

    std::string directory_;
    std::unordered_map<std::uint32_t, ErrorElement> elements_;
    std::vector<std::string> messages_;
};
