#include "parser/package_pass.h"

#include <bscan/result.h>

#include "parser/constant_text.h"
#include "parser/designator_index.h"
#include "parser/pin_map_text.h"
#include "support/file.h"
#include "support/list_access.h"
#include "support/text_view.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>
#include <utility>

namespace bscan::detail {
namespace {

// The line that ends the search without a pin map.
constexpr int kNoPinMapInFile = 1;

// Splits a designator into its letters and the value of its digits, wherever they stand; other
// characters do not count. In most designators the digits follow the letters.
void AddPin(std::string_view designator, PinSet& pins) {
    const auto add = [&](std::string_view letters, std::string_view digits) {
        pins.Add(letters, static_cast<unsigned short>(DecimalValue(digits)));
    };
    const auto first_digit = std::find_if_not(designator.begin(), designator.end(), IsLetter);
    if (std::all_of(first_digit, designator.end(), IsDigit)) {
        const auto count = static_cast<std::size_t>(first_digit - designator.begin());
        return add(designator.substr(0, count), designator.substr(count));
    }
    std::string letters;
    std::string digits;
    std::copy_if(designator.begin(), designator.end(), std::back_inserter(letters), IsLetter);
    std::copy_if(designator.begin(), designator.end(), std::back_inserter(digits), IsDigit);
    add(letters, digits);
}

std::string Designator(const PIN_NAME& pin) {
    std::string designator = pin.letters;
    char digits[8];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, pin.number);
    static_cast<void>(error);
    return designator.append(digits, static_cast<std::size_t>(end - digits));
}

}  // namespace

int ReadPackage(BScanParser& parser, const char* path) {
    const auto buffer = std::make_unique_for_overwrite<char[]>(kFileBufferSize);
    const FilePointer file = OpenForReading(path, {buffer.get(), kFileBufferSize});
    return file == nullptr ? static_cast<int>(kCannotOpen) : PackagePass(parser, file.get()).Read();
}

int PackagePass::Read() {
    std::string first_line;
    std::string statement;
    int result = FindPinMap(first_line, statement);
    if (result != kOk) return result == kNoPinMapInFile ? static_cast<int>(kOk) : result;
    std::string value;
    result = reader_.ReadStringValue(ValueStart(first_line), Comments::kDrop, value);
    if (result != kOk) return result;
    PinSet pins;
    for (const PIN_NAME& pin : parser_.pin_names_) pins.Add(pin.letters, pin.number);
    if (!CollectPins(value, pins)) return kOk;
    std::string package(ConstantName(statement));
    LowerCase(package);
    Publish(std::move(package), pins.Sorted());
    return kOk;
}

int PackagePass::FindPinMap(std::string& first_line, std::string& statement) {
    for (;;) {
        std::string_view line;
        if (reader_.NextLineWith("constant", line) != kOk) return kNoPinMapInFile;
        first_line.assign(line);
        statement.assign(line);
        const int result = reader_.Complete(statement, Terminator::Text(":="));
        if (result != kOk) return result;
        if (Contains(statement, kPinMapString) &&
            TypeWord(statement, kPinMapString) == kPinMapString) {
            return kOk;
        }
    }
}

// False when there is no pin, or the first one has no letter: then designators are numbers already.
bool PackagePass::CollectPins(std::string_view value, PinSet& pins) {
    bool any = false;
    PinMapCutter cutter(value);
    for (PinMapEntry entry; cutter.Next(entry);) {
        for (std::string_view pin; TakePin(entry.pins, pin); any = true) {
            if (!any && std::none_of(pin.begin(), pin.end(), IsLetter)) return false;
            AddPin(pin, pins);
        }
    }
    return any;
}

void PackagePass::Publish(std::string package, std::vector<PIN_NAME> pins) {
    auto map = std::make_unique<PackagePinMap>();
    map->name_ = std::move(package);
    map->pins_.reserve(pins.size());
    for (const PIN_NAME& pin : pins) map->pins_.push_back(Designator(pin));
    auto maps = std::make_unique<LObjList>();
    ListAccess::Objects(*maps).push_back(map.get());

    static_cast<void>(map.release());  // the list has it now
    parser_.DestroyPackageMaps();
    parser_.package_maps_ = std::move(maps);
    parser_.pin_names_ = std::move(pins);
    parser_.designators_.reset();
}

}  // namespace bscan::detail
