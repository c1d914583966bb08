#include "read_device.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace bscan::test {

namespace {

constexpr const char* kModes[] = {"in", "out", "inout", "buffer", "none"};
constexpr const char* kLevels[] = {"0", "1", "X", "Z", "PULL0", "PULL1", "WEAK0", "WEAK1"};
constexpr const char* kFunctions[] = {"INPUT",    "CLOCK",     "OUTPUT2",      "OUTPUT3",
                                      "CONTROL",  "CONTROLR",  "INTERNAL",     "BIDIR",
                                      "BIDIR_IN", "BIDIR_OUT", "OBSERVE_ONLY", "NONE"};

const char* OrNull(const char* text) { return text ? text : "(null)"; }

const LPinNode* NodeAt(const BScanPinMap* map, int index) {
    return static_cast<const LPinNode*>(std::as_const(*map->GetPinListArray()).GetAt(index));
}

template <typename Write>
std::string ForEachNode(const BScanPinMap* map, Write write) {
    std::ostringstream out;
    for (int i = 0; map && i < map->GetNumberOfPins(); ++i) {
        out << (i ? " " : "");
        write(out, *NodeAt(map, i));
    }
    return out.str();
}

bool BitIsSet(BScanPinMap& map, int n) {
    return (map.GetBScanBitArray()[n / 8] & (0x80 >> (n % 8))) != 0;
}

std::string FindCellFault(BScanPinMap& map, const std::vector<const LPinNode*>& nodes) {
    const int length = map.GetBScanLength();
    const LBScanCell* table = map.GetBScanCellTable();
    for (int n = 0; n < length; ++n) {
        const LBScanCell& cell = table[n];
        const std::string where = "cell " + std::to_string(n);
        const int position = cell.GetBoundaryCellPosition();
        if (position != n && position != -1) return where + " is at another position";
        const LBScanCell* control = cell.GetControlCell();
        if (control && (control < table || control >= table + length))
            return where + " has a control cell outside the table";
        if (cell.GetPinNode() && !std::binary_search(nodes.begin(), nodes.end(), cell.GetPinNode()))
            return where + " serves an unknown port";
    }
    for (int n = length; n < (length + 7) / 8 * 8; ++n)
        if (BitIsSet(map, n)) return "a bit past the register is set";
    return {};
}

// A role's cell: the first of its functions, by the mode-independent tables of the ports.
std::string FindBitFault(BScanPinMap& map, LPinNode* node) {
    map.UpdateBScanBitArray(node);
    const LObjList* cells = node->GetBScanCells();
    bool input = false;
    bool output = false;
    bool observe = false;
    for (int i = 0; cells && i < cells->GetCount(); ++i) {
        const auto* cell = static_cast<const LBScanCell*>(cells->GetAt(i));
        const int n = static_cast<int>(cell - map.GetBScanCellTable());
        if (n < 0 || n >= map.GetBScanLength()) return "a port lists a cell outside the table";
        const CellFunction f = cell->GetFunction();
        const bool first_input = (f == INPUT || f == BIDIR_IN || f == BIDIR) && !input;
        const bool first_output =
            (f == OUTPUT2 || f == OUTPUT3 || f == BIDIR_OUT || f == BIDIR) && !output;
        const bool first_observe = f == OBSERVE_ONLY && !observe;
        input |= first_input;
        output |= first_output;
        observe |= first_observe;
        if ((first_input || first_output || first_observe) &&
            cell->GetBoundaryCellPosition() == n && BitIsSet(map, n) != (cell->cellValue == SIG_1))
            return "bit " + std::to_string(n) + " is not its cell's value";
    }
    return {};
}

}  // namespace

