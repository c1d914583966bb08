/// @file
/// What a BSDL file says, statement by statement, in the words of the file.
///
/// Every text is as written: letter case, leading zeros and all. Names are compared without regard
/// to letter case. Views are valid as long as the Description that holds the facts.
#pragma once

#include <bscan/boundary_cell.h>
#include <bscan/export.h>
#include <bscan/signal.h>

#include <optional>
#include <string_view>
#include <vector>

namespace bscan {

/// A word or text of the file and where it begins. An absent one is empty and has line 0.
struct Word {
    std::string_view text;
    int line = 0;    ///< from 1
    int column = 0;  ///< in bytes, from 1

    bool Exists() const { return line > 0; }
};

/// The range of a vector as declared: (7 downto 4) is left 7, right 4.
struct IndexRange {
    int left = 0;
    int right = 0;

    int Lowest() const { return left < right ? left : right; }
    int Count() const { return (left < right ? right - left : left - right) + 1; }
    bool Contains(int index) const {
        return index >= Lowest() && index <= (left < right ? right : left);
    }
};

/// A port, or one element of it: D(3) is port D, index 3, the index as declared.
struct ElementName {
    Word port;
    std::optional<int> index;
};

/// What a port is for (B.8.3 of the standard); those behind kLinkage came with the edition of 2013.
enum class PortMode {
    kUnknown,
    kIn,
    kOut,
    kInout,
    kBuffer,
    kLinkage,
    kLinkageIn,
    kLinkageOut,
    kLinkageInout,
    kLinkageBuffer,
    kLinkageMechanical,
    kPowerPositive,
    kPowerGround,
    kPowerNegative,
    kReferenceIn,
    kReferenceOut,
};

/// One declared port; those of a list "A, B : in bit" are one each.
struct Port {
    Word name;
    PortMode mode = PortMode::kUnknown;
    Word mode_word;
    Word type;                        ///< bit or bit_vector, as written
    std::optional<IndexRange> range;  ///< of a vector; absent for a single bit
};

/// One entry of a pin map: the package pins of a port, or of one of its elements.
struct PinMapEntry {
    ElementName port;
    std::vector<Word> pins;  ///< designators as written, in the order of the entry
};

/// One constant of type PIN_MAP_STRING: a package.
struct PinMap {
    Word name;
    std::vector<PinMapEntry> entries;
};

/// The states in which the test clock may stop.
enum class ClockStop { kUnknown, kLow, kBoth };

/// The test access port.
struct TapSignals {
    ElementName tdi, tdo, tms, tck, trst;  ///< absent ones have no port
    double max_frequency = 0;              ///< of TCK, in hertz; 0 when the file does not tell
    Word frequency_word;
    ClockStop clock_stop = ClockStop::kUnknown;
    Word clock_stop_word;
};

/// Ports that must hold one of some patterns for the test logic to work (COMPLIANCE_PATTERNS).
struct Compliance {
    Word attribute;  ///< the attribute's name, for its place
    std::vector<ElementName> ports;
    std::vector<Word> patterns;  ///< leftmost character for the first port; 0, 1 or X
};

/// One instruction of INSTRUCTION_OPCODE.
struct Instruction {
    Word name;
    std::vector<Word> opcodes;  ///< leftmost bit next to TDI; blanks and underscores taken out
};

/// One instruction in REGISTER_ACCESS and what the register captures under it.
struct RegisterInstruction {
    Word name;
    Word captures;  ///< bits, leftmost next to TDI; absent when the file does not tell
    Word domain;    ///< the power domain of the register; absent without one
};

/// One register of REGISTER_ACCESS.
struct RegisterAccess {
    Word name;
    std::optional<int> length;  ///< in bits, when the file writes one
    Word length_word;           ///< as written; `*` leaves the length to other attributes
    std::vector<RegisterInstruction> instructions;
};

/// One entry of BOUNDARY_REGISTER. A merged cell has several, of one number.
struct Cell {
    int number = -1;   ///< 0 is the cell next to TDO; -1 when the entry has no readable one
    Word entry;        ///< its number as written: the place of the entry
    Word type;         ///< such as BC_1, or a cell of a user's package
    ElementName port;  ///< the port as written; no port for "*"
    CellFunction function = FUNCTION_NONE;
    Word function_word;
    eSignal safe = SIG_X;
    Word safe_word;
    int control = -1;  ///< number of the control cell; -1 without one
    Word control_word;
    eSignal disable_value = SIG_X;  ///< of the control cell, turns the driver off
    Word disable_value_word;
    eSignal disable_result = SIG_X;  ///< what the pin then shows; SIG_Z for KEEPER
    Word disable_result_word;
    int field_count = 0;      ///< fields between the parentheses
    std::string_view remark;  ///< the comment behind the entry, without its dashes
};

/// One pair of PORT_GROUPING.
struct PortPair {
    ElementName positive;  ///< the representative port
    ElementName negative;
    bool is_current = false;  ///< Differential_Current; otherwise Differential_Voltage
};

/// An attribute or constant that has no place of its own above.
struct OtherStatement {
    Word name;
    Word target;                      ///< what it is of, such as the entity or a port
    std::optional<int> target_index;  ///< of an element of a port
    Word target_class;                ///< entity, signal, component, ...; for a constant its type
    std::string_view standard_name;   ///< the attribute as the standard spells it; may be empty
    std::string_view value;  ///< text behind "is" or ":=": pieces of a string joined, no quotes
    bool is_string = false;
    bool is_constant = false;
};

/// "attribute NAME : TYPE;" in the entity, which declares an attribute and sets none.
struct AttributeDeclaration {
    Word name;
    Word type;  ///< such as BSDL_EXTENSION; absent without one
};

/// Everything that a BSDL file says. Where it says a thing twice, the first counts.
struct Facts {
    Word entity;
    std::string_view preamble;  ///< what stands before the entity, comments included

