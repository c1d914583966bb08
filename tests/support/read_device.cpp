#include "read_device.h"

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

/// What `write(out, i)` writes for each i below a count, with something in between.
template <typename Write>
std::string Join(const char* separator, int count, Write write) {
    std::ostringstream out;
    for (int i = 0; i < count; ++i) {
        out << (i ? separator : "");
        write(out, i);
    }
    return out.str();
}

int PinCount(const BScanPinMap* map) { return map ? map->GetNumberOfPins() : 0; }

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

const std::string& SmallDevice() {
    static const std::string device = Contents(SourceDir() / "tests" / "devices" / "small.bsd");
    return device;
}

ReadDevice::ReadDevice(std::string_view text, std::vector<unsigned char> capture,
                       std::vector<unsigned char> mask) {
    static const TempDir directory;
    if (!capture.empty()) {
        parser.SetBSCANBitArray(capture.data(), static_cast<int>(capture.size()),
                                mask.empty() ? nullptr : mask.data());
    }
    result_ = parser.Initialize(directory.Write("device.bsd", text).c_str(), nullptr);
    if (result_ == kOk) result_ = parser.Read();
    parser.CloseFile();
}

std::string Entity(std::string_view statements) {
    return "entity CHIP is\ngeneric (PHYSICAL_PIN_MAP : string := \"PKG\");\n" +
           std::string(statements) + "\nend CHIP;\n";
}

LPinNode* NodeAt(const BScanPinMap& map, int index) {
    return static_cast<LPinNode*>(map.GetPinListArray()->GetAt(index));
}

bool BitAt(BScanPinMap& map, int cell) {
    return (map.GetBScanBitArray()[cell / 8] & 0x80 >> cell % 8) != 0;
}

std::string Ports(const BScanPinMap* map) {
    return Join(" ", PinCount(map), [&](std::ostream& out, int i) {
        const LPinNode& node = *NodeAt(*map, i);
        out << OrNull(PortName(node)) << ':' << kModes[node.GetPortType()] << ':'
            << node.GetVectorIndex();
    });
}

std::string Pins(const BScanPinMap* map) {
    return Join(" ", PinCount(map), [&](std::ostream& out, int i) {
        const LPinNode& node = *NodeAt(*map, i);
        out << OrNull(PortName(node)) << '=' << OrNull(PinName(node)) << '/' << node.GetPinNumber();
    });
}

std::string Legs(const BScanPinMap* map) {
    return Join("", PinCount(map), [&](std::ostream& out, int i) {
        const LPinNode& node = *NodeAt(*map, i);
        out << (node.IsPositive() ? '+' : node.IsNegative() ? '-' : '.');
    });
}

std::string CellsOf(const LPinNode* node) {
    const LObjList* const cells = node ? node->GetBScanCells() : nullptr;
    return Join(" ", cells ? cells->GetCount() : 0, [&](std::ostream& out, int i) {
        out << static_cast<const LBScanCell*>(cells->GetAt(i))->GetBoundaryCellPosition();
    });
}

std::string Describe(const LBScanCell& cell) {
    std::ostringstream out;
    const CellType type = cell.GetBScanCellType();
    out << "BC_" << (type == BC_UNKNOWN ? "?" : std::to_string(type)) << ' '
        << kFunctions[cell.GetFunction()] << " [" << cell.GetPinName() << "] ["
        << cell.GetOriginalPinName() << "] safe " << kLevels[cell.safeValue] << " value "
        << kLevels[cell.cellValue];
    if (const LPinNode* const node = cell.GetPinNode()) {
        out << " port " << OrNull(PortName(*node)) << ':' << node->GetVectorIndex();
    }
    if (cell.GetControlCell()) {
        out << " control " << cell.GetControlCell()->GetBoundaryCellPosition() << " off "
            << kLevels[cell.disableValue] << " shows " << kLevels[cell.disableResult];
    }
    return out.str();
}

std::string Pairs(BScanParser& parser) {
    return Join(" ", parser.GetDifferentialPairCount(), [&](std::ostream& out, int i) {
        const CDifferentialPair& pair = *parser.GetDifferentialPair(i);
        out << pair.GetPositiveElement() << '/' << pair.GetNegativeElement() << '@'
            << pair.GetPositiveBScanPosition() << ',' << pair.GetNegativeBScanPosition();
    });
}

std::string Instructions(const CInstrRegisterDesc* list) {
    return Join(" ", list ? list->GetInstructionOpcodeCount() : 0, [&](std::ostream& out, int i) {
        const CInstrOpcode& instruction = *list->GetInstructionOpcode(i);
        out << instruction.GetInstruction() << '('
            << Join(",", instruction.GetOpcodeCount(),
                    [&](std::ostream& o, int k) { o << instruction.GetOpcode(k); })
            << ')';
    });
}

std::string Registers(const CRegisterAccessDesc* list) {
    return Join(" ", list ? list->GetRegisterCount() : 0, [&](std::ostream& out, int i) {
        const CRegister& item = *list->GetRegister(i);
        out << item.GetRegisterName() << '('
            << Join(",", item.GetRegisterAssociationCount(),
                    [&](std::ostream& o, int k) { o << item.GetRegisterAssocName(k); })
            << ')';
    });
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
    if (const CInstrRegisterDesc* instructions = parser.GetInstructionRegisterDescription()) {
        out << "instructions " << instructions->GetInstructionLength() << ' '
            << instructions->GetInstructionCapture() << ' ' << Instructions(instructions) << '\n';
    }
    out << "registers " << Registers(parser.GetRegisterAccessDescription()) << '\n'
        << "pairs " << Pairs(parser) << '\n';
    BScanPinMap* const map = parser.GetPinMap();
    if (!map) return out.str();
    for (int i = 0; i < map->GetIOTypeCount(); ++i) out << "io " << map->GetIOName(i) << '\n';
    for (int i = 0; i < map->GetNumberOfPins(); ++i) {
        const LPinNode& node = *NodeAt(*map, i);
        out << "port " << OrNull(PortName(node)) << ':' << kModes[node.GetPortType()] << ':'
            << node.GetVectorIndex() << " pin " << OrNull(PinName(node)) << '/'
            << node.GetPinNumber() << (node.IsPositive() ? " +" : "")
            << (node.IsNegative() ? " -" : "") << " cells " << CellsOf(&node) << '\n';
    }
    const int length = map->GetBScanLength();
    for (int n = 0; n < length; ++n) {
        out << "cell " << n << ": " << Describe(map->GetBScanCellTable()[n]) << '\n';
    }
    out << "bits " << Join("", length, [&](std::ostream& o, int n) { o << BitAt(*map, n); })
        << '\n';
    return out.str();
}

std::filesystem::path SourceDir() { return BSCAN_SOURCE_DIR; }

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(folder, absent)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string Contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace bscan::test
