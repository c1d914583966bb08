/// @file
/// A BSDL file as IEEE 1149.1 means it: its facts, and what is wrong with it.
#pragma once

#include <bscan/export.h>
#include <bscan/facts.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class BScanParser;
class BScanPinMap;
class LPinNode;

namespace bscan {

namespace detail {
struct Reading;
}

/// How much a finding matters.
enum class Severity {
    kError,    ///< a fact is lost or doubtful, or driving the device by it could be wrong
    kWarning,  ///< against the standard, and every fact is clear
    kNote,     ///< worth knowing
};

/// Something about a file that its user should know, at the place where a person would point.
struct Finding {
    Severity severity = Severity::kError;
    int line = 0;         ///< from 1; 0 when it has no place
    int column = 0;       ///< in bytes, from 1; 0 when it has no place
    std::string rule;     ///< stable name, such as port-mode-unknown; see docs/findings.md
    std::string message;  ///< one sentence with the very words of the file
    std::string remedy;   ///< what to write instead; empty when there is no telling
    int length = 0;       ///< bytes of the words that the finding points at; 0 for a place alone
};

/// Reads one BSDL text and keeps what it says.
///
/// A reading never stops at a fault: it goes on, keeps every fact that is not in doubt, and tells
/// what it found. The editions of 1990, 1994, 2001 and 2013 are read, and what makers really write.
///
/// An object does not change once it is read: any number of threads may look at it, and read other
/// texts at the same time. Words of the facts refer to the text that the object keeps, and are
/// valid as long as it, also when it is moved. Nothing throws but copying what is handed out.
class BSCAN_EXPORT Description {
public:
    /// Reads a file of at most kMaxDescriptionLength bytes.
    ///
    /// @param path  null or empty cannot be opened.
    static Description Read(const char* path);

    /// Reads a text in memory, which is copied.
    ///
    /// @param text  of at most kMaxDescriptionLength bytes.
    /// @param name  what the text is called where a file name is wanted; null for none.
    static Description Parse(std::string_view text, const char* name);

    Description(Description&&) noexcept;
    Description& operator=(Description&&) noexcept;
    ~Description();

    /// @return kOk when there is an entity, however many findings it has; kCannotOpen;
    ///         kReadFailed for a directory or a failing disk; kTextTooLong; kNoEntity;
    ///         kOutOfMemory.
    int Result() const;

    /// @return what was found, in the order of the file; at most kMaxFindings and a note.
    const std::vector<Finding>& Findings() const;

    /// Fills a parser with the model, as BScanParser::Read would from a file without fault.
    ///
    /// @param parser  constructed, perhaps with a capture stored, without a model.
    /// @return kOk; the Result() of a description without an entity; kModelExists when the parser
    ///         has a model already; kOutOfMemory (what was filled so far stays).
    int Fill(BScanParser& parser) const;

    /// The same for another of the file's packages.
    ///
    /// @param parser  as for Fill(BScanParser&).
    /// @param package  name of one of its pin maps, letter case ignored.
    /// @return as Fill(BScanParser&); kNoSuchPackage when no pin map has that name.
    int Fill(BScanParser& parser, std::string_view package) const;

    /// Finds an element of a device that this description has filled, by its declared index. The
    /// model's own vector index counts from the lower bound of the range instead.
    ///
    /// @param device  the device.
    /// @param port  letter case is ignored.
    /// @param index  as the file declares and names it: 4 to 7 for (7 downto 4). None, or 0, for a
    ///        port without range; none also for a vector of one element.
    /// @return the element, owned by the device; null when the file declares no such element. As
    ///         all lookups by port name, this leaves names of the device in upper case. It costs a
    ///         walk over the declared ports.
    LPinNode* FindElement(BScanPinMap& device, std::string_view port,
                          std::optional<int> index) const;

    /// @return all that the file says; empty facts when Result() is not kOk.
    const Facts& GetFacts() const;

    /// @return the name or path that was given; empty without one.
    const std::string& Name() const;

    /// @param line  number of a line, from 1.
    /// @return that line without its end; empty when there is none. It costs a walk over the text.
    std::string_view Line(int line) const;

private:
    BSCAN_LOCAL explicit Description(std::unique_ptr<detail::Reading> reading);

    std::unique_ptr<detail::Reading> reading_;
};

/// Tells what a rule is about.
///
/// @return one sentence; null when no rule has that name.
BSCAN_EXPORT const char* DescribeRule(std::string_view rule);

}  // namespace bscan
