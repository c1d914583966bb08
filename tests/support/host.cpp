#include "host.h"

#include <bscan/text.h>

#include "oracle.h"

#include <climits>
#include <iterator>
#include <memory>
#include <set>

namespace bscan::test {

namespace {

constexpr int kMostPorts = 2000;
constexpr int kIntegers[] = {INT_MIN, INT_MIN + 1, -19, -1, (1 << 20) + 1, INT_MAX - 1, INT_MAX};
// Few names in different letter case, so that they collide.
constexpr const char* kNames[] = {"A",     "a",     "Ab",   "aB",    "b[", "B{",    "b0",
                                  "",      "in",    "out",  "inout", "B0", "INPUT", "output3",
                                  "Bidir", "clock", "BC_1", "bc_7",  "X",  "A1",    "observe_only"};
bool Suits(PortType mode, CellFunction function) {
    static const std::set<CellFunction> kSuitable[] = {
        {INPUT, CLOCK, OBSERVE_ONLY},
        {OUTPUT2, OUTPUT3},
        {INPUT, OUTPUT2, OUTPUT3, BIDIR, BIDIR_IN, BIDIR_OUT, OBSERVE_ONLY},
        {OUTPUT2}};
    return mode >= PORT_IN && mode <= PORT_BUFFER && kSuitable[mode].count(function) > 0;
}

class Host {
public:
    explicit Host(std::string_view input) : rest_(input) {}

    std::string Work() {
        constexpr void (Host::*kSteps[])() = {
            &Host::AddPorts,  &Host::ChangeList, &Host::ChangePort, &Host::WriteName,
            &Host::FillCells, &Host::ChangeCell, &Host::Associate,  &Host::FindPort,
            &Host::FindByPin, &Host::FindCell,   &Host::ChangeMap};
        while (!rest_.empty() && fault_.empty()) {
            (this->*kSteps[Below(std::size(kSteps))])();
            for (int n = map_->GetBScanLength(); n % 8 != 0; ++n) {
                Check(!map_->GetBScanBitArray() || !BitAt(*map_, n), "a bit past the register");
            }
        }
        return fault_;
    }

private:
    void Check(bool holds, const char* fault) {
        if (!holds) fault_ = fault;
    }

    // Decisions come off the input from its front; at its end all are 0.

    unsigned Byte() {
        if (rest_.empty()) return 0;
        const auto byte = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }
    unsigned Below(std::size_t limit) { return Byte() % static_cast<unsigned>(limit); }
    bool Coin() { return (Byte() & 1) != 0; }
    int Integer() {
        const unsigned byte = Byte();
        return byte < std::size(kIntegers) ? kIntegers[byte] : static_cast<int>(byte) - 8;
    }
    template <class Enumeration>
    Enumeration Any() {
        return static_cast<Enumeration>(Integer());
    }
    Text Name() {
        const unsigned choice = Byte();
        return choice == 255 ? Text(nullptr) : Text(kNames[choice % std::size(kNames)]);
    }
    LPinNode* Port() {
        const int count = map_->GetNumberOfPins();
        return count > 0 ? NodeAt(*map_, static_cast<int>(Below(static_cast<unsigned>(count))))
                         : nullptr;
    }
    LBScanCell* Cell() {
        const unsigned choice = Byte();
        if (choice == 255) return nullptr;
        const int length = map_->GetBScanLength();
        if (choice < std::size(cells_) || length == 0) return &cells_[choice % std::size(cells_)];
        return map_->GetBScanCellTable() + choice % static_cast<unsigned>(length);
    }
    /// Lets go of what is about to be destroyed.
    void LetGo() {
        for (LBScanCell& cell : cells_) cell.SetControlCell(nullptr);
        removed_.clear();
    }

    // What a host does to the device.

