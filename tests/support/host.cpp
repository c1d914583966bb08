#include "host.h"

#include "oracle.h"
#include "support/text_view.h"

#include <climits>
#include <iterator>
#include <map>
#include <memory>
#include <optional>

namespace bscan::test {

namespace {

using MaybeName = std::optional<std::string>;

constexpr int kMostPorts = 2000;
constexpr int kIntegers[] = {INT_MIN, INT_MIN + 1, -19, -1, (1 << 20) + 1, INT_MAX - 1, INT_MAX};
// Few names in different letter case, so that they collide.
constexpr const char* kNames[] = {
    "A",     "a",       "Ab",    "aB",    "b0",   "B",    "",  "in", "out",          "inout",
    "INPUT", "output3", "Bidir", "clock", "BC_1", "bc_7", "X", "A1", "observe_only", "output2"};
constexpr const char* kStatements[] = {"",
                                       "\"",
                                       "A, b0 : inout bit",
                                       "entity A is ",
                                       "port (",
                                       "is generic (PHYSICAL_PIN_MAP := \"",
                                       "constant X : PIN_MAP_STRING := \"A:",
                                       "attribute PORT_GROUPING of X is ",
                                       "attribute BOUNDARY_LENGTH of X is 8",
                                       "attribute BOUNDARY_REGISTER of X is \"0 (BC_1, A, ",
                                       "attribute INSTRUCTION_OPCODE of X is \"A (",
                                       "attribute REGISTER_ACCESS of X is \"A ("};
constexpr const char* kRests[] = {"", ";\n", "1)\";\n", "\"Differential_Voltage ((A,B0))\";\n",
                                  "\"A(1)\" &\n;\nend;\n"};

MaybeName NameOf(const char* text) { return text ? MaybeName(text) : std::nullopt; }
const char* Pointer(const MaybeName& name) { return name ? name->c_str() : nullptr; }
Text Room(const MaybeName& name) { return Text(Pointer(name)); }

std::string Upper(std::string text) {
    detail::UpperCase(text);
    return text;
}

using P = BScanParser;
constexpr int (P::*kReaders[])(FILE*, const char*) = {&P::ReadEntity, &P::ReadAttribute,
                                                      &P::ReadConstant, &P::ReadBSCANPinMap,
                                                      &P::ReadPortGroupingAttribute};
constexpr int (P::*kWriters[])(FILE*, char*) = {
    &P::ReadGeneric,           &P::ReadPort,
    &P::CompleteStatement,     &P::ReadBSCANBoundaryLength,
    &P::ReadInstructionLength, &P::ReadBSCANBoundaryRegister,
    &P::ReadRegisterAccess,    &P::ReadInstructionCapture,
    &P::ReadInstructionOpcode};
constexpr int (P::*kPairReaders[])(FILE*, char*, char*) = {&P::GetLine, &P::CompleteStatement,
                                                           &P::CompleteStatementWithOneOf};

class Host {
public:
    explicit Host(std::string_view input) : rest_(input) {}

