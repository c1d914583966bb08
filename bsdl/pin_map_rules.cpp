// Rules about packages: which one is meant, and which pins its map gives to the ports.

#include "bsdl/checks.h"
#include "bsdl/nearest_name.h"
#include "support/text_view.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace bscan::detail {
namespace {

// Makers write such designators for ports that a package does not bond out.
bool IsNoPin(std::string_view designator) {
    constexpr std::string_view kNames[] = {"OPEN", "NC",   "N/C",  "NO_CONNECT",
                                           "NONE", "TIE0", "TIE1", "UNUSED"};
    return std::any_of(std::begin(kNames), std::end(kNames), [&](std::string_view name) {
        return EqualIgnoringCase(designator.substr(0, name.size()), name) &&
               designator.substr(name.size()).find_first_not_of("_0123456789") ==
                   std::string_view::npos;
    });
}

bool IsUndefined(std::string_view package) {
    return package.empty() || EqualIgnoringCase(package, "UNDEFINED");
}

// Looks at one pin map.
class PinMapCheck {
public:
    PinMapCheck(Checks& checks, const PinMap& map, std::vector<int>& last_map, int number)
        : checks_(checks), map_(map), last_map_(last_map), number_(number) {}

    void Run() {
        pins_.Reserve(map_.entries.size());
        for (const PinMapEntry& entry : map_.entries) {
            CheckEntry(entry);
            for (const Word& pin : entry.pins) CheckPin(pin);
        }
        if (checks_.doubts.pin_maps || checks_.doubts.ports) return;
        CheckMissing();
        CheckPartial();
    }

private:
    void CheckEntry(const PinMapEntry& entry) {
        const int number = checks_.ports.Find(entry.port.port.text);
        if (number == PortReferences::kNone) unknown_.push_back(&entry.port.port);
        if (number != PortReferences::kNone) MarkMapped(number);
        if (checks_.ports.Resolve(entry.port, kPinMapSubject) == PortReferences::kNone) return;
        const Port& port = checks_.ports.At(number);
        if (entry.port.index) NoteElement(number, entry);
        if (entry.port.index || entry.pins.empty()) return;
        const std::size_t count =
            port.range ? static_cast<std::size_t>(port.range->Count()) : std::size_t{1};
        if (entry.pins.size() == count) return;
        if (IsSingleBit(port) && !IsSignal(port.mode)) {
            checks_.found.Add(Rule::kPinListOfScalar, entry.port.port,
                              Quoted(port.name) + " is a single bit, but has " +
                                  Counted(entry.pins.size(), "pin"),
                              "declare it as a `bit_vector`, or write one pin");
        } else if (port.range || IsSingleBit(port)) {
            checks_.ports.NotePinCount(number, entry);
        }
    }

    void NoteElement(int port, const PinMapEntry& entry) {
        Elements& elements = elements_[port];
        if (elements.first == nullptr) elements.first = &entry;
        ++elements.count;
    }

    // Vectors of which the map gives some elements only.
    void CheckPartial() {
        for (const auto& [number, elements] : elements_) {
            const Port& port = checks_.ports.At(number);
            const int count = port.range->Count();
            if (elements.count >= count) continue;
            checks_.found.Add(Rule::kPinCount, elements.first->port.port,
                              Quoted(map_.name) + " has entries for " +
                                  std::to_string(elements.count) + " of the " +
                                  std::to_string(count) + " elements of " + Quoted(port.name),
                              "write one pin for each element");
        }
    }

    static bool IsSignal(PortMode mode) {
        return mode == PortMode::kIn || mode == PortMode::kOut || mode == PortMode::kInout ||
               mode == PortMode::kBuffer;
    }

    void MarkMapped(int port) {
        int& last = last_map_[static_cast<std::size_t>(port)];
        if (last != number_) ++mapped_;
        last = number_;
    }

    void CheckPin(const Word& pin) {
        const auto number = static_cast<std::size_t>(pins_.Add(pin.text));
        if (number == pin_words_.size()) {
            pin_words_.push_back(&pin);
            return;
        }
        if (IsNoPin(pin.text)) return;
        checks_.found.Add(Rule::kPinTwice, pin,
                          "the pin " + Quoted(pin) + " of " + Quoted(map_.name) +
                              " has been given to another port in line " +
                              std::to_string(pin_words_[number]->line));
    }

    // One finding for all ports that the map leaves out. A misspelt name leaves out one.
    void CheckMissing() {
        const std::size_t missing = checks_.ports.Count() - mapped_;
        // Many such maps must not cost a walk over all ports each.
        if (missing > 4 * mapped_ + 64) {
            checks_.found.Add(Rule::kPinMapIncomplete, map_.name,
                              "the pin map " + Quoted(map_.name) + " has pins for " +
                                  std::to_string(mapped_) + " of " +
                                  Counted(checks_.ports.Count(), "port"));
            return;
        }
        std::vector<int> ports;
        for (std::size_t i = 0; i < last_map_.size() && ports.size() < missing; ++i) {
            if (last_map_[i] != number_) ports.push_back(static_cast<int>(i));
        }
        for (const int port : ports) checks_.ports.NoteUnmapped(port);
        const std::size_t misspelt = RemoveMisspelt(ports);
        if (ports.size() + misspelt > unknown_.size()) ReportMissing(ports);
    }

