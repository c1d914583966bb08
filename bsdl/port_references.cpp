#include "bsdl/port_references.h"

#include "bsdl/checks.h"
#include "bsdl/nearest_name.h"

#include <algorithm>
#include <string>

namespace bscan::detail {
namespace {

// Beyond these, looking for similar names costs more than it is worth.
constexpr std::size_t kMostCandidates = 2000;
constexpr std::size_t kMostSuggestions = 20;

const char* NameOf(Subject subject) {
    switch (subject) {
        case kPinMapSubject:
            return "the pin map";
        case kTapSubject:
            return "the TAP attributes";
        case kComplianceSubject:
            return "COMPLIANCE_PATTERNS";
        case kBoundarySubject:
            return "the boundary register";
        case kPairSubject:
            return "PORT_GROUPING";
    }
    return "";
}

// "the pin map and the boundary register".
std::string NamesOf(unsigned subjects) {
    std::string names;
    for (unsigned bit = kPinMapSubject; bit <= kPairSubject; bit *= 2) {
        if ((subjects & bit) == 0) continue;
        subjects -= bit;
        if (!names.empty()) names += subjects == 0 ? " and " : ", ";
        names += NameOf(static_cast<Subject>(bit));
    }
    return names;
}

std::string RangeText(const IndexRange& range) {
    return "(" + std::to_string(range.left) + (range.left > range.right ? " downto " : " to ") +
           std::to_string(range.right) + ")";
}

}  // namespace

PortReferences::PortReferences(Reading& reading)
    : ports_(reading.facts.ports),
      doubts_(reading.doubts),
      found_(reading.found),
      spans_(ports_.size()) {
    names_.Reserve(ports_.size());
    for (const Port& port : ports_) names_.Add(port.name.text);
}

int PortReferences::Resolve(const ElementName& element, Subject subject) {
    const int port = Find(element.port.text);
    if (port == kNone) {
        NoteUnknown(element.port, subject);
        return kNone;
    }
    if (!element.index) return port;
    const std::optional<IndexRange>& range = At(port).range;
    if (!range) {
        if (IsSingleBit(At(port))) {
            found_.Add(Rule::kIndexOfScalar, element.port,
                       Quoted(element) + " has an index, but " + Quoted(At(port).name) +
                           " is a single bit",
                       "write " + Quoted(At(port).name));
        }
        return kNone;
    }
    if (subject == kBoundarySubject) NoteSpan(port, *element.index);
    if (range->Contains(*element.index)) return port;
    RangeDoubt& doubt = range_doubts_[port];
    if (doubt.outside == nullptr) doubt.outside = &element;
    ++doubt.outside_count;
    return kNone;
}

int PortReferences::ResolveElement(const ElementName& element, Subject subject) {
    const int port = Resolve(element, subject);
    if (port == kNone || element.index || !At(port).range) return port;
    const IndexRange& range = *At(port).range;
    const std::string remedy =
        "write `" + std::string(element.port.text) + "(" + std::to_string(range.left) + ")`";
    if (range.Count() == 1) {
        found_.Add(Rule::kIndexLeftOut, element.port,
                   Quoted(element) + " is a vector of one element, and stands here without index",
                   remedy);
        return port;
    }
    found_.Add(
        Rule::kIndexMissing, element.port,
        Quoted(element) + " is a vector " + RangeText(range) + "; which of its elements is meant?",
        remedy + ", or another of its elements");
    return kNone;
}

void PortReferences::NoteUnknown(const Word& name, Subject subject) {
    const auto number = static_cast<std::size_t>(unknown_names_.Add(name.text));
    if (number == unknown_.size()) unknown_.push_back({&name, 0, 0});
    unknown_[number].subjects |= subject;
    ++unknown_[number].uses;
}

void PortReferences::NoteSpan(int port, int index) {
    Span& span = spans_[static_cast<std::size_t>(port)];
    const bool first = span.highest < span.lowest;
    span.lowest = first ? index : std::min(span.lowest, index);
    span.highest = first ? index : std::max(span.highest, index);
}

void PortReferences::NotePinCount(int port, const PinMapEntry& entry) {
    RangeDoubt& doubt = range_doubts_[port];
    if (doubt.miscounted == nullptr) doubt.miscounted = &entry;
    ++doubt.miscounted_count;
    if (doubt.miscounted->pins.size() != entry.pins.size()) doubt.counts_agree = false;
}

void PortReferences::Report() {
    if (!doubts_.ports) {
        for (std::size_t i = 0; i < unknown_.size(); ++i) {
            may_suggest_ = i < kMostSuggestions;
            ReportUnknown(unknown_[i]);
        }
    }
    for (const auto& [port, doubt] : range_doubts_) ReportRange(port, doubt);
}

std::string_view PortReferences::SimilarPort(std::string_view name) const {
    NearestName nearest(name);
    if (ports_.size() > kMostCandidates || !may_suggest_) return {};
    for (const Port& port : ports_) nearest.Try(port.name.text);
    return nearest.Result();
}

std::string_view PortReferences::SimilarUnmapped(std::string_view name) const {
    NearestName nearest(name);
    const std::size_t count = may_suggest_ ? std::min(unmapped_.size(), kMostCandidates) : 0;
    for (std::size_t i = 0; i < count; ++i) {
        nearest.Try(At(unmapped_[i]).name.text);
    }
    return nearest.Result();
}

void PortReferences::ReportUnknown(const UnknownName& unknown) {
    const bool several_subjects = (unknown.subjects & (unknown.subjects - 1)) != 0;
    if (several_subjects) {
        ReportUndeclared(unknown);
        return;
    }
    std::string_view similar = SimilarUnmapped(unknown.first->text);
    if (similar.empty()) similar = SimilarPort(unknown.first->text);
    std::string message = Quoted(*unknown.first) + " in " +
                          NameOf(static_cast<Subject>(unknown.subjects)) + " is no port";
    if (unknown.uses > 1) message += ", and is named " + Counted(unknown.uses, "time");
    found_.Add(Rule::kPortUnknown, *unknown.first, message,
               similar.empty() ? "declare the port, or write the name of one that is declared"
                               : "write " + Quoted(similar));
}

// Where several parts of the file agree on a name, its declaration is wrong or missing. A port that
// no pin map has is then the one that was meant.
void PortReferences::ReportUndeclared(const UnknownName& unknown) {
    const int port = Find(SimilarUnmapped(unknown.first->text));
    if (port != kNone) {
        found_.Add(Rule::kPortUndeclared, At(port).name,
                   "the port " + Quoted(At(port).name) + " is in no pin map, while " +
                       Quoted(*unknown.first) + ", of which " + NamesOf(unknown.subjects) +
                       " speak, is not declared",
                   "write " + Quoted(*unknown.first));
        return;
    }
    found_.Add(Rule::kPortUndeclared, *unknown.first,
               "no port " + Quoted(*unknown.first) + " is declared, but " +
                   NamesOf(unknown.subjects) + " speak of it",
               "declare " + Quoted(*unknown.first) + " in the port clause");
}

// The range is wrong when parts of the file that know nothing of each other speak against it.
bool PortReferences::RangeIsGuilty(int port, const RangeDoubt& doubt) const {
    if (doubt.miscounted == nullptr || !At(port).range) return false;
    if (doubt.outside != nullptr) return true;
    const Span& span = spans_[static_cast<std::size_t>(port)];
    const int used = span.highest - span.lowest + 1;
    if (used > 0 && static_cast<std::size_t>(used) == doubt.miscounted->pins.size()) return true;
    return doubt.miscounted_count > 1 && doubt.counts_agree;
}

void PortReferences::ReportRange(int port_number, const RangeDoubt& doubt) {
    const Port& port = At(port_number);
    if (RangeIsGuilty(port_number, doubt)) {
        found_.Add(
            Rule::kPortRange, port.type,
            Quoted(port.name) + " is declared " + RangeText(*port.range) + ", but has " +
                Counted(doubt.miscounted->pins.size(), "pin") + " in the pin map" +
                (doubt.outside != nullptr ? ", and " + Quoted(*doubt.outside) + " is used" : ""),
            "write the range that the pin map and the boundary register have");
        return;
    }
    if (doubt.outside != nullptr) {
        std::string message = Quoted(*doubt.outside) + " is outside the range " +
                              RangeText(*port.range) + " of " + Quoted(port.name);
        if (doubt.outside_count > 1) {
            message += ", as are " + std::to_string(doubt.outside_count - 1) + " more uses of it";
        }
        found_.Add(Rule::kIndexOutside, doubt.outside->port, message);
    }
    if (doubt.miscounted == nullptr) return;
    found_.Add(
        Rule::kPinCount, doubt.miscounted->port.port,
        "the entry of " + Quoted(port.name) + " has " +
            Counted(doubt.miscounted->pins.size(), "pin") + ", the port " +
            Counted(static_cast<std::size_t>(port.range ? port.range->Count() : 1), "element"),
        "write one pin for each element");
}

}  // namespace bscan::detail
