#include "drawing/declared_elements.h"

#include <algorithm>

namespace bscan::drawing {
namespace {

char Upper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
}

std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }

}  // namespace

std::string DeclaredElement::Label() const {
    const std::string name(port->name.text);
    return index ? name + "(" + std::to_string(*index) + ")" : name;
}

std::vector<DeclaredElement> DeclaredElements(const Facts& facts, const BScanPinMap* device) {
    std::vector<DeclaredElement> elements;
    const LObjList* const nodes = device == nullptr ? nullptr : device->GetPinListArray();
    if (nodes == nullptr) return elements;
    int place = 0;
    for (const Port& port : facts.ports) {
        const int count = port.range ? port.range->Count() : 1;
        // A port that passes the library's ceilings has no elements.
        const auto* const first = static_cast<const LPinNode*>(nodes->GetAt(place));
        if (first == nullptr || !SameName(Text(PortName(*first)), port.name.text)) continue;
        for (int k = 0; k < count && place < nodes->GetCount(); ++k, ++place) {
            auto* const node = static_cast<LPinNode*>(nodes->GetAt(place));
            DeclaredElement element{node, &port, std::nullopt, Text(PinName(*node))};
            if (port.range) {
                const bool ascending = port.range->left <= port.range->right;
                element.index = ascending ? port.range->left + k : port.range->left - k;
            }
            elements.push_back(std::move(element));
        }
    }
    return elements;
}

std::vector<LBScanCell*> CellsOf(const LPinNode& node) {
    std::vector<LBScanCell*> cells;
    const LObjList* const list = node.GetBScanCells();
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) {
        cells.push_back(static_cast<LBScanCell*>(list->GetAt(i)));
    }
    return cells;
}

std::string UpperCased(std::string_view name) {
    std::string upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
    return upper;
}

bool SameName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Upper(a) == Upper(b); });
}

bool Means(const ElementName& name, const DeclaredElement& element) {
    if (!name.port.Exists() || !SameName(name.port.text, element.port->name.text)) return false;
    if (element.index && name.index) return *element.index == *name.index;
    const bool single = !element.port->range || element.port->range->Count() == 1;
    return single && (element.index || name.index.value_or(0) == 0);
}

}  // namespace bscan::drawing
