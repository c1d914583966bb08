#include <bscan/error_handler.h>

#include "support/border.h"
#include "support/file.h"
#include "support/text_view.h"

#include <charconv>
#include <limits>
#include <optional>
#include <utility>

using namespace bscan::detail;

namespace {

constexpr std::size_t kMaxListSize = std::size_t{16} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::uint32_t Key(std::uint16_t group, std::uint16_t number) {
    return static_cast<std::uint32_t>(group) << 16 | number;
}

std::string ReadWhole(FILE* file) {
    std::string text;
    char block[4096];
    while (text.size() < kMaxListSize) {
        const std::size_t count = std::fread(block, 1, sizeof block, file);
        if (count == 0) break;
        text.append(block, count);
    }
    return text;
}

// Takes a number of 16 bits, which white space or the end of the line must follow.
std::optional<std::uint16_t> TakeNumber(std::string_view& line) {
    line = TrimLeft(line);
    std::uint16_t value = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), value);
    if (error != std::errc()) return std::nullopt;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    if (!line.empty() && !IsBlank(line.front())) return std::nullopt;
    return value;
}

// A line has a group, a number, a result code and a message; others are passed over, as is what
// comes again.
void AddLine(std::string_view line, std::unordered_map<std::uint32_t, ErrorElement>& elements) {
    if (line.empty() || line.front() == '#') return;
    const auto group = TakeNumber(line);
    const auto number = group ? TakeNumber(line) : std::nullopt;
    const auto result = number ? TakeNumber(line) : std::nullopt;
    if (!result) return;
    elements.try_emplace(Key(*group, *number), std::string(Trim(line)), *result);
}

}  // namespace

ErrorElement::ErrorElement(std::string message, std::uint16_t result)
    : message_(std::move(message)), result_(result) {}

const char* ErrorElement::GetErrorMessage() {
    return message_.empty() ? nullptr : message_.c_str();
}

std::uint16_t ErrorElement::GetResult() const { return result_; }

ErrorHandler::ErrorHandler() = default;
ErrorHandler::~ErrorHandler() = default;

void ErrorHandler::SetDefaultDir(const char* directory) {
    GuardedQuietly([&] { directory_ = std::string(View(directory)); });
}

int ErrorHandler::Initialize(char* filename, int) {
    return GuardedCode([&]() -> int {
        const std::string name(View(filename));
        const FilePointer file =
            OpenForReading((directory_.empty() ? name : directory_ + '/' + name).c_str());
        std::unordered_map<std::uint32_t, ErrorElement> elements;
        const std::string text = file == nullptr ? std::string() : ReadWhole(file.get());
        std::string_view rest = text;
        if (rest.starts_with(kByteOrderMark)) rest.remove_prefix(kByteOrderMark.size());
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            AddLine(TrimRight(rest.substr(0, end)), elements);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        elements_ = std::move(elements);
        return bscan::kOk;
    });
}

ErrorElement* ErrorHandler::GetErrorElement(unsigned short group, unsigned short number) {
    const auto found = elements_.find(Key(group, number));
    return found == elements_.end() ? nullptr : &found->second;
}

void ErrorHandler::SetErrorOccured(char* message) {
    if (message != nullptr) GuardedQuietly([&] { messages_.emplace_back(message); });
}

int ErrorHandler::GetErrorCount() const { return static_cast<int>(messages_.size()); }

const char* ErrorHandler::GetError(int index) const {
    return index >= 0 && index < GetErrorCount()
               ? messages_[static_cast<std::size_t>(index)].c_str()
               : nullptr;
}