    std::string Work() {
        constexpr void (Host::*kSteps[])() = {
            &Host::AddPorts,  &Host::ChangeList, &Host::ChangePort,   &Host::WriteName,
            &Host::FillCells, &Host::ChangeCell, &Host::Associate,    &Host::FindPort,
            &Host::FindByPin, &Host::FindCell,   &Host::Drive,        &Host::UpdateBits,
            &Host::ReadPiece, &Host::ReadFile,   &Host::ChangeParser, &Host::ChangeMap};
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
    std::string Piece(std::size_t longest) {
        const std::string piece(rest_.substr(0, Below(longest + 1)));
        rest_.remove_prefix(std::min(piece.size(), rest_.size()));
        return piece.c_str();
    }
    MaybeName Name() {
        const unsigned choice = Byte();
        if (choice < std::size(kNames)) return kNames[choice];
        return choice == 255 ? std::nullopt : MaybeName(Piece(6));
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
        asked_.clear();
    }

    // What a host does to the device.

    void ChangeMap() {
        LetGo();
        BScanPinMap* const read = parser_.GetPinMap();
        map_ = read && Coin() ? read : own_.get();
        if (map_ == own_.get() && Coin()) {  // which removed nodes outlive
            if (LPinNode* const node =
                    static_cast<LPinNode*>(own_->GetPinListArray()->RemoveTail()))
                removed_.emplace_back(node);
            own_ = std::make_unique<BScanPinMap>();
            map_ = own_.get();
        }
        map_->SetDefaultDir(Room(Name()));
        map_->SetIOName(Pointer(Name()));
        map_->GetIOName(Integer());
        map_->GetDefaultDir();
    }
    void AddPorts() {
        if (map_->GetNumberOfPins() > kMostPorts) return;
        const int from = Integer();
        if (Coin()) return map_->AddNewPorts(Room(Name()), Room(Name()), from, Coin());
        const int to = Integer();
        const auto span = std::abs(static_cast<std::int64_t>(to) - from);
        if (span < 300 || span > 1 << 20) map_->AddNewPorts(Room(Name()), Room(Name()), from, to);
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
        const unsigned choice = Below(10);
        if (choice == 0) return map_->SerialSetPinNumber(Room(Name()), Integer(), Integer());
        if (choice == 1) return map_->SerialSetPinName(Room(Name()), Integer(), Room(Name()));
        if (choice == 2) return map_->SetPinNumber(Room(Name()), Integer(), Integer());
        if (!node) return;
        if (choice == 3 || choice == 4) asked_.erase({node, choice == 3});
        if (choice == 3) node->SetPortName(Room(Name()));
        if (choice == 4) node->SetPinName(Room(Name()));
        if (choice == 5) node->SetPortType(Room(Name()));
        if (choice == 6) node->SetPinNumber(Integer());
        if (choice == 7) node->SetPortValue(Any<eSignal>());
        if (choice == 8) node->SetPositive(Coin());
        if (choice == 9) node->SetNegative(Coin());
    }
    /// Writes through the pointer to a name, a former one if it has asked before.
    void WriteName() {
        LPinNode* const node = Port();
        if (!node) return;
        const bool port = Coin();
        if (!port && !PinName(*node)) node->SetPinName(Room(Name()));
        map_->GetPort("A1");  // now the pins are known
        char*& name = asked_[{node, port}];
        if (!name || PointsElsewhere(*node, port, name)) {
            name = port ? node->GetPortName() : node->GetPinName();
        }
        for (char* at = name; at && *at != '\0'; ++at) *at = kNames[Below(6)][0];
        FindByPin();
    }
    static bool PointsElsewhere(const LPinNode& node, bool port, const char* name) {
        return (port ? PortName(node) : PinName(node)) != name;
    }
    void FillCells() {
        if (Below(4) == 0) {
            LetGo();
            return map_->AllocateBScanCellTable(Integer());
        }
        const int n = Integer();
        const int control = Integer();
        const int result = map_->AddNewRegister(
            n, Room(Name()), Room(Name()), Integer(), Room(Name()), Any<eSignal>(), control,
            Any<eSignal>(), Any<eSignal>(), Any<eSignal>(), Pointer(Name()));
        const int length = map_->GetBScanLength();
        Check(result == 0 || result == -1, "an unknown result of filling a cell");
        Check(result == -1 || (n >= 0 && n < length && control < length), "an unknown cell filled");
    }
    void ChangeCell() {
        LBScanCell* const cell = Cell();
        if (!cell) return;
        const unsigned choice = Below(10);
        if (choice == 0) cell->SetBoundaryCellPosition(Integer());
        if (choice == 1) cell->SetPinName(Pointer(Name()));
        if (choice == 2) cell->SetOriginalPinName(Pointer(Name()));
        if (choice == 3) cell->SetControlCell(Cell());
        if (choice == 4) cell->SetFunction(Room(Name()));
        if (choice == 5) cell->SetFunction(Any<CellFunction>());
        if (choice == 6) cell->SetCellType(Room(Name()));
        if (choice == 7) cell->SetPinNode(Port());
        if (choice == 8) *cell = cells_[Below(std::size(cells_))];
        if (choice < 9) return;
        cell->cellValue = Any<eSignal>();
        cell->disableValue = Any<eSignal>();
        cell->disableResult = Any<eSignal>();
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

    std::vector<MaybeName> NamesNow() const {
        std::vector<MaybeName> names;
        for (int i = 0; i < map_->GetNumberOfPins(); ++i) {
            const LPinNode* const node = NodeAt(*map_, i);
            names.push_back(node ? NameOf(PortName(*node)) : std::nullopt);
        }
        return names;
    }
    /// Finds by name, and by index if there is one, as a walk does, and turns the names that it
    /// passes into upper case.
    LPinNode* Walk(std::vector<MaybeName>& names, const std::string& sought,
                   std::optional<int> index) {
        for (int i = 0; i < map_->GetNumberOfPins(); ++i) {
            MaybeName& name = names[static_cast<std::size_t>(i)];
            LPinNode* const node = NodeAt(*map_, i);
            if (node && !name && index) return nullptr;
            if (!node || !name) continue;
            name = Upper(*name);
            if (*name == Upper(sought) && index.value_or(0) == (index ? node->GetVectorIndex() : 0))
                return node;
        }
        return nullptr;
    }
    void FindPort() {
        const std::string sought = Name().value_or("");
        const int index = Integer();
        std::vector<MaybeName> names = NamesNow();
        if (Coin()) {
            const LPinNode* const port = sought.empty() ? nullptr : Walk(names, sought, index);
            Check(map_->GetPort(Room(sought), index) == port, "a port by name and index");
        } else {
            const LPinNode* const port = Walk(names, sought, std::nullopt);
            const LBScanCell* const input = port ? RolesOf(*port).input : nullptr;
            const int position = input ? input->GetBoundaryCellPosition() : port ? 0 : -1;
            Check(map_->GetPortwName(Room(sought)) == port, "a port by name");
            Check(map_->GetPinIndexwPortName(Room(sought)) == position, "an input cell by name");
        }
        Check(NamesNow() == names, "names up to the match are in upper case");
    }
    void FindByPin() {
        const int number = Integer();
        MaybeName pin = Name();
        if (const LPinNode* const port = Port(); port && Coin()) pin = NameOf(PinName(*port));
        LPinNode* numbered = nullptr;
        LPinNode* named = nullptr;
        for (int i = map_->GetNumberOfPins() - 1; i >= 0; --i) {
            LPinNode* const node = NodeAt(*map_, i);
            if (node && node->GetPinNumber() == number) numbered = node;
            if (node && pin && NameOf(PinName(*node)) == pin) named = node;
        }
        if (number < 1 || number > map_->GetNumberOfPins()) numbered = nullptr;
        Check(map_->GetPort(number) == numbered, "a port by number");
        Check(map_->GetPort(Pointer(pin)) == named, "a port by pin");
        Check(map_->GetPinNumber(Pointer(pin)) == (named ? named->GetPinNumber() : -1),
              "a number by pin");
        Check(map_->GetPortType(number) == (numbered ? numbered->GetPortType() : PORT_NONE),
              "a mode by number");
        Check(map_->IsPositiveElement(number) == (numbered && numbered->IsPositive()),
              "a positive leg by number");
        map_->IsNegativeElement(number);
        if (Below(8) == 0) map_->GetPortName(number);
        if (Below(8) == 0) map_->GetPinName(number);
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
        for (int times = Coin() ? 10 : 1; times > 0; --times) {  // the first few walk
            Check(map_->GetBScanCell(sought.c_str()) == pin, "a cell by pin name");
            Check(map_->GetBScanCellByOriginalName(sought.c_str()) == original,
                  "a cell by original name");
        }
    }
    void Drive() {
        const int pin = Integer();
        const auto direction = Any<PortType>();
        const auto level = Any<eSignal>();
        LPinNode* const node = map_->GetPort(pin);
        const int result = Coin() ? map_->setPort(pin, direction, level)
                                  : map_->setPort(pin, direction, level, Coin());
        Check(node != nullptr || result == -1, "an unknown pin was driven");
        Check(!node || node->GetPortValue() == level, "a value was not recorded");
        map_->GetPortDirection(pin);
        map_->GetPortValue(pin);
        const LObjList* const cells = node ? node->GetBScanCells() : nullptr;
        Check(map_->HasBScanCell(pin) == (cells && cells->GetCount() > 0), "cells or none");
    }
    void UpdateBits() {
        const int n = Integer();
        const int length = map_->GetBScanLength();
        if (Coin()) {
            const bool known = n >= 0 && n < length;
            Check(map_->SetBit(n, Any<eSignal>()) == (known ? 0 : -1), "a bit's position");
            if (Below(8) == 0) map_->ResetAllPort();
        }
        LPinNode* const node = Port();
        if (!node || length == 0) return;
        std::vector<bool> expected(static_cast<std::size_t>(length));
        for (int i = 0; i < length; ++i) expected[static_cast<std::size_t>(i)] = BitAt(*map_, i);
        const RoleCells roles = RolesOf(*node);
        for (const auto* cell : {roles.input, roles.output, roles.control, roles.observe}) {
            const int position = cell ? cell->GetBoundaryCellPosition() : -1;
            if (position < 0 || position >= length) continue;
            expected[static_cast<std::size_t>(position)] = cell->cellValue == SIG_1;
        }
        map_->UpdateBScanBitArray(node);
        for (int i = 0; i < length; ++i) {
            Check(BitAt(*map_, i) == expected[static_cast<std::size_t>(i)], "a cell's bit");
        }
    }

    // What a host asks of a parser.

    void ReadPiece() {
        if (parser_.GetPinMap() && parser_.GetPinMap()->GetNumberOfPins() > kMostPorts) return;
        LetGo();
        const std::string statement = kStatements[Below(std::size(kStatements))] + Piece(80);
        const std::string rest = Piece(255) + kRests[Below(std::size(kRests))];
        if (!IsCheap(statement) || !IsCheap(rest)) return;
        const Stream stream(rest);
        FILE* const file = Below(16) == 0 ? nullptr : static_cast<FILE*>(stream);
        Text text = Text(Below(16) == 0 ? nullptr : statement.c_str());
        LByteBuffer value;
        const unsigned choice = Below(24);
        int result = 0;
        if (choice < std::size(kReaders)) {
            result = (parser_.*kReaders[choice])(file, text);
        } else if (choice < 14) {
            result = (parser_.*kWriters[choice - std::size(kReaders)])(file, text);
        } else if (choice < 17) {
            result = (parser_.*kPairReaders[choice - 14])(file, text, Room(Name()));
        } else if (choice < 18) {
            result = parser_.CompleteStatement(file, text, static_cast<char>(Byte()));
        } else if (choice < 20) {
            result = parser_.GetCompleteStringValue(file, text, Coin() ? &value : nullptr, Coin());
        } else if (choice < 22) {
            result = parser_.CreatePort(text);
        } else {
            parser_.MapPinNametoPinNumber(text);
        }
        Check(result <= 0, "a result is no code");
    }
    void ReadFile() {
        constexpr const char* kFiles[] = {nullptr,
                                          "",
                                          "none",
                                          BSCAN_EXAMPLES_DIR,
                                          BSCAN_EXAMPLES_DIR "/nibble_bus.bsd",
                                          BSCAN_EXAMPLES_DIR "/link_hub.bsd"};
        const char* const file = kFiles[Below(std::size(kFiles))];
        const unsigned choice = Below(6);
        LetGo();
        if (choice < 2) parser_.Initialize(file, kFiles[Below(std::size(kFiles))]);
        if (choice == 2 || choice == 3) parser_.Read();
        if (choice == 4) parser_.ReadPackageDB(Text(file));
        if (choice == 5) parser_.CloseFile();
    }
    void ChangeParser() {
        const unsigned choice = Below(5);
        if (choice == 0) {
            unsigned char bytes[16];
            for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(Byte());
            parser_.SetBSCANBitArray(Coin() ? bytes : nullptr, std::min(Integer(), 16),
                                     Coin() ? bytes : nullptr);
        } else if (choice == 1) {
            parser_.SetBSDLFilename(Pointer(Name()));
            parser_.SetPackageType(Room(Name()));
            parser_.SetComponentName(Room(Name()));
            parser_.SetDefaultDir(Pointer(Name()));
            Coin() ? parser_.ClearBuffers() : static_cast<void>(parser_.Reset());
        } else if (choice == 2) {
            parser_.ProcessException(Integer(), static_cast<unsigned>(Integer()), Room(Name()));
        } else if (choice == 3) {
            parser_.ClearDifferentialPairList();
            Check(parser_.GetDifferentialPairList()->empty(), "a cleared list holds pairs");
            parser_.GetPackageMap(Integer());
        } else if (CDifferentialPair* const pair = parser_.GetDifferentialPair(Integer())) {
            pair->SetPositiveElement(Pointer(Name()));
            pair->SetNegativeElement(Pointer(Name()));
        }
    }

    std::string_view rest_;
    std::string fault_;
    LBScanCell cells_[4];  // of the host; they outlive every device
    std::unique_ptr<BScanPinMap> own_ = std::make_unique<BScanPinMap>();
    BScanParser parser_;
    BScanPinMap* map_ = own_.get();
    std::vector<std::unique_ptr<LPinNode>> removed_;
    // What a node's getter of its port or pin name gave.
    std::map<std::pair<const LPinNode*, bool>, char*> asked_;
};

}  // namespace

std::string FindFaultInWork(std::string_view input) { return Host(input).Work(); }

bool IsCheap(std::string_view text) {
    const auto most = std::max<std::int64_t>(512, static_cast<std::int64_t>(text.size()));
    for (std::size_t end = 0;;) {
        const std::size_t begin = text.find_first_of("0123456789", end);
        if (begin == std::string_view::npos) return true;
        end = std::min(text.find_first_not_of("0123456789", begin), text.size());
        const std::int64_t value = std::abs(std::int64_t{detail::DecimalValue(text.substr(begin))});
        const std::string_view before = detail::TrimRight(text.substr(0, begin));
        const std::string_view behind = detail::TrimLeft(text.substr(end));
        const bool counts = before.ends_with("to") || before.ends_with("is") ||
                            behind.starts_with("to") || behind.starts_with("downto");
        if (counts && value > most && value <= 1 << 21) return false;
    }
}

}  // namespace bscan::test
