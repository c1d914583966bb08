// Who speaks of which port. A wrong name or range shows in many places: what is found there is
// gathered by port, so that the one guilty word is pointed at.
#pragma once

#include <bscan/facts.h>

#include "bsdl/name_index.h"
#include "bsdl/reading.h"

#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

namespace bscan::detail {

// A part of the file that names ports.
enum Subject : unsigned {
    kPinMapSubject = 1,
    kTapSubject = 2,
    kComplianceSubject = 4,
    kBoundarySubject = 8,
    kPairSubject = 16,
};

class PortReferences {
public:
    static constexpr int kNone = NameIndex::kNone;

    explicit PortReferences(Reading& reading);

    std::size_t Count() const { return ports_.size(); }
    const Port& At(int port) const { return ports_[static_cast<std::size_t>(port)]; }
    // The number of the port of that name; kNone without one.
    int Find(std::string_view name) const { return names_.Find(name); }

    // The number of the port that is meant. An unknown name or an index that the port does not
    // have gives kNone; it is remembered and told by Report().
    int Resolve(const ElementName& element, Subject subject);
    // The same where a single element is wanted: a vector has to have an index.
    int ResolveElement(const ElementName& element, Subject subject);

    // Remembers that a pin map entry for a whole port has another number of pins than the port has
    // elements.
    void NotePinCount(int port, const PinMapEntry& entry);
    // Remembers that a pin map leaves out a port: its declaration may be the misspelt one.
    void NoteUnmapped(int port) { unmapped_.push_back(port); }

    // Tells what was gathered; once all references are resolved.
    void Report();

private:
    struct UnknownName {
        const Word* first;
        unsigned subjects;
        std::size_t uses;
    };
    // What contradicts the range of a port.
    struct RangeDoubt {
        const ElementName* outside = nullptr;  // the first element that the range does not have
        std::size_t outside_count = 0;
        const PinMapEntry* miscounted = nullptr;  // the first entry with a wrong number of pins
        std::size_t miscounted_count = 0;
        bool counts_agree = true;  // all such entries have as many pins
    };
    // The declared indexes that the boundary register names of a vector.
    struct Span {
        int lowest = 0;
        int highest = -1;
    };

    void NoteUnknown(const Word& name, Subject subject);
    void NoteSpan(int port, int index);
    void ReportUnknown(const UnknownName& unknown);
    void ReportUndeclared(const UnknownName& unknown);
    void ReportRange(int port, const RangeDoubt& doubt);
    bool RangeIsGuilty(int port, const RangeDoubt& doubt) const;
    std::string_view SimilarPort(std::string_view name) const;
    std::string_view SimilarUnmapped(std::string_view name) const;

    const std::vector<Port>& ports_;
    const Doubts& doubts_;
    FindingList& found_;
    NameIndex names_;
    NameIndex unknown_names_;
    std::vector<UnknownName> unknown_;  // by number in unknown_names_
    std::map<int, RangeDoubt> range_doubts_;
    std::vector<Span> spans_;
    std::vector<int> unmapped_;
    bool may_suggest_ = true;
};

}  // namespace bscan::detail
