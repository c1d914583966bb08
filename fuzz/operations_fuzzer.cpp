/// @file
/// Calls the public operations as an input says, with any arguments, and holds what the lookups and
/// the scan vector answer against plain walks over what a host can see.
///
/// Only what the headers ask of a host is granted: buffers have their room, and no pointer to
/// something destroyed is handed in.

#include "fuzz/input.h"
#include "invariants.h"
#include "support/text_view.h"

#include <climits>
#include <cstdio>
#include <iterator>
#include <memory>
#include <optional>

using namespace bscan::test;
using bscan::fuzz::Require;
using MaybeName = std::optional<std::string>;

namespace {

constexpr int kMostPorts = 2000;
constexpr int kIntegers[] = {INT_MIN, INT_MIN + 1, -19, -1, (1 << 20) + 1, INT_MAX - 1, INT_MAX};
constexpr const char* kNames[] = {
    "A",     "a",       "Ab",    "aB",    "b0",   "B",    "",  "in", "out",          "inout",
    "INPUT", "output3", "Bidir", "clock", "BC_1", "bc_7", "X", "A1", "observe_only", "output2"};

MaybeName NameOf(const char* text) { return text ? MaybeName(text) : std::nullopt; }

std::string Upper(std::string text) {
    bscan::detail::UpperCase(text);
    return text;
}

/// A text in a buffer as large as the reading operations are promised; null for none.
class Room {
public:
    explicit Room(const MaybeName& text) : null_(!text) {
        std::snprintf(bytes_, sizeof bytes_, "%s", text ? text->c_str() : "");
    }
    operator char*() { return null_ ? nullptr : bytes_; }

private:
    bool null_;
    char bytes_[1024];
};

class Host {
public:
    Host(const std::uint8_t* data, std::size_t size) : in_(data, size) {}

    void Work() {
        using Step = void (Host::*)();
        constexpr Step kSteps[] = {
            &Host::AddPorts,     &Host::ChangeList, &Host::ChangePort,   &Host::WriteName,
            &Host::FillCells,    &Host::ChangeCell, &Host::Associate,    &Host::FindPort,
            &Host::FindByNumber, &Host::FindCell,   &Host::Drive,        &Host::UpdateBits,
            &Host::ReadPiece,    &Host::ReadFile,   &Host::ChangeParser, &Host::ChangeMap};
        while (!in_.IsEmpty()) {
            (this->*kSteps[in_.Below(std::size(kSteps))])();
            CheckBits();
        }
    }

private:
    int Integer() {
        const unsigned byte = in_.Byte();
        return byte < std::size(kIntegers) ? kIntegers[byte] : static_cast<int>(byte) - 8;
    }
    template <class Enumeration>
    Enumeration Any() {
        return static_cast<Enumeration>(Integer());
    }
    MaybeName Name() {
        const unsigned choice = in_.Byte();
        if (choice < std::size(kNames)) return kNames[choice];
        if (choice == 255) return std::nullopt;
        return std::string(in_.Text(6).c_str());
    }
    const char* Pointer(const MaybeName& name) { return name ? name->c_str() : nullptr; }
    LPinNode* Port() {
        const int count = map_->GetNumberOfPins();
        return count == 0
                   ? nullptr
                   : NodeAt(*map_, static_cast<int>(in_.Byte() % static_cast<unsigned>(count)));
    }
    LBScanCell* Cell() {
        const unsigned choice = in_.Byte();
        if (choice == 255) return nullptr;
        const int length = map_->GetBScanLength();
        if (choice < std::size(cells_) || length == 0) return &cells_[choice % std::size(cells_)];
        return map_->GetBScanCellTable() + choice % static_cast<unsigned>(length);
    }
    unsigned char* Bits() { return map_->GetBScanBitArray(); }
    std::vector<unsigned char> BitsNow() {
        const auto bytes = static_cast<std::size_t>(map_->GetBScanLength() + 7) / 8;
        return Bits() ? std::vector<unsigned char>(Bits(), Bits() + bytes)
                      : std::vector<unsigned char>();
    }
    void CheckBits() {
        for (int n = map_->GetBScanLength(); Bits() && n % 8 != 0; ++n) {
            Require((Bits()[n / 8] & (0x80 >> n % 8)) == 0, "bits past the register are 0");
        }
    }
    /// A host lets go of what a new register is about to destroy.
    void LetGoOfCells() {
        for (LBScanCell& cell : cells_) cell.SetControlCell(nullptr);
        removed_.clear();
    }

