// Finding port elements by name, pin name and pin number without walking the pin list.
#pragma once

#include <bscan/object_list.h>

#include "model/port_runs.h"
#include "support/list_access.h"
#include "support/name_table.h"

#include <optional>
#include <string_view>
#include <vector>

class LPinNode;

namespace bscan::detail {

// Answers as a walk over the pin list would, which is the rule that callers rely on:
//
// - The index speaks for the elements that the device pin map has made itself, as long as nobody
//   can change their names unseen. An element is *exposed* once a writable pointer to its name is
//   out or the host has renamed it; exposed elements, and those that a host has appended to the
//   list, are looked at one by one in their places. What the index finds counts only when none of
//   them comes first.
// - A lookup by port name turns the stored names up to its match into upper case, as the walk does.
//   Up to `upper_until_` that is done already, so all lookups together do it once.
//
// When memory for the index is short it gives up and every lookup walks.
class PortIndex final : private ListOwner {
public:
    explicit PortIndex(LObjList& list);
    PortIndex(const PortIndex&) = delete;
    PortIndex& operator=(const PortIndex&) = delete;
    ~PortIndex();

    // Takes in elements just appended to the list. No name means that they have none.
    void Added(std::optional<std::string_view> name, const PortRun& run) noexcept;

    // The first element of a port name, given in upper case; null without one.
    LPinNode* FirstNamed(std::string_view name);
    // The first element of a port name with a vector index. An element without a name ends the
    // search.
    LPinNode* FirstNamed(std::string_view name, int vector_index);
    // The k-th element, from 0, whose port name is exactly this.
    LPinNode* NthNamed(std::string_view name, int k);
    // The first element of a pin name, exactly.
    LPinNode* WithPinName(std::string_view name);
    // The first element of a pin number that is not 0.
    LPinNode* WithPinNumber(int number);

    // What an element tells of itself.
    void PortNameExposed(const LPinNode& node);
    void PinNameExposed(const LPinNode& node);
    void PinNamesChanged() { pin_names_known_ = false; }
    void PinNumbersChanged() { pin_numbers_known_ = false; }

    // Names to be read only; null when never set.
    static const char* PortNameOf(const LPinNode& node);
    static const char* PinNameOf(const LPinNode& node);

private:
    struct SameName {
        PortRuns folded;   // of the elements whose name in upper case is this
        PortRuns spelled;  // of the elements that were declared with exactly this name
    };
    struct Found {
        LPinNode* node;
        int last;  // position at which the search ended
    };
    // Positions in the pin list, brought into order when they are needed.
    struct Positions {
        std::vector<int> sorted;
        bool in_order = true;
    };

    int Count() const;
    LPinNode* Node(int position) const;
    void GiveUp();
    SameName& Same(std::string_view name);
    void Expose(Positions& exposed, int position);
    const std::vector<int>& InOrder(Positions& positions);
    void UpperCaseUpTo(int position);
    static std::string_view UpperCasedName(LPinNode& node);
    const PortRuns* Folded(std::string_view name) const;
    int NthSpelled(std::string_view name, int k) const;
    void LearnPinNames();
    void LearnPinNumbers();

    template <class Matches>
    Found FirstOf(int candidate, Positions& exposed, Matches matches);
    template <class Matches>
    LPinNode* FirstByName(int known, Matches matches);

    // A host has taken an element off the list: it is no longer ours, and positions mean nothing.
    void Removed(LObject* object) override;

    LObjList& list_;
    int indexed_ = 0;  // the index speaks for the elements before this position

    NameTable names_;
    std::vector<SameName> same_names_;
    int upper_until_ = 0;
    Positions exposed_names_;

    NameTable pin_names_;
    std::vector<int> first_with_pin_name_;
    bool pin_names_known_ = false;
    Positions exposed_pin_names_;

    std::vector<LPinNode*> first_with_number_;
    bool pin_numbers_known_ = false;
};

}  // namespace bscan::detail
