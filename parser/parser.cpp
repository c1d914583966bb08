// The parser object: its life, its file and what it hands out.

#include <bscan/parser.h>

#include "parser/main_file.h"
#include "parser/main_pass.h"
#include "parser/package_pass.h"
#include "support/border.h"
#include "support/file.h"
#include "support/text_view.h"

#include <utility>

using namespace bscan::detail;

namespace {

constexpr char kErrorList[] = "ErrorList.txt";
constexpr int kReserved = 3;  // the error handler takes it and does not use it

const char* TextOrNull(const std::optional<std::string>& text) {
    return text ? text->c_str() : nullptr;
}

}  // namespace

BScanParser::BScanParser() = default;

BScanParser::~BScanParser() {
    package_type_.reset();
    bsdl_filename_.reset();
    default_directory_.reset();
    pin_map_.reset();
    component_name_.reset();
    ClearBuffers();
    CloseFile();
    DestroyPackageMaps();
    capture_.reset();
    instruction_register_.reset();
    register_access_.reset();
}

void BScanParser::DestroyPackageMaps() {
    if (package_maps_ == nullptr) return;
    while (!package_maps_->IsEmpty()) delete package_maps_->RemoveTail();
    package_maps_.reset();
}

// The value that a cell starts with: what was captured for it, or its safe value without a capture.
eSignal BScanParser::FirstValue(int cell, eSignal safe) const {
    if (!capture_) return safe;
    const auto& [data, mask] = *capture_;
    const auto place = static_cast<std::size_t>(cell);
    if (cell < 0 || place >= data.size() || mask[place] == 0) return SIG_X;
    return data[place] == 0 ? SIG_0 : data[place] == 1 ? SIG_1 : SIG_X;
}

int BScanParser::Initialize(const char* bsdlFile, const char* defaultDir) {
    return GuardedCode([&]() -> int {
        int result = SetDefaultDir(defaultDir);
        if (result < 0) return result;
        if (bsdlFile != nullptr && *bsdlFile != '\0') bsdl_filename_ = std::string(bsdlFile);
        // Both passes read one stream: to rewind it costs less than to open the file again.
        FilePointer file = OpenForReading(GetBSDLFilename());
        if (file == nullptr) return bscan::kCannotOpen;
        result = PackagePass(*this, file.get()).Read();
        if (result < 0) return result;
        std::rewind(file.get());
        SetMainFile(std::move(file));
        result = Reset();
        if (result < 0 || error_handler_ == nullptr) return result;
        error_handler_->SetDefaultDir(defaultDir);
        // Setting the directory changes nothing when memory is exhausted.
        if (error_handler_->directory_ != View(defaultDir)) return bscan::kOutOfMemory;
        std::string name = kErrorList;
        return error_handler_->Initialize(name.data(), kReserved);
    });
}

int BScanParser::Read() {
    if (fptrBSDL == nullptr) return bscan::kFailed;
    return GuardedCode([&] { return MainPass(*this, fptrBSDL).ReadFile(); });
}

int BScanParser::Reset() {
    line_number_ = 0;
    column_number_ = 0;
    ClearBuffers();
    return GuardedCode([&]() -> int {
        error_handler_ = std::make_unique<ErrorHandler>();
        return bscan::kOk;
    });
}

void BScanParser::ClearBuffers() { error_handler_.reset(); }

void BScanParser::CloseFile() { CloseMainFile(); }

int BScanParser::SetBSCANBitArray(unsigned char* data, int length, unsigned char* mask) {
    if (length < 0 || (data == nullptr && length > 0)) return bscan::kFailed;
    return GuardedCode([&]() -> int {
        Capture capture;
        if (length > 0) {
            capture.data.assign(data, data + length);
            capture.mask.assign(static_cast<std::size_t>(length), 0xFF);
            if (mask != nullptr) capture.mask.assign(mask, mask + length);
        }
        capture_ = std::move(capture);
        return bscan::kOk;
    });
}

void BScanParser::SetBSDLFilename(const char* name) {
    if (name == nullptr || *name == '\0') return;
    GuardedQuietly([&] { bsdl_filename_ = std::string(name); });
}

int BScanParser::SetDefaultDir(const char* directory) {
    const char* const text = directory == nullptr ? "" : directory;
    if (*text != '\0' && !IsEnterableDirectory(text)) return bscan::kBadDirectory;
    return GuardedCode([&]() -> int {
        default_directory_ = std::string(text);
        return bscan::kOk;
    });
}

void BScanParser::SetComponentName(char* name) {
    if (name != nullptr) GuardedQuietly([&] { component_name_ = std::string(name); });
}

void BScanParser::SetPackageType(char* type) {
    if (type == nullptr) return;
    GuardedQuietly([&] { package_type_ = std::string(type); });
}

BScanPinMap* BScanParser::GetPinMap() const { return pin_map_.get(); }

CInstrRegisterDesc* BScanParser::GetInstructionRegisterDescription() const {
    return instruction_register_.get();
}

CRegisterAccessDesc* BScanParser::GetRegisterAccessDescription() const {
    return register_access_.get();
}

const std::vector<CDifferentialPair>* BScanParser::GetDifferentialPairList() const {
    return &differential_pairs_;
}

int BScanParser::GetDifferentialPairCount() const {
    return static_cast<int>(differential_pairs_.size());
}

CDifferentialPair* BScanParser::GetDifferentialPair(int index) {
    return index >= 0 && index < GetDifferentialPairCount()
               ? &differential_pairs_[static_cast<std::size_t>(index)]
               : nullptr;
}

void BScanParser::ClearDifferentialPairList() { differential_pairs_.clear(); }

const char* BScanParser::GetComponentName() const { return TextOrNull(component_name_); }
const char* BScanParser::GetBSDLFilename() const { return TextOrNull(bsdl_filename_); }
char* BScanParser::GetPackageType() { return package_type_ ? package_type_->data() : nullptr; }

int BScanParser::GetPackageMapCount() const {
    return package_maps_ == nullptr ? 0 : std::as_const(*package_maps_).GetCount();
}

const PackagePinMap* BScanParser::GetPackageMap(int index) const {
    return package_maps_ == nullptr
               ? nullptr
               : static_cast<const PackagePinMap*>(package_maps_->GetAt(index));
}

std::int64_t BScanParser::GetLineNumber() const { return line_number_; }
ErrorHandler* BScanParser::GetErrorHandler() { return error_handler_.get(); }