    // What a host does to the device.

    void ChangeMap() {
        for (LBScanCell& cell : cells_) cell.SetControlCell(nullptr);
        BScanPinMap* const read = parser_.GetPinMap();
        map_ = read && in_.Coin() ? read : &own_;
        map_->SetDefaultDir(Room(Name()));
        map_->SetIOName(Pointer(Name()));
        map_->GetIOName(Integer());
        map_->GetDefaultDir();
    }
    void AddPorts() {
        if (map_->GetNumberOfPins() > kMostPorts) return;
        const int from = Integer();
        if (in_.Coin()) {
            map_->AddNewPorts(Room(Name()), Room(Name()), from, in_.Coin());
        } else {
            const int to = Integer();
            const auto span = std::abs(static_cast<std::int64_t>(to) - from);
            if (span < 300 || span > 1 << 20)
                map_->AddNewPorts(Room(Name()), Room(Name()), from, to);
        }
    }
    void ChangeList() {
        LObjList& list = *map_->GetPinListArray();
        switch (in_.Below(4)) {
            case 0:
                return list.AddTail(nullptr);
            case 1:
                return list.AddTail(new LPinNode);
            case 2:
                if (removed_.empty()) return;
                list.AddTail(removed_.back().release());
                return removed_.pop_back();
            default:
                std::unique_ptr<LPinNode> node(static_cast<LPinNode*>(list.RemoveTail()));
                if (node) removed_.push_back(std::move(node));
        }
    }
    void ChangePort() {
        LPinNode* node = in_.Coin() || removed_.empty() ? Port() : removed_.back().get();
        const unsigned choice = in_.Below(10);
        if (choice == 0) return map_->SerialSetPinNumber(Room(Name()), Integer(), Integer());
        if (choice == 1) return map_->SerialSetPinName(Room(Name()), Integer(), Room(Name()));
        if (choice == 2) return map_->SetPinNumber(Room(Name()), Integer(), Integer());
        if (!node) return;
        if (choice == 3) node->SetPortName(Room(Name()));
        if (choice == 4) node->SetPinName(Room(Name()));
        if (choice == 5) node->SetPortType(Room(Name()));
        if (choice == 6) node->SetPinNumber(Integer());
        if (choice == 7) node->SetPortValue(Any<eSignal>());
        if (choice == 8) node->SetPositive(in_.Coin());
        if (choice == 9) node->SetNegative(in_.Coin());
    }
    void WriteName() {
        LPinNode* const node = Port();
        if (!node) return;
        char* const name = in_.Coin() ? node->GetPortName() : node->GetPinName();
        for (char* at = name; at && *at != '\0'; ++at) *at = static_cast<char>(in_.Byte());
    }
    void FillCells() {
        if (in_.Below(4) == 0) {
            LetGoOfCells();
            return map_->AllocateBScanCellTable(Integer());
        }
        const int n = Integer();
        const int control = Integer();
        const int result = map_->AddNewRegister(
            n, Room(Name()), Room(Name()), Integer(), Room(Name()), Any<eSignal>(), control,
            Any<eSignal>(), Any<eSignal>(), Any<eSignal>(), Pointer(Name()));
        const int length = map_->GetBScanLength();
        Require(result == 0 || result == -1, "filling a cell succeeds or is refused");
        Require(result == -1 || (n >= 0 && n < length && control < length), "cells have numbers");
    }
    void ChangeCell() {
        LBScanCell* const cell = Cell();
        if (!cell) return;
        switch (in_.Below(9)) {
            case 0:
                return cell->SetBoundaryCellPosition(Integer());
            case 1:
                return cell->SetPinName(Pointer(Name()));
            case 2:
                return cell->SetOriginalPinName(Pointer(Name()));
            case 3:
                return cell->SetControlCell(Cell());
            case 4:
                in_.Coin() ? cell->SetFunction(Room(Name()))
                           : cell->SetFunction(Any<CellFunction>());
                return;
            case 5:
                in_.Coin() ? cell->SetCellType(Room(Name())) : cell->SetCellType(Any<CellType>());
                return;
            case 6:
                return cell->SetPinNode(Port());
            case 7:
                if (const LBScanCell* const other = Cell()) *cell = *other;
                return;
            default:
                cell->cellValue = Any<eSignal>();
                cell->disableValue = Any<eSignal>();
                cell->disableResult = Any<eSignal>();
        }
    }
    void Associate() {
        LPinNode* const node = Port();
        if (!node) return;
        LBScanCell* const cell = Cell();
        if (LObjList* const list = node->GetBScanCells(); list && in_.Coin()) {
            in_.Coin() ? list->AddTail(cell) : static_cast<void>(list->RemoveTail());
            return;
        }
        const bool suits = cell && Suits(node->GetPortType(), cell->GetFunction());
        Require(node->AssociateBScanCell(cell) == (suits ? 0 : -1), "ports take suitable cells");
    }

