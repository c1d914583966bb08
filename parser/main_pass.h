// The readers of the main pass.
#pragma once

#include <bscan/parser.h>

#include "parser/statement_reader.h"

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

    // The number of a package pin; a negative code when the selected package lacks it.
    int PinNumber(std::string_view designator);

private:
    using Reader = int (MainPass::*)(std::string&);
    struct LineRule;
    struct AttributeRule;
    struct NameList;
    static const LineRule kLineRules[];
    static const AttributeRule kAttributeRules[];

    int ReadEntityLines(std::string& statement);
    bool EnsurePinMap();
    const PackagePinMap* SelectedPackage() const;
    bool SelectsPackage();
    int NumberInPackage(std::string_view designator);
    int ReadLastWord(std::string& statement, std::string_view& word);
    int ReadNameList(std::string& statement, const NameList& list);
    bool AddInstruction(NameListEntry& entry);
    bool AddRegister(NameListEntry& entry);
    int AddPairs(std::string_view group);
    void AddPair(std::string_view positive, std::string_view negative);
    int RegisterCells(std::string_view value);
    int RegisterCell(CellFields& fields, std::string_view remark);
    eSignal FirstValue(const CellFields& fields) const;
    void CompletePairs();
    bool CompletePair(CDifferentialPair& pair);
    void DropPairs();
    bool ChargeExtraWork(std::int64_t work);

    BScanParser& parser_;
    StatementReader reader_;
    std::string value_;   // the string value being read
    std::string port_;    // the port of a cell, in upper case
    std::string remark_;  // what stands behind a cell's entry
};

}  // namespace bscan::detail
