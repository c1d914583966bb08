// One device as the module holds it.
#pragma once

#include <bscan/description.h>
#include <bscan/parser.h>
#include <bscan/pin_driver.h>
#include <bscan/pin_names.h>

#include "drawing/declared_elements.h"
#include "pin_requests.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace bscan::python {

/// A file, the model that was filled from it, and what drives its pins. Objects of Python share it
/// and keep it alive. What it has read never changes; the vector is changed with Python's lock
/// held.
class Device {
public:
    /// @param description  of a file with an entity.
    /// @param package  one of its packages; empty for the one that it names itself. Throws Problem
    ///        when it has no such package.
    Device(std::shared_ptr<const Description> description, std::string package);

    const std::shared_ptr<const Description>& Source() const { return description_; }
    const std::string& PackageAsked() const { return package_; }
    const Facts& GetFacts() const { return description_->GetFacts(); }
    BScanParser& Parser() { return parser_; }
    BScanPinMap& Map();
    std::string PackageName();
    const std::vector<drawing::DeclaredElement>& Elements() const { return elements_; }
    /// The element of a node of the device; null for none.
    const drawing::DeclaredElement* Find(const LPinNode* node) const;
    const PinNames& Names() const { return names_; }
    PinDriver& Driver() { return *driver_; }

    PinRequests& Requests() { return *requests_; }

private:
    std::shared_ptr<const Description> description_;
    std::string package_;
    BScanParser parser_;
    BScanPinMap without_ports_;
    std::vector<drawing::DeclaredElement> elements_;
    std::unordered_map<const LPinNode*, std::size_t> places_;
    std::unique_ptr<PinDriver> driver_;
    PinNames names_;
    std::unique_ptr<PinRequests> requests_;
};

/// Fills a parser, as Description::Fill.
///
/// @param package  empty for the package that the file names itself. Throws Problem.
void Fill(const Description& description, const std::string& package, BScanParser& parser);

}  // namespace bscan::python
