// Makes the model of a device out of what its file says.
#pragma once

#include <bscan/facts.h>
#include <bscan/parser.h>

#include "bsdl/element_table.h"

#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// Fills a parser without a model, one subject after the other. It throws when memory is exhausted;
// what was filled before stays.
class ModelFiller {
public:
    ModelFiller(const Facts& facts, const PinMap* package, BScanParser& parser)
        : facts_(facts), package_(package), parser_(parser) {}

    static bool HasModel(const BScanParser& parser);

    void Fill(std::string_view file_name);

private:
    // An element and the first package pin that its pin map entry gives it.
    struct Bond {
        int place;
        std::string_view pin;
        std::size_t coming;  // how many pins of the pin map come before it
        int number;
    };
    // One leg of a differential pair.
    struct Leg {
        std::string name;       // in upper case, with its declared index
        std::string cell_name;  // as its cells are called
        int place;              // of its element; -1 without one
    };

    static std::string LowerCased(std::string_view text);
    void CreateDevice();
    LPinNode& Element(int place) const;
    // The place of the element that a name means; -1 without one.
    int PlaceOf(const ElementName& name);

    void AddPorts();
    void AddIoNames();

    void BondPins();
    void CollectBonds();
    bool HasLetteredPins() const;
    void NumberByPackage();
    void NumberByValue();
    bool IsEachNumberFound() const;
    void NumberByOrder();
    void PublishPackage();

    void AddInstructions();
    void AddRegisters();

    void AddCells();
    void AddCell(const Cell& cell, int length);
    int RegisterLength() const;

    void AddPairs();
    const PlacedPort* OpenVector(const ElementName& name) const;
    Leg LegOf(const ElementName& name);
    Leg LegOf(const ElementName& name, const PlacedPort* vector, int k);
    void AddPair(const Leg& positive, const Leg& negative);
    void CompletePair(CDifferentialPair& pair, const Leg& positive, const Leg& negative);
    int OwnCell(const Leg& leg) const;

    const Facts& facts_;
    const PinMap* package_;  // null for none
    BScanParser& parser_;
    ElementTable elements_;
    std::vector<Bond> bonds_;
    std::vector<std::string> pins_;  // of the package, in the order of their numbers
    std::vector<int> own_cells_;     // lowest cell whose entry names an element, by its place
    int looked_at_ = 0;              // elements that finding the named ones has passed
    std::string port_name_;
    std::string remark_;
};

}  // namespace bscan::detail
