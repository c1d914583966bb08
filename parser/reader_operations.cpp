// The readers as a host calls them: on a stream and a zero-terminated text.

#include <bscan/parser.h>

#include "parser/main_pass.h"
#include "parser/package_pass.h"
#include "support/border.h"
#include "support/file.h"

using namespace bscan::detail;

namespace {

// Runs a reader on a copy of the statement.
template <class Reader>
int RunReader(BScanParser& parser, FILE* file, const char* text, Reader reader) {
    if (text == nullptr) return bscan::kFailed;
    return GuardedCode([&] {
        std::string statement(text);
        MainPass pass(parser, file);
        return (pass.*reader)(statement);
    });
}

}  // namespace

int BScanParser::ReadEntity(FILE* file, const char* line) {
    return RunReader(*this, file, line, &MainPass::ReadEntity);
}

int BScanParser::ReadAttribute(FILE* file, const char* line) {
    return RunReader(*this, file, line, &MainPass::ReadAttribute);
}

int BScanParser::ReadConstant(FILE* file, const char* line) {
    return RunReader(*this, file, line, &MainPass::ReadConstant);
}

int BScanParser::ReadGeneric(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadGeneric);
}

int BScanParser::ReadPort(FILE* file, char* line) {
    return RunReader(*this, file, line, &MainPass::ReadPort);
}

int BScanParser::CreatePort(char* declaration) {
    if (declaration == nullptr) return bscan::kFailed;
    return GuardedCode([&] { return MainPass(*this, nullptr).CreatePort(declaration); });
}

int BScanParser::ReadBSCANPinMap(FILE* file, const char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadPinMap);
}

int BScanParser::MapPinNametoPinNumber(const char* pin) {
    if (pin == nullptr) return bscan::kNoPinName;
    return GuardedCode([&] {
        const MainPass pass(*this, nullptr);
        return MainPass::PinNumber(pass.SelectedPackage(), pin);
    });
}

int BScanParser::ReadPackageDB(char* bsdlFile) {
    return GuardedCode([&] {
        const FilePointer file = OpenForReading(bsdlFile);
        if (file == nullptr) return static_cast<int>(bscan::kCannotOpen);
        return PackagePass(*this, file.get()).Read();
    });
}

int BScanParser::ReadPortGroupingAttribute(FILE* file, const char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadPortGrouping);
}

int BScanParser::ReadBSCANBoundaryLength(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadBoundaryLength);
}

int BScanParser::ReadBSCANBoundaryRegister(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadBoundaryRegister);
}

int BScanParser::ReadInstructionLength(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadInstructionLength);
}

int BScanParser::ReadInstructionCapture(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadInstructionCapture);
}

int BScanParser::ReadInstructionOpcode(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadInstructionOpcode);
}

int BScanParser::ReadRegisterAccess(FILE* file, char* statement) {
    return RunReader(*this, file, statement, &MainPass::ReadRegisterAccess);
}