    // What a host asks of the device.

    std::vector<MaybeName> NamesNow() const {
        std::vector<MaybeName> names;
        for (int i = 0; i < map_->GetNumberOfPins(); ++i) {
            const LPinNode* const node = NodeAt(*map_, i);
            names.push_back(node ? NameOf(bscan::PortName(*node)) : std::nullopt);
        }
        return names;
    }
    /// Finds by name as a walk does, and turns the names that it passes into upper case.
    template <class Matches>
    LPinNode* Walk(std::vector<MaybeName>& names, const std::string& sought, bool ends,
                   Matches matches) {
        for (int i = 0; i < map_->GetNumberOfPins(); ++i) {
            MaybeName& name = names[static_cast<std::size_t>(i)];
            LPinNode* const node = NodeAt(*map_, i);
            if (!node) continue;
            if (!name && ends) return nullptr;
            if (!name) continue;
            name = Upper(*name);
            if (*name == Upper(sought) && matches(*node)) return node;
        }
        return nullptr;
    }
    void FindPort() {
        const std::string sought = Name().value_or("");
        const int index = Integer();
        std::vector<MaybeName> names = NamesNow();
        const LPinNode* expected = nullptr;
        if (in_.Coin()) {
            const auto is_it = [&](const LPinNode& node) { return node.GetVectorIndex() == index; };
            if (!sought.empty()) expected = Walk(names, sought, true, is_it);
            Require(map_->GetPort(Room(sought), index) == expected, "a port by name and index");
        } else {
            expected = Walk(names, sought, false, [](const LPinNode&) { return true; });
            Require(map_->GetPortwName(Room(sought)) == expected, "a port by name");
            const LBScanCell* const input = expected ? RolesOf(*expected).input : nullptr;
            Require(map_->GetPinIndexwPortName(Room(sought)) ==
                        (input      ? input->GetBoundaryCellPosition()
                         : expected ? 0
                                    : -1),
                    "an input cell by name");
        }
        Require(NamesNow() == names, "names up to the match are in upper case");
    }
    void FindByNumber() {
        const int number = Integer();
        const MaybeName pin = Name();
        LPinNode* numbered = nullptr;
        LPinNode* named = nullptr;
        for (int i = map_->GetNumberOfPins() - 1; i >= 0; --i) {
            LPinNode* const node = NodeAt(*map_, i);
            if (node && node->GetPinNumber() == number) numbered = node;
            if (node && pin && NameOf(bscan::PinName(*node)) == pin) named = node;
        }
        if (number < 1 || number > map_->GetNumberOfPins()) numbered = nullptr;
        Require(map_->GetPort(number) == numbered, "a port by number");
        Require(map_->GetPort(Pointer(pin)) == named, "a port by pin");
        Require(map_->GetPinNumber(Pointer(pin)) == (named ? named->GetPinNumber() : -1),
                "a number by pin");
        Require(map_->GetPortType(number) == (numbered ? numbered->GetPortType() : PORT_NONE),
                "a mode by number");
        map_->IsPositiveElement(number);
        map_->IsNegativeElement(number);
        if (in_.Below(8) == 0) map_->GetPortName(number);
        if (in_.Below(8) == 0) map_->GetPinName(number);
    }
    void FindCell() {
        const std::string sought = Name().value_or("");
        LBScanCell* pin = nullptr;
        LBScanCell* original = nullptr;
        for (int n = map_->GetBScanLength() - 1; n >= 0; --n) {
            LBScanCell* const cell = map_->GetBScanCellTable() + n;
            if (Upper(cell->GetPinName()) == Upper(sought)) pin = cell;
            if (Upper(cell->GetOriginalPinName()) == Upper(sought)) original = cell;
        }
        Require(map_->GetBScanCell(sought.c_str()) == pin, "a cell by pin name");
        Require(map_->GetBScanCellByOriginalName(sought.c_str()) == original,
                "a cell by original name");
        map_->GetBScanCell(Integer());
    }
    void Drive() {
        const int pin = Integer();
        const auto direction = Any<PortType>();
        const auto level = Any<eSignal>();
        LPinNode* const node = map_->GetPort(pin);
        const int result = in_.Coin() ? map_->setPort(pin, direction, level)
                                      : map_->setPort(pin, direction, level, in_.Coin());
        Require(node != nullptr || result == -1, "an unknown pin is not driven");
        Require(!node || node->GetPortValue() == level, "the value is recorded");
        map_->GetPortDirection(pin);
        map_->GetPortValue(pin);
        Require(map_->HasBScanCell(pin) ==
                    (node && node->GetBScanCells() && node->GetBScanCells()->GetCount() > 0),
                "a port has cells or none");
    }
    void UpdateBits() {
        const int n = Integer();
        if (in_.Coin()) {
            const bool known = n >= 0 && n < map_->GetBScanLength();
            Require(map_->SetBit(n, Any<eSignal>()) == (known ? 0 : -1), "bits have positions");
            if (in_.Below(8) == 0) map_->ResetAllPort();
        }
        LPinNode* const node = Port();
        std::vector<unsigned char> expected = BitsNow();
        if (node && Bits()) {
            const RoleCells roles = RolesOf(*node);
            for (const auto* cell : {roles.input, roles.output, roles.control, roles.observe}) {
                const int position = cell ? cell->GetBoundaryCellPosition() : -1;
                if (position < 0 || position >= map_->GetBScanLength()) continue;
                unsigned char& byte = expected[static_cast<std::size_t>(position) / 8];
                const int bit = 0x80 >> position % 8;
                byte =
                    static_cast<unsigned char>(cell->cellValue == SIG_1 ? byte | bit : byte & ~bit);
            }
        }
        map_->UpdateBScanBitArray(node);
        Require(BitsNow() == expected, "the bits of a port are the values of its cells");
    }