    Word generic;                      ///< PHYSICAL_PIN_MAP, or what stands in its place
    Word default_package;              ///< the generic's default; absent without one
    std::vector<Word> other_generics;  ///< as written: NAME : TYPE, and perhaps a default
    std::vector<Port> ports;
    std::vector<Word> use_clauses;  ///< such as STD_1149_1_2001.all
    std::vector<PinMap> pin_maps;
    Word conformance;  ///< value of COMPONENT_CONFORMANCE

    TapSignals tap;
    Compliance compliance;
    int instruction_length = 0;  ///< in bits; 0 when the file does not tell
    Word instruction_length_word;
    Word opcode_attribute;  ///< the name INSTRUCTION_OPCODE, for its place; absent without one
    std::vector<Instruction> instructions;
    Word instruction_capture;  ///< leftmost bit next to TDI
    std::vector<Word> private_instructions;
    std::vector<Word> idcodes;  ///< 32 characters 0, 1, X each; several alternatives
    std::vector<Word> usercodes;
    std::vector<RegisterAccess> registers;

    int boundary_length = 0;
    Word boundary_length_word;
    Word register_attribute;  ///< the name BOUNDARY_REGISTER, for its place; absent without one
    std::vector<Cell> cells;  ///< in the order of the file
    std::vector<PortPair> pairs;

    Word runbist;  ///< value of RUNBIST_EXECUTION
    Word intest;   ///< value of INTEST_EXECUTION
    Word design_warning;
    std::vector<AttributeDeclaration> declarations;
    std::vector<OtherStatement> others;

    /// The user's packages and their bodies before and behind the entity, as written from the word
    /// `package` to the last semicolon; those before it stand in the preamble as well.
    std::vector<Word> packages;

    /// @return the port of that name, letter case ignored; null without one. A walk.
    BSCAN_EXPORT const Port* FindPort(std::string_view name) const;
    /// @return the pin map of that name, letter case ignored; null without one.
    BSCAN_EXPORT const PinMap* FindPinMap(std::string_view name) const;
};

}  // namespace bscan