    /// Begins a device anew; a removed node outlives the old one.
    void ChangeMap() {
        LetGo();
        ChangeList();
        map_ = std::make_unique<BScanPinMap>();
    }
    void AddPorts() {
        if (map_->GetNumberOfPins() > kMostPorts) return;
        const int from = Integer();
        if (Coin()) return map_->AddNewPorts(Name(), Name(), from, Coin());
        const int to = Integer();
        const auto span = std::abs(static_cast<std::int64_t>(to) - from);
        if (span < 300 || span > 1 << 20) map_->AddNewPorts(Name(), Name(), from, to);
    }
    void ChangeList() {
        LObjList& list = *map_->GetPinListArray();
        const unsigned choice = Below(4);
        if (choice == 0) return list.AddTail(nullptr);
        if (choice == 1) return list.AddTail(new LPinNode);
        if (choice == 2 && !removed_.empty()) {
            list.AddTail(removed_.back().release());
            removed_.pop_back();
        } else if (auto* const node = static_cast<LPinNode*>(list.RemoveTail())) {
            removed_.emplace_back(node);
        }
    }
    void ChangePort() {
        LPinNode* const node = Coin() || removed_.empty() ? Port() : removed_.back().get();
        const unsigned choice = Below(8);
        if (choice == 0) return map_->SerialSetPinNumber(Name(), Integer(), Integer());
        if (choice == 1) return map_->SerialSetPinName(Name(), Integer(), Name());
        if (choice == 2) return map_->SetPinNumber(Name(), Integer(), Integer());
        if (!node) return;
        if (choice == 3) node->SetPortName(Name());
        if (choice == 4) node->SetPinName(Name());
        if (choice == 5) node->SetPortType(Name());
        if (choice == 6) node->SetPinNumber(Integer());
        if (choice == 7) Coin() ? node->SetPositive(Coin()) : node->SetNegative(Coin());
    }
    /// Writes through the pointer to a name, also when lookups have learned names in between.
    void WriteName() {
        LPinNode* const node = Port();
        if (!node) return;
        char* at = Coin() ? node->GetPortName() : node->GetPinName();
        if (Coin()) FindByPin();
        if (Coin()) FindPort();
        for (; at && *at != '\0'; ++at) *at = kNames[Below(4)][0];
        FindByPin();
    }
    void FillCells() {
        if (Below(4) == 0) {
            LetGo();
            return map_->AllocateBScanCellTable(Integer());
        }
        const int n = Integer();
        const int control = Integer();
        const int result =
            map_->AddNewRegister(n, Name(), Name(), Integer(), Name(), Any<eSignal>(), control,
                                 Any<eSignal>(), Any<eSignal>(), Any<eSignal>(), Name());
        const int length = map_->GetBScanLength();
        Check(result == -1 || (n >= 0 && n < length && control < length), "an unknown cell filled");
    }
    void ChangeCell() {
        LBScanCell* const cell = Cell();
        if (!cell) return;
        const unsigned choice = Below(8);
        if (choice == 0) cell->SetBoundaryCellPosition(Integer());
        if (choice == 1) cell->SetPinName(Name());
        if (choice == 2) cell->SetOriginalPinName(Name());
        if (choice == 3) cell->SetControlCell(Cell());
        if (choice == 4) cell->SetFunction(Name());
        if (choice == 5) cell->SetFunction(Any<CellFunction>());
        if (choice == 6) cell->SetPinNode(Port());
        if (choice == 7) *cell = *(Coin() ? cell : &cells_[Below(std::size(cells_))]);
    }
    void Associate() {
        LPinNode* const node = Port();
        if (!node) return;
        LBScanCell* const cell = Cell();
        if (LObjList* const list = node->GetBScanCells(); list && Coin()) {
            return Coin() ? list->AddTail(cell) : static_cast<void>(list->RemoveTail());
        }
        const bool suits = cell && Suits(node->GetPortType(), cell->GetFunction());
        Check(node->AssociateBScanCell(cell) == (suits ? 0 : -1), "an unsuitable cell");
    }

