/// @file
/// The reader of BSDL files.
#pragma once

#include <bscan/byte_buffer.h>
#include <bscan/device_pin_map.h>
#include <bscan/differential_pair.h>
#include <bscan/error_handler.h>
#include <bscan/export.h>
#include <bscan/instruction_register.h>
#include <bscan/object_list.h>
#include <bscan/package_pin_map.h>
#include <bscan/pin_name.h>
#include <bscan/register_access.h>
#include <bscan/result.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bscan::detail {
class MainPass;
class ModelFiller;
class PackagePass;
}

/// The file of the main pass; null while none is open. BScanParser::Initialize opens it,
/// BScanParser::CloseFile and the destructor of any parser close it. A process reads one file at
/// a time.
extern BSCAN_EXPORT FILE* fptrBSDL;

/// Reads one BSDL file into a model of the device, and owns that model.
///
/// A host constructs a parser, stores a capture with SetBSCANBitArray() when it has one, calls
/// Initialize() and Read(), and then works with what the accessors hand out. Everything handed out
/// stays owned by the parser and is valid until it is replaced or the parser is destroyed. One
/// parser reads one file: a second reading adds to what the first has built.
///
/// Operations with an `int` result return bscan::kOk or a negative bscan::ResultCode. What was read
/// before a failure stays in the model. The library prints nothing and throws nothing. An exhausted
/// memory gives bscan::kOutOfMemory, or changes nothing where there is no result.
///
/// Texts handed in are copied. A stream that is null can be read as little as a file at its end:
/// a reader that needs a line from it returns bscan::kReadFailed. A null statement gives
/// bscan::kFailed.
// The destructor is not virtual although Reset() is: a host destroys a parser as what it made it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class BSCAN_EXPORT BScanParser {
public:
    /// Makes a parser with no file, no model and no error handler.
    BScanParser();
    BScanParser(const BScanParser&) = delete;
    BScanParser& operator=(const BScanParser&) = delete;
    /// Releases the whole model, and closes #fptrBSDL.
    ~BScanParser();

    /// @name Reading a file
    /// @{

    /// Prepares the reading of a file: numbers the pins of its first package when they have
    /// letters, opens it into #fptrBSDL and loads the error list.
    ///
    /// @param bsdlFile  path of the file. It is read twice, so it must be a regular file; a
    ///        directory opens, and fails in Read().
    /// @param defaultDir  directory of "ErrorList.txt" (see bscan/error_handler.h); null or empty
    ///        for the working directory. The file may be missing.
    /// @return bscan::kOk, bscan::kBadDirectory, bscan::kCannotOpen (also for a null or empty
    ///         path), or what reading its package failed with. After these #fptrBSDL is what it was
    ///         before. Once the package is read, the file before is closed and #fptrBSDL is the new
    ///         one, also when Reset() or the error list then gives a negative code.
    int Initialize(const char* bsdlFile, const char* defaultDir);

    /// Reads the file that Initialize() has opened, up to its "end" line.
    ///
    /// @return bscan::kOk, or the first failure of a reader: see bscan::ResultCode. A failed
    ///         reading cannot be taken up again.
    int Read();

    /// Makes a fresh error handler and sets the line and column number to 0. The model stays.
    /// @return bscan::kOk or bscan::kOutOfMemory.
    virtual int Reset();

    /// Destroys the error handler.
    void ClearBuffers();

    /// Closes #fptrBSDL and sets it to null; nothing happens when no file is open.
    void CloseFile();

    /// Stores a vector captured from the device, from which every cell then takes its first value.
    /// It must be stored before the file is read.
    ///
    /// @param data  one byte for each cell, cell 0 (next to TDO) first: 0 or 1; another value, and
    ///        a cell beyond @p length, starts as SIG_X.
    /// @param length  number of bytes.
    /// @param mask  as many bytes, 0 where the captured bit is not valid; null when all are.
    /// @return bscan::kOk; -1 for a negative length, and for null data with a positive length (the
    ///         stored capture stays); bscan::kOutOfMemory.
    int SetBSCANBitArray(unsigned char* data, int length, unsigned char* mask);
    /// @}

    /// @name What was read
    /// @{

    /// @return the device; null before a generic or port clause was read.
    BScanPinMap* GetPinMap() const;
    /// @return the instruction register; null before the first attribute was read.
    CInstrRegisterDesc* GetInstructionRegisterDescription() const;
    /// @return the register access table; null when the file has none.
    CRegisterAccessDesc* GetRegisterAccessDescription() const;
    /// @return the differential pairs in the order of the file; pointers into the list are valid
    ///         until another pair is read or the list is cleared.
    const std::vector<CDifferentialPair>* GetDifferentialPairList() const;
    /// @return the number of differential pairs.
    int GetDifferentialPairCount() const;
    /// @param index  counted from 0.
    /// @return that pair; null without one.
    CDifferentialPair* GetDifferentialPair(int index);
    /// Removes all differential pairs; the marks on the ports stay.
    void ClearDifferentialPairList();
    /// @return the name of the entity; null before it was read.
    const char* GetComponentName() const;
    /// @return the package that the generic clause names, in lower case; null without one.
    char* GetPackageType();
    /// @return the number of package maps: 1 when the first pin map of the file has lettered pins.
    int GetPackageMapCount() const;
    /// @param index  counted from 0.
    /// @return that package map; null without one.
    const PackagePinMap* GetPackageMap(int index) const;
    /// @return the number of physical line reads since the parser was made or Reset(), which
    ///         Initialize() calls. A read takes at most 254 characters, the line end included: a
    ///         line of exactly 254 characters and its end are two reads.
    std::int64_t GetLineNumber() const;
    /// @}

    /// @name Settings and errors
    /// @{

    /// Stores the path of the file; null or empty changes nothing.
    void SetBSDLFilename(const char* name);
    /// @return the stored path; null when none was stored.
    const char* GetBSDLFilename() const;
    /// Stores the directory of the error list, after testing that it can be entered. Null or empty
    /// stores an empty text. The working directory is not changed.
    /// @return bscan::kOk; bscan::kBadDirectory (the stored directory stays); bscan::kOutOfMemory.
    int SetDefaultDir(const char* directory);
    /// Stores the name of the entity; null changes nothing.
    void SetComponentName(char* name);
    /// Stores the package type; null changes nothing.
    void SetPackageType(char* type);
    /// @return the error handler; null before Initialize() or Reset().
    ErrorHandler* GetErrorHandler();
    /// Composes a message for the host and records it with the error handler.
    ///
    /// The message is a newline, @p text and a newline (unless it is null), and the message of the
    /// error list's element with the keys @p group and @p number (their low 16 bits), with line and
    /// column number filled in; without an element "XML Parser Error At Line n, Column n.".
    ///
    /// @return the result value of the element; -1 without an element, error handler or memory.
    int ProcessException(int group, unsigned int number, char* text);
    /// @}

    /// @name Readers
    /// The steps of Read(), for hosts that read pieces of BSDL themselves. Each takes the stream
    /// and the text of the statement as far as it has been read, reads on up to the statement's
    /// end, and returns bscan::kOk or a negative code; a code of the operations below, when the
    /// stream ends first. Statements may not exceed bscan::kMaxStatementLength.
    /// @{

    /// Reads an entity from its first line to its "end" line. It takes its own lines from @p file,
    /// but the readers that it calls go on in #fptrBSDL, which should be the same stream.
    int ReadEntity(FILE* file, const char* line);
    /// Reads an attribute statement, by its name.
    int ReadAttribute(FILE* file, const char* line);
    /// Reads a constant: a pin map string or a boundary register. Others are not read.
    /// @return bscan::kOk, also for a pin map string that cannot be read; otherwise the code of
    ///         ReadBSCANBoundaryRegister().
    int ReadConstant(FILE* file, const char* line);
    /// Reads the text of an entity behind its name, with the generic clause, and makes the device.
    /// @return bscan::kOk, a code of CompleteStatement() or bscan::kNoPinMap.
    int ReadGeneric(FILE* file, char* statement);
    /// Reads a port clause from its first line to the end of the clause.
    /// @return bscan::kOk, a code of CompleteStatement() or bscan::kNoPinMap. A declaration that
    ///         makes no port, since it has a negative bound or passes a limit, is no failure.
    int ReadPort(FILE* file, char* line);
    /// Adds the ports of one declaration, such as "A, B : in bit;".
    int CreatePort(char* declaration);
    /// Bonds ports to package pins by a pin map string.
    int ReadBSCANPinMap(FILE* file, const char* statement);
    /// Tells the number of a package pin.
    /// @param pin  its designator, such as B12, letter case included.
    /// @return its number in the selected package, from 1; without such a package the decimal value
    ///         of the text; bscan::kNoPinName for null, bscan::kUnknownPin.
    int MapPinNametoPinNumber(const char* pin);
    /// Numbers the pins of the first package of a file when they have letters. A second call adds
    /// its pins to those of the first, and its map takes the place of the first.
    /// @return bscan::kOk, also when the file has no such package; bscan::kCannotOpen; or a code of
    ///         CompleteStatement() or GetCompleteStringValue() when the file ends within the map.
    int ReadPackageDB(char* bsdlFile);
    /// Reads PORT_GROUPING into the list of differential pairs.
    int ReadPortGroupingAttribute(FILE* file, const char* statement);
    /// Reads BOUNDARY_LENGTH, which starts a fresh boundary register.
    int ReadBSCANBoundaryLength(FILE* file, char* statement);
    /// Reads BOUNDARY_REGISTER and completes the differential pairs.
    int ReadBSCANBoundaryRegister(FILE* file, char* statement);
    /// Reads INSTRUCTION_LENGTH.
    int ReadInstructionLength(FILE* file, char* statement);
    /// Reads INSTRUCTION_CAPTURE.
    int ReadInstructionCapture(FILE* file, char* statement);
    /// Reads INSTRUCTION_OPCODE.
    int ReadInstructionOpcode(FILE* file, char* statement);
    /// Reads REGISTER_ACCESS.
    int ReadRegisterAccess(FILE* file, char* statement);
    /// @}

    /// @name Lines, statements and string values
    /// Every buffer for output has room for 1024 characters, the terminator included. What does not
    /// fit gives bscan::kTextTooLong and leaves a terminated beginning. A null buffer gives
    /// bscan::kFailed.
    /// @{

    /// Delivers the next line that is not empty, without its comment and trimmed. One read takes at
    /// most 254 characters, so a longer line comes in pieces.
    ///
    /// @param file  the stream.
    /// @param line  receives the line.
    /// @param comment  receives the line's comment with its dashes, trimmed and followed by '*', or
    ///        an empty text; may be null.
    /// @return bscan::kOk; bscan::kReadFailed or bscan::kEndOfFile. The line is unchanged then, and
    ///         the comment is that of the last read that succeeded, whose line had no text.
    int GetLine(FILE* file, char* line, char* comment);
    /// Appends lines to a statement until one holds ';'. Nothing is read when it holds one already.
    int CompleteStatement(FILE* file, char* statement);
    /// Appends lines until one holds @p terminator; otherwise as CompleteStatement(FILE*, char*).
    int CompleteStatement(FILE* file, char* statement, char terminator);
    /// Appends lines until one holds the text @p terminator; otherwise as above.
    int CompleteStatement(FILE* file, char* statement, char* terminator);
    /// Appends lines until one holds a character of @p set; otherwise as above.
    int CompleteStatementWithOneOf(FILE* file, char* statement, char* set);
    /// Gathers a string value that is written in quoted pieces joined by '&' and ended by ';'.
    ///
    /// @param file  the stream.
    /// @param start  the text behind the opening quote; empty when the value begins on the next
    ///        line.
    /// @param out  receives the pieces, each followed by a blank unless the value ends on the first
    ///        line; what was gathered before a failure stays in it.
    /// @param withComments  whether the comment of a line follows its piece, as GetLine() gives it.
    /// @return bscan::kOk, bscan::kNoOutputBuffer for a null @p out, a code of GetLine() or
    ///         bscan::kTextTooLong beyond bscan::kMaxStatementLength.
    int GetCompleteStringValue(FILE* file, char* start, LByteBuffer* out, bool withComments);

    /// @return true for space, tab, line feed and carriage return.
    static bool IsWhiteSpace(char character);
    /// @return true for line feed and carriage return.
    static bool IsNewLine(char character);
    /// @return true for tab, line feed, carriage return and the bytes 32 to 127.
    static bool IsChar(char character);
    /// @return true for the ASCII letters.
    static bool IsLetter(char character);
    /// @return true for 0 to 9.
    static bool IsDigit(char character);
    /// @}

private:
    friend class bscan::detail::MainPass;
    friend class bscan::detail::ModelFiller;
    friend class bscan::detail::PackagePass;

    /// A host's capture: one byte for each cell, and which of them are valid.
    struct Capture {
        std::vector<unsigned char> data;
        std::vector<unsigned char> mask;
    };

    BSCAN_LOCAL void DestroyPackageMaps();
    BSCAN_LOCAL eSignal FirstValue(int cell, eSignal safe) const;

    std::unique_ptr<ErrorHandler> error_handler_;
    std::vector<CDifferentialPair> differential_pairs_;
    std::optional<std::string> bsdl_filename_;
    std::optional<std::string> default_directory_;
    std::int64_t line_number_ = 0;
    int column_number_ = 0;
    std::unique_ptr<BScanPinMap> pin_map_;
    std::optional<std::string> component_name_;
    std::unique_ptr<LObjList> package_maps_;
    std::optional<std::string> package_type_;
    std::optional<Capture> capture_;
    std::unique_ptr<CInstrRegisterDesc> instruction_register_;
    std::unique_ptr<CRegisterAccessDesc> register_access_;
};
#pragma GCC diagnostic pop