    // What a host asks of a parser.

    using Parser = BScanParser;
    using Reader = int (*)(Parser&, FILE*, char* text, char* other);
    static constexpr Reader kReaders[] = {
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadEntity(file, text); },
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadAttribute(file, text); },
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadConstant(file, text); },
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadGeneric(file, text); },
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadPort(file, text); },
        [](Parser& p, FILE*, char* text, char*) { return p.CreatePort(text); },
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadBSCANPinMap(file, text); },
        [](Parser& p, FILE* file, char* t, char*) { return p.ReadPortGroupingAttribute(file, t); },
        [](Parser& p, FILE* file, char* t, char*) { return p.ReadBSCANBoundaryLength(file, t); },
        [](Parser& p, FILE* file, char* t, char*) { return p.ReadBSCANBoundaryRegister(file, t); },
        [](Parser& p, FILE* file, char* text, char*) {
            return p.ReadInstructionLength(file, text);
        },
        [](Parser& p, FILE* file, char* t, char*) { return p.ReadInstructionCapture(file, t); },
        [](Parser& p, FILE* file, char* text, char*) {
            return p.ReadInstructionOpcode(file, text);
        },
        [](Parser& p, FILE* file, char* text, char*) { return p.ReadRegisterAccess(file, text); },
        [](Parser& p, FILE* file, char* text, char* other) { return p.GetLine(file, text, other); },
        [](Parser& p, FILE* file, char* text, char* other) {
            return other ? p.CompleteStatement(file, text, *other)
                         : p.CompleteStatement(file, text);
        },
        [](Parser& p, FILE* f, char* text, char* other) {
            return p.CompleteStatement(f, text, other);
        },
        [](Parser& p, FILE* file, char* text, char* other) {
            return p.CompleteStatementWithOneOf(file, text, other);
        },
        [](Parser& p, FILE* file, char* text, char* other) {
            LByteBuffer out;
            return p.GetCompleteStringValue(file, text, other ? &out : nullptr, text == nullptr);
        },
        [](Parser& p, FILE*, char* text, char*) {
            return std::min(p.MapPinNametoPinNumber(text), static_cast<int>(bscan::kOk));
        },
    };
    void ReadPiece() {
        if (parser_.GetPinMap() && parser_.GetPinMap()->GetNumberOfPins() > kMostPorts) return;
        LetGoOfCells();
        const Reader reader = kReaders[in_.Below(std::size(kReaders))];
        const MaybeName statement = in_.Below(32) == 0 ? MaybeName() : in_.Text(80);
        const MaybeName other = in_.Coin() ? Name() : std::nullopt;
        const std::string text = in_.Text(255);
        if (!bscan::fuzz::IsCheap(statement.value_or("")) || !bscan::fuzz::IsCheap(text)) return;
        const Stream stream(text);
        FILE* const file = in_.Below(32) == 0 ? nullptr : static_cast<FILE*>(stream);
        Require(reader(parser_, file, Room(statement), Room(other)) <= 0, "a result is a code");
    }
    void ReadFile() {
        constexpr const char* kFiles[] = {nullptr,
                                          "",
                                          "none",
                                          BSCAN_EXAMPLES_DIR,
                                          BSCAN_EXAMPLES_DIR "/nibble_bus.bsd",
                                          BSCAN_EXAMPLES_DIR "/link_hub.bsd"};
        constexpr const char* kFolders[] = {nullptr, "", "none", BSCAN_EXAMPLES_DIR "/.."};
        const char* const file = kFiles[in_.Below(std::size(kFiles))];
        LetGoOfCells();
        switch (in_.Below(6)) {
            case 0:
            case 1:
                parser_.Initialize(file, kFolders[in_.Below(std::size(kFolders))]);
                return;
            case 2:
            case 3:
                parser_.Read();
                return;
            case 4:
                parser_.ReadPackageDB(Room(NameOf(file)));
                return;
            default:
                in_.Coin() ? parser_.CloseFile() : static_cast<void>(BScanParser());
        }
    }
    void ChangeParser() {
        switch (in_.Below(4)) {
            case 0: {
                unsigned char bytes[16];
                for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(in_.Byte());
                const int length = std::min(Integer(), 16);
                parser_.SetBSCANBitArray(in_.Coin() ? bytes : nullptr, length,
                                         in_.Coin() ? bytes : nullptr);
                return;
            }
            case 1:
                parser_.SetBSDLFilename(Pointer(Name()));
                parser_.SetPackageType(Room(Name()));
                in_.Coin() ? parser_.ClearBuffers() : static_cast<void>(parser_.Reset());
                return;
            case 2:
                parser_.ProcessException(Integer(), static_cast<unsigned>(Integer()), Room(Name()));
                return;
            default:
                if (CDifferentialPair* const pair = parser_.GetDifferentialPair(Integer())) {
                    pair->SetPositiveElement(Pointer(Name()));
                    pair->SetNegativeElement(Pointer(Name()));
                }
        }
    }

    bscan::fuzz::Decisions in_;
    LBScanCell cells_[4];  // of the host; they outlive every device
    BScanPinMap own_;
    BScanParser parser_;
    BScanPinMap* map_ = &own_;
    std::vector<std::unique_ptr<LPinNode>> removed_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Host(data, size).Work();
    return 0;
}
