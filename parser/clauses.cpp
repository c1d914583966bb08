// The generic and port clauses, which make the ports of the device.

#include <bscan/result.h>

#include "model/device_builder.h"
#include "parser/main_pass.h"
#include "parser/port_text.h"
#include "support/text_view.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace bscan::detail {

bool MainPass::EnsurePinMap() {
    if (parser_.pin_map_ != nullptr) return true;
    std::unique_ptr<BScanPinMap> device(new (std::nothrow) BScanPinMap);
    if (device == nullptr || !DeviceBuilder(*device).Usable()) return false;
    parser_.pin_map_ = std::move(device);
    return true;
}

int MainPass::ReadGeneric(std::string& statement) {
    const int result = reader_.Complete(statement, Terminator::Text(";"));
    if (result != kOk) return result;
    if (!EnsurePinMap()) return kNoPinMap;
    if (!Contains(statement, "PHYSICAL_PIN_MAP")) return kOk;
    // The first quoted text counts, whichever generic it belongs to.
    const Parts parts = CutTrimmed(CutTrimmed(statement, '"').after, '"');
    std::string package(parts.before);
    LowerCase(package);
    parser_.package_type_ = std::move(package);
    return kOk;
}

int MainPass::ReadPort(std::string& statement) {
    std::string first(TrimLeft(CutAt(statement, '(').after));
    int result = kOk;
    if (!first.empty()) {
        result = reader_.Complete(first, Terminator::Text(";"));
        if (result != kOk) return result;
        result = CreatePort(first);
    }
    PortClauseEnd end;
    end.BeginWith(first);
    while (result == kOk && !end.IsReached()) {
        std::string_view declaration;
        // From here on the statement is storage for declarations of several lines.
        result = reader_.NextStatement(Terminator::Text(";"), statement, declaration);
        if (result != kOk || PortClauseEnd::IsEndLine(declaration)) return result;
        end.GoOnWith(declaration);
        result = CreatePort(declaration);
    }
    return result;
}

int MainPass::CreatePort(std::string_view text) {
    if (!EnsurePinMap()) return kNoPinMap;
    const PortDeclaration declaration = CutPortDeclaration(text);
    DeviceBuilder device(*parser_.pin_map_);
    if (EqualIgnoringCase(declaration.mode, "inout")) device.AddIoNames(declaration.names);
    const std::int64_t left = declaration.left;
    const std::int64_t right = declaration.right;
    // A vector with a negative bound has no elements.
    if (declaration.is_vector && (left < 0 || right < 0)) return kOk;
    const std::int64_t count = declaration.is_vector ? std::abs(right - left) + 1 : 1;
    std::string_view names = declaration.names;
    for (std::string_view name; TakePortName(names, name);) {
        device.AddPorts(name, declaration.mode, count, left <= right);
    }
    return kOk;
}

}  // namespace bscan::detail
