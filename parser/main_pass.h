// The readers of the main pass.
#pragma once

#include <bscan/limits.h>
#include <bscan/parser.h>

#include "parser/statement_reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace bscan::detail {

struct CellFields;
struct NameListEntry;

// Reads statements from a stream into a parser's model. Each reader takes the statement as far as
// it has been read, may extend it, and returns 0 or a negative code. It throws when memory is
// exhausted; what was read before stays.
class MainPass {
public:
    MainPass(BScanParser& parser, FILE* file)
        : parser_(parser), reader_(file, parser.line_number_) {}

    // From the first line of the file to the end of the entity.
    int ReadFile();

    int ReadEntity(std::string& statement);
    int ReadAttribute(std::string& statement);
    int ReadConstant(std::string& statement);
    int ReadGeneric(std::string& statement);
    int ReadPort(std::string& statement);
    int CreatePort(std::string_view declaration);
    int ReadPinMap(std::string& statement);
    int ReadPortGrouping(std::string& statement);
    int ReadBoundaryLength(std::string& statement);
    int ReadBoundaryRegister(std::string& statement);
    int ReadInstructionLength(std::string& statement);
    int ReadInstructionCapture(std::string& statement);
    int ReadInstructionOpcode(std::string& statement);
    int ReadRegisterAccess(std::string& statement);

    // The package that numbers the pins; null without one.
    const PackagePinMap* SelectedPackage() const;
    // The number of a pin in a package; a negative code when the package lacks it. `pins_before` is
    // a hint: how many pins the pin map string names before this one.
    static int PinNumber(const PackagePinMap* package, std::string_view designator,
                         std::size_t pins_before = 0);

private:
    using Reader = int (MainPass::*)(std::string&);
    struct LineRule;
    struct AttributeRule;
    struct NameListKind;
    static const LineRule kLineRules[];
    static const AttributeRule kAttributeRules[];

    bool EnsurePinMap();
    int ReadLastWord(std::string& statement, std::string_view& word);
    int ReadNameList(std::string& statement, const NameListKind& kind);
    bool AddInstruction(NameListEntry& entry);
    bool AddRegister(NameListEntry& entry);
    int AddPairs(std::string_view group);
    void AddPair(std::string_view positive, std::string_view negative);
    int AddCells(std::string_view value);
    int AddCell(CellFields& fields, std::string_view remark);
    int CompletePairs();
    bool CompletePair(CDifferentialPair& pair);
    void DropPairs();
    // Counts work for a statement that comes again; false when there was too much of it.
    bool MayRepeat(std::int64_t work) {
        repeated_work_ += work;
        return repeated_work_ <= kMaxRepeatedWork;
    }

    BScanParser& parser_;
    StatementReader reader_;
    std::string value_;               // the string value being read
    std::string port_;                // the port of a cell, in upper case
    std::string original_name_;       // of a cell, from the remark behind its entry
    bool has_length_ = false;         // a boundary length was read in this pass
    bool has_register_ = false;       // a boundary register was read in this pass
    std::int64_t repeated_work_ = 0;  // see kMaxRepeatedWork
};

}  // namespace bscan::detail
