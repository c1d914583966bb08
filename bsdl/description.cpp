// The public class: where texts come from, and where exceptions end.

#include <bscan/description.h>
#include <bscan/limits.h>
#include <bscan/parser.h>

#include "bsdl/element_table.h"
#include "bsdl/reading.h"
#include "support/text_view.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

namespace bscan {
namespace {

const Facts kNoFacts;
const std::string kNoName;
const std::vector<Finding> kNoFindings;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Reads a whole file, however its size is told: pipes have none.
int LoadFile(const char* path, std::string& text) {
    if (path == nullptr || *path == '\0') return kCannotOpen;
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path, "rb"));
    if (file == nullptr) return kCannotOpen;
    char block[65536];
    while (const std::size_t got = std::fread(block, 1, sizeof block, file.get())) {
        if (text.size() + got > kMaxDescriptionLength) return kTextTooLong;
        text.append(block, got);
    }
    return std::ferror(file.get()) != 0 ? kReadFailed : kOk;
}

void ReadAndCheck(detail::Reading& reading) {
    detail::ReadText(reading);
    if (reading.result == kOk) detail::CheckFacts(reading);
    reading.findings = reading.found.Take();
}

// Runs a step that fills a reading; null when not even that much memory is left.
template <typename Step>
std::unique_ptr<detail::Reading> NewReading(Step step) {
    std::unique_ptr<detail::Reading> reading;
    try {
        reading = std::make_unique<detail::Reading>();
        step(*reading);
    } catch (const std::bad_alloc&) {
        if (reading == nullptr) return nullptr;
        reading->facts = Facts();
        reading->findings.clear();
        reading->result = kOutOfMemory;
    }
    return reading;
}

}  // namespace

Description::Description(std::unique_ptr<detail::Reading> reading) : reading_(std::move(reading)) {}
Description::Description(Description&&) noexcept = default;
Description& Description::operator=(Description&&) noexcept = default;
Description::~Description() = default;

Description Description::Read(const char* path) {
    return Description(NewReading([path](detail::Reading& reading) {
        if (path != nullptr) reading.name = path;
        reading.result = LoadFile(path, reading.text);
        if (reading.result == kOk) ReadAndCheck(reading);
    }));
}

Description Description::Parse(std::string_view text, const char* name) {
    return Description(NewReading([text, name](detail::Reading& reading) {
        if (name != nullptr) reading.name = name;
        if (text.size() > kMaxDescriptionLength) {
            reading.result = kTextTooLong;
            return;
        }
        reading.text = text;
        ReadAndCheck(reading);
    }));
}

int Description::Result() const { return reading_ ? reading_->result : int{kOutOfMemory}; }

const std::vector<Finding>& Description::Findings() const {
    return reading_ ? reading_->findings : kNoFindings;
}

const Facts& Description::GetFacts() const { return reading_ ? reading_->facts : kNoFacts; }

const std::string& Description::Name() const { return reading_ ? reading_->name : kNoName; }

// A line ends with a line feed, a carriage return or both.
std::string_view Description::Line(int line) const {
    const std::string_view text = reading_ ? std::string_view(reading_->text) : std::string_view();
    std::size_t feed = 0;  // of this line or one behind it
    for (std::size_t begin = 0, at = 1; begin < text.size(); ++at) {
        if (feed <= begin) feed = std::min(text.find('\n', begin), text.size());
        const std::string_view rest = text.substr(begin, feed - begin);
        const std::size_t size = std::min(rest.find('\r'), rest.size());
        if (static_cast<int>(at) == line) return rest.substr(0, size);
        begin += size + 1;
        if (size < rest.size() && begin == feed) ++begin;
    }
    return {};
}

const Port* Facts::FindPort(std::string_view name) const {
    const auto found = std::find_if(ports.begin(), ports.end(), [&](const Port& port) {
        return detail::EqualIgnoringCase(port.name.text, name);
    });
    return found == ports.end() ? nullptr : &*found;
}

const PinMap* Facts::FindPinMap(std::string_view name) const {
    const auto found = std::find_if(pin_maps.begin(), pin_maps.end(), [&](const PinMap& map) {
        return detail::EqualIgnoringCase(map.name.text, name);
    });
    return found == pin_maps.end() ? nullptr : &*found;
}

int Description::Fill(BScanParser& parser) const {
    if (Result() != kOk) return Result();
    const Facts& facts = GetFacts();
    const PinMap* package = facts.FindPinMap(facts.default_package.text);
    if (package == nullptr && !facts.pin_maps.empty()) package = &facts.pin_maps.front();
    return detail::FillModel(facts, package, Name(), parser);
}

int Description::Fill(BScanParser& parser, std::string_view package) const {
    if (Result() != kOk) return Result();
    const PinMap* const map = GetFacts().FindPinMap(package);
    if (map == nullptr) return kNoSuchPackage;
    return detail::FillModel(GetFacts(), map, Name(), parser);
}

LPinNode* Description::FindElement(BScanPinMap& device, std::string_view port,
                                   std::optional<int> index) const {
    const Port* const declared = GetFacts().FindPort(port);
    if (declared == nullptr) return nullptr;
    const int vector_index = detail::VectorIndex(*declared, index);
    if (vector_index < 0) return nullptr;
    std::string name(port);
    return device.GetPort(name.data(), vector_index);
}

}  // namespace bscan
