#include "model_difference.h"

#include <bscan/bscan.h>

#include "bsdl_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace tool {
namespace {

std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }

// A word without what the reading by lines leaves in it.
std::string Plain(const char* text) {
    std::string plain = LowerCase(Text(text));
    std::erase_if(plain, [](char c) { return c == '"' || c == ' ' || c == '_'; });
    return plain;
}

using Nodes = std::unordered_map<std::string, const LPinNode*>;

// The name of an element, the same in both models.
std::string Key(const LPinNode* node) {
    if (node == nullptr) return {};
    return fmt::format("{}({})", LowerCase(Text(bscan::PortName(*node))), node->GetVectorIndex());
}

Nodes NodesOf(const BScanParser& parser) {
    Nodes nodes;
    const BScanPinMap* map = parser.GetPinMap();
    const LObjList* list = map == nullptr ? nullptr : map->GetPinListArray();
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) {
        const auto* node = static_cast<const LPinNode*>(list->GetAt(i));
        if (node != nullptr) nodes.emplace(Key(node), node);
    }
    return nodes;
}

class Comparison {
public:
    Comparison(const BScanParser& model, const BScanParser& right) : model_(model), right_(right) {}

    Differences Compare() {
        CompareElements();
        CompareCells();
        CompareInstructions();
        CompareLists("registers", Registers(model_), Registers(right_), "of other instructions");
        CompareLists("differential pairs", Pairs(model_), Pairs(right_), "with other cells");
        return std::move(differences_);
    }

private:
    using Items = std::map<std::string, std::string>;

    void Add(const char* things, const char* difference, bool differs = true) {
        if (differs) ++differences_[{things, difference}];
    }

    void CompareElements() {
        const Nodes nodes = NodesOf(model_);
        const Nodes right_nodes = NodesOf(right_);
        for (const auto& [key, right] : right_nodes) {
            const auto found = nodes.find(key);
            if (found == nodes.end()) {
                Add("elements", "missing");
                continue;
            }
            const LPinNode& node = *found->second;
            Add("elements", "of another mode", node.GetPortType() != right->GetPortType());
            Add("elements", "with another package pin",
                Text(bscan::PinName(node)) != Text(bscan::PinName(*right)));
        }
        for (const auto& [key, node] : nodes) {
            Add("elements", "too many", right_nodes.count(key) == 0);
        }
    }

    void CompareCells() {
        const BScanPinMap* map = model_.GetPinMap();
        const BScanPinMap* right_map = right_.GetPinMap();
        const int length = map == nullptr ? 0 : map->GetBScanLength();
        const int right_length = right_map == nullptr ? 0 : right_map->GetBScanLength();
        for (int i = 0; i < right_length; ++i) {
            const LBScanCell& right = right_map->GetBScanCellTable()[i];
            const LBScanCell* cell = i < length ? &map->GetBScanCellTable()[i] : nullptr;
            if (cell == nullptr ||
                (cell->GetFunction() == FUNCTION_NONE && right.GetFunction() != FUNCTION_NONE)) {
                Add("cells", "missing");
            } else {
                CompareCell(*cell, right);
            }
        }
        for (int i = right_length; i < length; ++i) Add("cells", "too many");
    }

    static int ControlOf(const LBScanCell& cell) {
        const LBScanCell* control = cell.GetControlCell();
        return control == nullptr ? -1 : control->GetBoundaryCellPosition();
    }

    void CompareCell(const LBScanCell& cell, const LBScanCell& right) {
        Add("cells", "tied to another element", Key(cell.GetPinNode()) != Key(right.GetPinNode()));
        Add("cells", "of another type", cell.GetBScanCellType() != right.GetBScanCellType());
        Add("cells", "of another function", cell.GetFunction() != right.GetFunction());
        Add("cells", "with another safe value", cell.safeValue != right.safeValue);
        const int control = ControlOf(right);
        if (ControlOf(cell) != control) return Add("cells", "with another control cell");
        if (control < 0) return;
        Add("cells", "with another disable value", cell.disableValue != right.disableValue);
        Add("cells", "with another disable result", cell.disableResult != right.disableResult);
    }

    void CompareInstructions() {
        const CInstrRegisterDesc* model = model_.GetInstructionRegisterDescription();
        const CInstrRegisterDesc* right = right_.GetInstructionRegisterDescription();
        const auto length = [](const CInstrRegisterDesc* r) {
            return r == nullptr ? 0 : r->GetInstructionLength();
        };
        const auto capture = [](const CInstrRegisterDesc* r) {
            return r == nullptr ? std::string() : Plain(r->GetInstructionCapture());
        };
        Add("instruction registers", "of another length", length(model) != length(right));
        Add("instruction registers", "with another capture", capture(model) != capture(right));
        CompareLists("instructions", Opcodes(model), Opcodes(right), "with other opcodes");
    }

    static Items Opcodes(const CInstrRegisterDesc* description) {
        Items items;
        for (int i = 0; description != nullptr && i < description->GetInstructionOpcodeCount();
             ++i) {
            const CInstrOpcode& instruction = *description->GetInstructionOpcode(i);
            std::string& opcodes = items[Plain(instruction.GetInstruction())];
            for (int k = 0; k < instruction.GetOpcodeCount(); ++k) {
                opcodes += Plain(instruction.GetOpcode(k)) + ',';
            }
        }
        return items;
    }

    static Items Registers(const BScanParser& parser) {
        Items items;
        const CRegisterAccessDesc* access = parser.GetRegisterAccessDescription();
        for (int i = 0; access != nullptr && i < access->GetRegisterCount(); ++i) {
            const CRegister& data = *access->GetRegister(i);
            std::string& instructions = items[Plain(data.GetRegisterName())];
            for (int k = 0; k < data.GetRegisterAssociationCount(); ++k) {
                instructions += Plain(data.GetRegisterAssocName(k)) + ',';
            }
        }
        return items;
    }

    static Items Pairs(const BScanParser& parser) {
        Items items;
        for (const CDifferentialPair& pair : *parser.GetDifferentialPairList()) {
            items[Plain(pair.GetPositiveElement()) + Plain(pair.GetNegativeElement())] =
                fmt::format("{},{}", pair.GetPositiveBScanPosition(),
                            pair.GetNegativeBScanPosition());
        }
        return items;
    }

    void CompareLists(const char* things, const Items& model, const Items& right,
                      const char* difference) {
        for (const auto& [name, text] : right) {
            const auto found = model.find(name);
            if (found == model.end()) {
                Add(things, "missing");
            } else {
                Add(things, difference, found->second != text);
            }
        }
        for (const auto& [name, text] : model) Add(things, "too many", right.count(name) == 0);
    }

    const BScanParser& model_;
    const BScanParser& right_;
    Differences differences_;
};

}  // namespace

Differences CompareModels(const BScanParser& model, const BScanParser& right) {
    return Comparison(model, right).Compare();
}

}  // namespace tool
