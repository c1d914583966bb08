// The package pins of one device, and what its file says of them beside cells.
#pragma once

#include <bscan/chain.h>
#include <bscan/facts.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace bscan::detail {

class DevicePins {
public:
    // `facts` may be null; then designators are those of the model.
    DevicePins(const Chain& chain, int device, const Facts* facts);

    // The port elements on a package pin; none when the package lacks it.
    std::vector<int> Find(const std::string& designator) const;
    // The designators of the package, in the order of the file.
    const std::vector<std::string>& All() const { return designators_; }

    bool IsTap(int element) const { return tap_.count(element) != 0; }
    bool IsCompliance(int element) const { return compliance_.count(element) != 0; }
    // The level that compliance demands of an element, where it demands one.
    std::optional<bool> ComplianceLevel(int element) const;
    // The positive leg of the differential pair of which an element is the negative one; -1 of
    // none.
    int LeaderOf(int element) const;
    // Whether an element could drive its pin and has no cell by which to know or stop it.
    bool CouldDriveAlone(int element) const;

private:
    void ReadPackage(const Chain& chain, const Facts& facts);
    void ReadPorts(const Chain& chain, const Facts& facts);
    void ReadPairs(const Chain& chain, const Facts& facts);
    void ReadCompliance(const Chain& chain, const Compliance& compliance);
    void Add(const std::string& designator, int element);
    std::vector<int> Elements(const Chain& chain, const ElementName& name) const;

    int device_;
    const PinDriver* driver_;
    std::unordered_map<std::string, std::vector<int>> by_designator_;
    std::vector<std::string> designators_;
    std::unordered_set<int> tap_;
    std::unordered_map<int, std::optional<bool>> compliance_;
    std::unordered_set<int> harmless_;  // of modes that never drive
    std::unordered_map<int, int> leaders_;
};

}  // namespace bscan::detail
