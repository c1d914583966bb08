#include "advice.h"

#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace tool {
namespace {

struct Row {
    int code;
    std::string_view statement;  // empty for any
    std::string_view advice;
};

constexpr std::string_view kNameList =
    "Write each entry as NAME (ITEM, ITEM) in a quoted line of its own, without a blank inside "
    "the name or an item.";

// The first row that fits is taken.
constexpr Row kRows[] = {
    {bscan::kFailed, "PORT_GROUPING",
     "Write groups as Differential_Voltage ((P, N), (P, N)), with a comma between two groups or "
     "pairs and without subscripts."},
    {bscan::kFailed, "BOUNDARY_REGISTER",
     "A cell number or control cell is not below BOUNDARY_LENGTH, or BOUNDARY_LENGTH does not "
     "come before the register."},
    {bscan::kReadFailed, "port",
     "The file ends inside the port clause: declare the ports one to a line, close a range with "
     "')' and the clause with ');'."},
    {bscan::kEndOfFile, "port",
     "The file ends inside the port clause: declare the ports one to a line, close a range with "
     "')' and the clause with ');'."},
    {bscan::kReadFailed, "",
     "The file ends too early: look for a missing ';' at the end of this statement, or a missing "
     "'end' line."},
    {bscan::kEndOfFile, "",
     "The file ends too early: look for a missing ';' at the end of this statement, or a missing "
     "'end' line."},
    {bscan::kBadValue, "BOUNDARY_REGISTER",
     "An entry is NUMBER (TYPE, PORT, FUNCTION, SAFE) or has CONTROL, DISABLE, RESULT behind it: "
     "SAFE is 0, 1 or X, DISABLE 0 or 1, RESULT Z, PULL0, PULL1, WEAK0 or WEAK1; no comment may "
     "follow the last entry."},
    {bscan::kBadValue, "BOUNDARY_LENGTH", "Give the number of cells, in decimal, before the ';'."},
    {bscan::kBadValue, "INSTRUCTION_LENGTH",
     "Give the number of bits, in decimal, before the ';'."},
    {bscan::kBadValue, "INSTRUCTION_OPCODE", "An entry has no name before its '('."},
    {bscan::kBadValue, "REGISTER_ACCESS", "An entry has no name before its '('."},
    {bscan::kLengthWithoutPorts, "", "Put the generic and port clauses before the attributes."},
    {bscan::kBadOpcode, "", kNameList},
    {bscan::kBadRegisterAccess, "", kNameList},
    {bscan::kCannotOpen, "", "Check the path, and whether you may read the file."},
};

std::string FromTable(const Failure& failure) {
    for (const Row& row : kRows) {
        if (row.code == failure.code &&
            (row.statement.empty() || row.statement == failure.statement)) {
            return std::string(row.advice);
        }
    }
    return {};
}

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

// A keyword in capitals is the commonest reason for a line that no rule accepts.
std::string KeywordInCapitals(const std::string& line) {
    constexpr std::array<std::string_view, 6> kKeywords = {"entity",    "port",     "use",
                                                           "attribute", "constant", "end"};
    std::string lower = line;
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos) return {};
    for (const std::string_view keyword : kKeywords) {
        if (lower.compare(start, keyword.size(), keyword) == 0 &&
            line.compare(start, keyword.size(), keyword) != 0) {
            return fmt::format("Write the keyword in lower case: {}.", keyword);
        }
    }
    return {};
}

std::string ForUnexpectedLine(const SourceFile& source, const Failure& failure) {
    std::string capitals = KeywordInCapitals(source.Line(failure.line));
    if (!capitals.empty()) return capitals;
    if (failure.statement_line == 0) {
        return "A BSDL file begins with 'entity NAME is', in lower case and on one line.";
    }
    if (failure.statement == "entity") {
        return "Put a generic clause, closed with ');', between the entity line and the port "
               "clause.";
    }
    return "A statement begins with port, use, attribute, constant or end; see whether the "
           "statement before this line is closed where it should be.";
}

// A value that stands whole on the attribute's line is not seen to end there.
bool IsOneLineValue(const std::string& line) {
    const std::size_t quote = line.find('"');
    return quote != std::string::npos && line.find(';', quote) != std::string::npos;
}

// Where 'is' is not on an attribute's own line, the reader looks for it in all that follows.
int AttributeWithoutIs(const SourceFile& source, int last) {
    for (int number = 1; number <= last; ++number) {
        const std::vector<std::string> words = Words(source.Line(number), 1000);
        if (!words.empty() && words[0] == "attribute" &&
            std::find(words.begin(), words.end(), "is") == words.end()) {
            return number;
        }
    }
    return 0;
}

std::string ForMissingEnd(const SourceFile& source, const Failure& failure) {
    if (const int number = AttributeWithoutIs(source, failure.line); number > 0) {
        return fmt::format("Line {}: an attribute needs its 'is' on this line.", number);
    }
    if (failure.statement == "BOUNDARY_REGISTER" &&
        IsOneLineValue(source.Line(failure.statement_line))) {
        return "Begin the quoted value on the line behind 'is'.";
    }
    return {};
}

// A refused cell is filled and names its port, yet is not among the port's cells.
std::string RefusedCell(const Device& device) {
    for (const LBScanCell* cell : CellsOf(device.map())) {
        const Element* element = device.Find(cell->GetPinNode());
        if (element == nullptr) continue;
        const std::vector<LBScanCell*> cells = CellsOf(*element->node);
        if (std::find(cells.begin(), cells.end(), cell) != cells.end()) continue;
        return fmt::format("Cell {}: the function {} does not suit port {} of mode {}.",
                           cell->GetBoundaryCellPosition(), Word(cell->GetFunction()),
                           element->Label(), Word(element->node->GetPortType()));
    }
    return {};
}

}  // namespace

std::string Advice(const Device& device, const SourceFile& source, const Failure& failure) {
    if (std::error_code ignored; std::filesystem::is_directory(failure.path, ignored)) {
        return "This is a folder; 'bscan check' reads the files in it.";
    }
    if (failure.code == bscan::kUnexpectedLine) return ForUnexpectedLine(source, failure);
    if (failure.code == bscan::kFailed && failure.statement == "BOUNDARY_REGISTER") {
        std::string refused = RefusedCell(device);
        if (!refused.empty()) return refused;
    }
    if (failure.code == bscan::kReadFailed || failure.code == bscan::kEndOfFile) {
        std::string unended = ForMissingEnd(source, failure);
        if (!unended.empty()) return unended;
    }
    return FromTable(failure);
}

}  // namespace tool