    // What a host asks of the device.

    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (int i = 0; i < map_->GetNumberOfPins(); ++i) {
            const LPinNode* const node = NodeAt(*map_, i);
            names.push_back(node && PortName(*node) ? PortName(*node) : "(null)");
        }
        return names;
    }
    /// Finds by name, and by index if there is one, as a walk does that turns the names which it
    /// passes into upper case.
    void FindPort() {
        Text name = Name();
        Text sought(+name ? +name : "");
        const bool indexed = Coin();
        const int index = Integer();
        std::vector<std::string> names = Names();
        LPinNode* port = nullptr;
        const int count = indexed && *sought == '\0' ? 0 : map_->GetNumberOfPins();
        for (int i = 0; i < count && !port; ++i) {
            LPinNode* const node = NodeAt(*map_, i);
            const char* const passed = node ? PortName(*node) : nullptr;
            if (indexed && node && !passed) break;
            if (!passed) continue;
            strupr(names[static_cast<std::size_t>(i)].data());
            const bool meant = !indexed || index == node->GetVectorIndex();
            if (meant && stricmp(passed, sought) == 0) port = node;
        }
        if (indexed) {
            Check(map_->GetPort(sought, index) == port, "a port by name and index");
        } else {
            const LBScanCell* const input = port ? RolesOf(*port).input : nullptr;
            const int position = input ? input->GetBoundaryCellPosition() : port ? 0 : -1;
            Check(map_->GetPortwName(sought) == port, "a port by name");
            Check(map_->GetPinIndexwPortName(sought) == position, "an input cell by name");
            Check(map_->GetPinNumberwPortName(sought) == (port ? port->GetPinNumber() : -1),
                  "a number by name");
        }
        Check(Names() == names, "names up to the match are in upper case");
    }
    void FindByPin() {
        const int number = Integer();
        Text pin = Name();
        if (const LPinNode* const port = Port(); port && Coin()) pin = Text(PinName(*port));
        LPinNode* numbered = nullptr;
        LPinNode* named = nullptr;
        for (int i = map_->GetNumberOfPins() - 1; i >= 0; --i) {
            LPinNode* const node = NodeAt(*map_, i);
            if (node && node->GetPinNumber() == number) numbered = node;
            if (node && pin && PinName(*node) && std::string(PinName(*node)) == +pin) named = node;
        }
        if (number < 1 || number > map_->GetNumberOfPins()) numbered = nullptr;
        Check(map_->GetPort(number) == numbered, "a port by number");
        Check(map_->GetPort(static_cast<const char*>(pin)) == named, "a port by pin");
        Check(map_->GetPinNumber(pin) == (named ? named->GetPinNumber() : -1), "a number by pin");
        Check(map_->GetPortType(number) == (numbered ? numbered->GetPortType() : PORT_NONE) &&
                  map_->IsPositiveElement(number) == (numbered && numbered->IsPositive()) &&
                  map_->IsNegativeElement(number) == (numbered && numbered->IsNegative()),
              "a mode or a leg by number");
        if (Below(8) == 0) map_->GetPortName(number);
        if (Below(8) == 0) map_->GetPinName(number);
    }
    void FindCell() {
        Text name = Name();
        Text sought(+name ? +name : "");
        for (int times = Coin() ? 10 : 1; times > 0; --times) {
            Check(map_->GetBScanCell(sought) == WalkToCell(*map_, &LBScanCell::GetPinName, sought),
                  "a cell by pin name");
            Check(map_->GetBScanCellByOriginalName(sought) ==
                      WalkToCell(*map_, &LBScanCell::GetOriginalPinName, sought),
                  "a cell by original name");
        }
    }
    std::string_view rest_;
    std::string fault_;
    LBScanCell cells_[4];  // of the host; they outlive every device
    std::unique_ptr<BScanPinMap> map_ = std::make_unique<BScanPinMap>();
    std::vector<std::unique_ptr<LPinNode>> removed_;
};

}  // namespace

std::string FindFaultInWork(std::string_view input) { return Host(input).Work(); }

}  // namespace bscan::test
