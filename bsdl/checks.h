// What the rules about facts share, and the rules in the order in which they look at a file.
#pragma once

#include <bscan/facts.h>

#include "bsdl/cell_table.h"
#include "bsdl/language.h"
#include "bsdl/name_index.h"
#include "bsdl/port_references.h"
#include "bsdl/reading.h"

#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// Editions of the standard that differ for a rule.
enum class Edition { k1990, k1993, k2001, k2013 };

// What a file says of the edition that it follows: its conformance, else its use clauses; the
// oldest when it does not tell.
Edition EditionOf(const Facts& facts);

// A port that an attribute makes a signal of the TAP.
struct TapPort {
    int port;
    const char* name;  // of the signal
    PortMode mode;     // that the signal wants
    const ElementName* signal;
    bool named_so;  // the port is called like the signal
    bool told;      // the attribute has been found wrong
};

struct Checks {
    explicit Checks(Reading& reading);

    const Facts& facts;
    const Doubts& doubts;
    FindingList& found;
    Edition edition;
    PortReferences ports;
    NameIndex instructions;          // by name; the number is that in facts.instructions
    int instruction_length = 0;      // that which the opcodes have, when the file's is wrong
    int boundary_length = 0;         // likewise by the cells
    NameIndex missing_instructions;  // told already
    bool instruction_twice = false;  // another one, whose name was meant, may be missing
    std::vector<TapPort> tap_ports;
};

// A word as a message shows it.
inline std::string Quoted(const Word& word) { return Quoted(word.text); }
std::string Quoted(const ElementName& element);

// "1 bit", "2 bits".
std::string Counted(std::size_t count, std::string_view what);

// Whether a bit string has no other characters than 0, 1 and, if allowed, X.
bool IsBits(std::string_view text, bool may_have_x);

// Tells that an instruction is missing, once: at a misspelt one that was meant, else at `where`.
void ReportMissingInstruction(Checks& checks, Rule rule, std::string_view name, const Word& where,
                              const std::string& message);
// Tells, once, that an attribute names an instruction that INSTRUCTION_OPCODE does not have.
void ReportUnknownInstruction(Checks& checks, Rule rule, const Word& name,
                              std::string_view attribute);

// Whether a port is known to be no vector: one whose range is lost may be.
bool IsSingleBit(const Port& port);

// One subject each.
void CheckPorts(Checks& checks);
void CheckEdition(Checks& checks);
void CheckPackages(Checks& checks);
void CheckPinMaps(Checks& checks);
void CheckTap(Checks& checks);
void CheckCompliance(Checks& checks);
void CheckInstructions(Checks& checks);
void CheckRegisterAccess(Checks& checks);
void CheckIdcodes(Checks& checks);
void CheckCellNumbers(Checks& checks, const CellTable& cells);
void CheckCellFields(Checks& checks);
void CheckCellPorts(Checks& checks);
void CheckControlCells(Checks& checks, const CellTable& cells);
void CheckPairs(Checks& checks);

}  // namespace bscan::detail
