// Finding port elements by name, pin name and pin number without walking over the pin list.
#pragma once

#include <bscan/object_list.h>

#include "support/list_access.h"
#include "support/name_table.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class LPinNode;

namespace bscan::detail {

// Answers as a walk over the pin list would. It learns what it needs at a lookup. Where a host can
// have changed names, or has changed the list itself, it walks; so it does when memory is short.
class PortIndex final : private ListOwner {
public:
    explicit PortIndex(LObjList& list);
    PortIndex(const PortIndex&) = delete;
    PortIndex& operator=(const PortIndex&) = delete;
    ~PortIndex();

    // The first element of a port name, given in upper case, and of a vector index if one is given;
    // null without one. As a walk does, it turns the names up to that element into upper case. With
    // a vector index, an element without a name ends the search.
    LPinNode* FirstNamed(std::string_view name, std::optional<int> vector_index = std::nullopt);
    // Turns the names up to an element into upper case, as finding it does.
    void UpperCaseUpTo(int position);
    // The k-th element, from 0, whose port name is exactly this.
    LPinNode* NthNamed(std::string_view name, int k);
    // The first element of a pin name, exactly.
    LPinNode* WithPinName(std::string_view name);
    // The first element of a pin number from 1 to the number of elements.
    LPinNode* WithPinNumber(int number);

    // The index is told what happens to the elements. A name is open once a host has a pointer that
    // it may write through: from then on the name may change unseen.
    void ElementsAdded();
    void PortNameOpened() { port_names_open_ = true; }
    void PinNameOpened() { pin_names_open_ = true; }
    void PinNameSet() { pin_names_known_ = false; }
    void PinNumberSet() { pin_numbers_known_ = false; }

    // Names to be read only; null when never set.
    static const char* PortNameOf(const LPinNode& node);
    static const char* PinNameOf(const LPinNode& node);

private:
    // Positions in the pin list of the elements that have to do with one name, in order.
    struct Bearers {
        std::vector<int> declared;          // of those declared with exactly this name
        std::vector<int> upper;             // of those whose name in upper case is this
        std::vector<int> first_with_index;  // the first in `upper` of each vector index, or -1
    };

    int Count() const;
    LPinNode* Node(int position) const;
    bool TryLearnPortNames() noexcept;  // false when a lookup has to walk
    void LearnPortNames();
    const Bearers* FindBearers(std::string_view name) const;
    Bearers& AddBearers(std::string_view name);
    void LearnPinNames();
    void LearnPinNumbers();

    LPinNode* WalkToName(std::string_view name, std::optional<int> vector_index);
    LPinNode* WalkToNth(std::string_view name, int k) const;
    LPinNode* WalkToPinName(std::string_view name) const;
    LPinNode* WalkToPinNumber(int number) const;

    // A host does this to the list itself.
    void Appended() override { list_changed_ = true; }
    void Removed(LObject* object) override;

    LObjList& list_;
    // These stay, once they are true.
    bool list_changed_ = false;
    bool port_names_open_ = false;
    bool pin_names_open_ = false;

    NameTable names_;
    std::vector<Bearers> bearers_;  // by the number of the name
    int learned_ = 0;               // the index has the port names before this position
    int upper_until_ = 0;           // before this position all names are in upper case already

    bool pin_names_known_ = false;
    std::map<std::string_view, LPinNode*> pin_names_;  // the first element of each
    bool pin_numbers_known_ = false;
    std::vector<LPinNode*> pin_numbers_;  // by number, the first element
};

}  // namespace bscan::detail