TempDir::TempDir() {
    // Where there are files in memory, the tests that read many of them are much faster.
    const std::filesystem::path memory = "/dev/shm";
    const bool usable = access(memory.c_str(), W_OK) == 0;
    std::string name =
        (usable ? memory : std::filesystem::temp_directory_path()) / "bscan-test-XXXXXX";
    if (!mkdtemp(name.data())) std::abort();
    path_ = name;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::Write(std::string_view name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return Path(name);
}

Stream::Stream(std::string_view text)
    : text_(text), file_(fmemopen(text_.data(), text_.size(), "r")) {
    if (!file_) std::abort();
}

ReadDevice::ReadDevice(std::string_view text, std::vector<unsigned char> capture,
                       const std::vector<unsigned char>* mask) {
    static const TempDir directory;
    std::vector<unsigned char> valid = mask ? *mask : std::vector<unsigned char>();
    if (!capture.empty())
        parser.SetBSCANBitArray(capture.data(), static_cast<int>(capture.size()),
                                mask ? valid.data() : nullptr);
    result_ = parser.Initialize(directory.Write("device.bsd", text).c_str(), nullptr);
    if (result_ == kOk) result_ = parser.Read();
    parser.CloseFile();
}

std::string Entity(std::string_view statements) {
    return "entity CHIP is\ngeneric (PHYSICAL_PIN_MAP : string := \"PKG\");\n" +
           std::string(statements) + "\nend CHIP;\n";
}

std::string Ports(const BScanPinMap* map) {
    return ForEachNode(map, [](std::ostream& out, const LPinNode& node) {
        out << OrNull(PortName(node)) << ':' << kModes[node.GetPortType()] << ':'
            << node.GetVectorIndex();
    });
}

std::string Pins(const BScanPinMap* map) {
    return ForEachNode(map, [](std::ostream& out, const LPinNode& node) {
        out << OrNull(PortName(node)) << '=' << OrNull(PinName(node)) << '/' << node.GetPinNumber();
    });
}

std::string CellsOf(const LPinNode* node) {
    std::ostringstream out;
    const LObjList* cells = node ? node->GetBScanCells() : nullptr;
    for (int i = 0; cells && i < cells->GetCount(); ++i)
        out << (i ? " " : "")
            << static_cast<const LBScanCell*>(cells->GetAt(i))->GetBoundaryCellPosition();
    return out.str();
}

std::string Describe(const LBScanCell& cell) {
    std::ostringstream out;
    if (cell.GetBScanCellType() == BC_UNKNOWN)
        out << "BC_?";
    else
        out << "BC_" << cell.GetBScanCellType();
    out << ' ' << kFunctions[cell.GetFunction()] << " [" << cell.GetPinName() << "] ["
        << cell.GetOriginalPinName() << "] safe " << kLevels[cell.safeValue] << " value "
        << kLevels[cell.cellValue];
    if (cell.GetPinNode())
        out << " port " << OrNull(PortName(*cell.GetPinNode())) << ':'
            << cell.GetPinNode()->GetVectorIndex();
    if (cell.GetControlCell())
        out << " control " << cell.GetControlCell()->GetBoundaryCellPosition() << " off "
            << kLevels[cell.disableValue] << " shows " << kLevels[cell.disableResult];
    return out.str();
}

std::string Pairs(const BScanParser& parser) {
    std::ostringstream out;
    const char* separator = "";
    for (const CDifferentialPair& pair : *parser.GetDifferentialPairList()) {
        out << separator << pair.GetPositiveElement() << '/' << pair.GetNegativeElement() << '@'
            << pair.GetPositiveBScanPosition() << ',' << pair.GetNegativeBScanPosition();
        separator = " ";
    }
    return out.str();
}

std::string Instructions(const CInstrRegisterDesc* description) {
    std::ostringstream out;
    for (int i = 0; description && i < description->GetInstructionOpcodeCount(); ++i) {
        const CInstrOpcode& instruction = *description->GetInstructionOpcode(i);
        out << (i ? " " : "") << instruction.GetInstruction() << '(';
        for (int k = 0; k < instruction.GetOpcodeCount(); ++k)
            out << (k ? "," : "") << instruction.GetOpcode(k);
        out << ')';
    }
    return out.str();
}

std::string Registers(const CRegisterAccessDesc* description) {
    std::ostringstream out;
    for (int i = 0; description && i < description->GetRegisterCount(); ++i) {
        const CRegister& data_register = *description->GetRegister(i);
        out << (i ? " " : "") << data_register.GetRegisterName() << '(';
        for (int k = 0; k < data_register.GetRegisterAssociationCount(); ++k)
            out << (k ? "," : "") << data_register.GetRegisterAssocName(k);
        out << ')';
    }
    return out.str();
}

std::string DumpModel(BScanParser& parser) {
    std::ostringstream out;
    out << "component " << OrNull(parser.GetComponentName()) << " package "
        << OrNull(parser.GetPackageType()) << " lines " << parser.GetLineNumber() << '\n';
    for (int i = 0; i < parser.GetPackageMapCount(); ++i) {
        const PackagePinMap& package = *parser.GetPackageMap(i);
        out << "package map " << package.GetPackageName() << ':';
        for (int k = 0; k < package.GetNumberOfPins(); ++k) out << ' ' << package.GetPin(k);
        out << '\n';
    }
    if (const CInstrRegisterDesc* instructions = parser.GetInstructionRegisterDescription())
        out << "instructions " << instructions->GetInstructionLength() << ' '
            << instructions->GetInstructionCapture() << ' ' << Instructions(instructions) << '\n';
    out << "registers " << Registers(parser.GetRegisterAccessDescription()) << '\n'
        << "pairs " << Pairs(parser) << '\n';
    BScanPinMap* map = parser.GetPinMap();
    if (!map) return out.str();
    for (int i = 0; i < map->GetIOTypeCount(); ++i) out << "io " << map->GetIOName(i) << '\n';
    for (int i = 0; i < map->GetNumberOfPins(); ++i) {
        const LPinNode& node = *NodeAt(map, i);
        out << "port " << OrNull(PortName(node)) << ':' << kModes[node.GetPortType()] << ':'
            << node.GetVectorIndex() << " pin " << OrNull(PinName(node)) << '/'
            << node.GetPinNumber() << (node.IsPositive() ? " +" : "")
            << (node.IsNegative() ? " -" : "") << " cells " << CellsOf(&node) << '\n';
    }
    for (int n = 0; n < map->GetBScanLength(); ++n)
        out << "cell " << n << ": " << Describe(map->GetBScanCellTable()[n]) << '\n';
    out << "bits ";
    for (int n = 0; n < map->GetBScanLength(); ++n) out << (BitIsSet(*map, n) ? '1' : '0');
    out << '\n';
    return out.str();
}

std::string FindFault(BScanParser& parser) {
    BScanPinMap* map = parser.GetPinMap();
    if (!map) return {};
    if (map->GetBScanLength() > 0 && (!map->GetBScanCellTable() || !map->GetBScanBitArray()))
        return "a register without cells or bits";
    std::vector<const LPinNode*> nodes;
    for (int i = 0; i < map->GetNumberOfPins(); ++i) nodes.push_back(NodeAt(map, i));
    std::sort(nodes.begin(), nodes.end());
    std::string fault = FindCellFault(*map, nodes);
    for (int i = 0; fault.empty() && i < map->GetNumberOfPins(); ++i)
        fault = FindBitFault(*map, static_cast<LPinNode*>(map->GetPinListArray()->GetAt(i)));
    return fault;
}

std::filesystem::path SourceDir() { return BSCAN_SOURCE_DIR; }

std::filesystem::path ManufacturersDevices() { return BSCAN_DEVICES_DIR; }

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(folder, absent))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string Contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace bscan::test