    // Takes out the ports that misspelt entries mean, and tells how many they were.
    std::size_t RemoveMisspelt(std::vector<int>& ports) const {
        constexpr std::size_t kMostEntries = 8;
        constexpr std::size_t kMostPorts = 2000;
        if (ports.size() > kMostPorts) return 0;
        const std::size_t before = ports.size();
        for (std::size_t i = 0; i < std::min(unknown_.size(), kMostEntries); ++i) {
            const auto meant = std::find_if(ports.begin(), ports.end(), [&](int port) {
                return IsMisspelt(unknown_[i]->text, checks_.ports.At(port).name.text);
            });
            if (meant != ports.end()) ports.erase(meant);
        }
        return before - ports.size();
    }

    void ReportMissing(const std::vector<int>& ports) {
        constexpr std::size_t kMostNames = 5;
        const bool one = ports.size() == 1;
        std::string names;
        for (std::size_t i = 0; i < std::min(ports.size(), kMostNames); ++i) {
            names += (i == 0 ? "" : ", ") + Quoted(checks_.ports.At(ports[i]).name);
        }
        if (ports.size() > kMostNames) {
            names += " and " + std::to_string(ports.size() - kMostNames) + " more";
        }
        checks_.found.Add(Rule::kPortWithoutPin, checks_.ports.At(ports.front()).name,
                          (one ? "the port " : "the ports ") + names + (one ? " has" : " have") +
                              " no pin in " + Quoted(map_.name),
                          "add the pins to the map");
    }

    // The entries that a vector has for single elements.
    struct Elements {
        const PinMapEntry* first = nullptr;
        int count = 0;
    };

    Checks& checks_;
    const PinMap& map_;
    std::vector<int>& last_map_;  // by port: the number of the last map that names it
    int number_;
    std::size_t mapped_ = 0;            // ports that the map names
    std::vector<const Word*> unknown_;  // entries of unknown ports
    std::map<int, Elements> elements_;  // by port
    NameIndex pins_;
    std::vector<const Word*> pin_words_;  // by number in pins_
};

void CheckDefaultPackage(Checks& checks) {
    const Facts& facts = checks.facts;
    const Word& package = facts.default_package;
    NearestName nearest(package.text);
    for (const PinMap& map : facts.pin_maps) {
        if (EqualIgnoringCase(map.name.text, package.text)) return;
        nearest.Try(map.name.text);
    }
    if (IsUndefined(package.text)) {
        checks.found.Add(Rule::kPackageUndefined, package,
                         "the generic clause names no package; " +
                             Quoted(facts.pin_maps.front().name) + " is taken");
        return;
    }
    const std::string_view meant =
        nearest.Result().empty() ? facts.pin_maps.front().name.text : nearest.Result();
    checks.found.Add(Rule::kPackageUnknown, package,
                     "the package " + Quoted(package) + " has no pin map; that of " +
                         Quoted(facts.pin_maps.front().name) + " is taken",
                     "write " + Quoted(meant));
}

void CheckPinMapAttribute(Checks& checks) {
    const Facts& facts = checks.facts;
    const bool has =
        std::any_of(facts.others.begin(), facts.others.end(), [](const OtherStatement& other) {
            return !other.is_constant && EqualIgnoringCase(other.value, "PHYSICAL_PIN_MAP");
        });
    if (has) return;
    checks.found.Add(Rule::kPinMapAttributeMissing, facts.pin_maps.front().name,
                     "no attribute PIN_MAP tells how the package is chosen",
                     "write `attribute PIN_MAP of " + std::string(facts.entity.text) +
                         " : entity is PHYSICAL_PIN_MAP;`");
}

}  // namespace

void CheckPackages(Checks& checks) {
    const Facts& facts = checks.facts;
    if (checks.doubts.pin_maps || checks.doubts.statements) return;
    if (facts.pin_maps.empty()) {
        checks.found.Add(Rule::kPinMapMissing, facts.entity, "the file has no pin map",
                         "write a constant of type PIN_MAP_STRING for each package");
        return;
    }
    CheckPinMapAttribute(checks);
    if (facts.default_package.Exists()) {
        CheckDefaultPackage(checks);
    } else if (!facts.generic.Exists()) {
        checks.found.Add(Rule::kGenericMissing, facts.entity,
                         "the file has no generic clause that names a package; " +
                             Quoted(facts.pin_maps.front().name) + " is taken",
                         "write `generic (PHYSICAL_PIN_MAP : string := \"" +
                             std::string(facts.pin_maps.front().name.text) + "\");`");
    }
}

void CheckPinMaps(Checks& checks) {
    std::vector<int> last_map(checks.ports.Count(), -1);
    int number = 0;
    for (const PinMap& map : checks.facts.pin_maps) {
        PinMapCheck(checks, map, last_map, number++).Run();
    }
}

}  // namespace bscan::detail
