#include "device.h"

#include "text_file.h"

#include <fmt/format.h>

#include <numeric>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tool {
namespace {

std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }

// A path under which the library can read a text that came by standard input.
class TextInMemory {
public:
    explicit TextInMemory(const std::string& text) : file_(memfd_create("description", 0)) {
        std::size_t written = 0;
        while (file_ >= 0 && written < text.size()) {
            const ssize_t count = write(file_, text.data() + written, text.size() - written);
            if (count <= 0) break;
            written += static_cast<std::size_t>(count);
        }
    }
    TextInMemory(const TextInMemory&) = delete;
    TextInMemory& operator=(const TextInMemory&) = delete;
    ~TextInMemory() {
        if (file_ >= 0) close(file_);
    }

    std::string Path() const { return fmt::format("/proc/self/fd/{}", file_); }

private:
    int file_;
};

}  // namespace

std::string Element::Label() const { return index ? fmt::format("{}({})", port, *index) : port; }

Device::Device(DeviceFile file) : file_(std::move(file)) {}

int Device::Read(const Capture* capture) {
    if (capture != nullptr) {
        std::vector<unsigned char> data = capture->data;
        std::vector<unsigned char> mask = capture->mask;
        const int code =
            parser_.SetBSCANBitArray(data.data(), static_cast<int>(data.size()), mask.data());
        if (code != bscan::kOk) return code;
    }
    const int code = file_.by_lines ? ReadByLines() : ReadDescription();
    CollectElements();
    return code;
}

int Device::ReadDescription() {
    if (file_.path == "-") {
        const std::optional<std::string> text = ReadText(file_.path);
        if (!text) return bscan::kCannotOpen;
        description_ = std::make_unique<bscan::Description>(
            bscan::Description::Parse(*text, file_.path.c_str()));
    } else {
        description_ =
            std::make_unique<bscan::Description>(bscan::Description::Read(file_.path.c_str()));
    }
    return file_.package.empty() ? description_->Fill(parser_)
                                 : description_->Fill(parser_, file_.package);
}

int Device::ReadByLines() {
    std::unique_ptr<TextInMemory> memory;
    std::string path = file_.path;
    if (path == "-") {
        const std::optional<std::string> text = ReadText(path);
        if (!text) return bscan::kCannotOpen;
        memory = std::make_unique<TextInMemory>(*text);
        path = memory->Path();
    }
    int code = parser_.Initialize(path.c_str(), nullptr);
    if (code == bscan::kOk) code = parser_.Read();
    parser_.CloseFile();
    return code;
}

void Device::CollectElements() {
    const bscan::PinDriver driver(map());
    names_ = bscan::PinNames(driver, &facts());
    for (int i = 0; i < driver.ElementCount(); ++i) {
        LPinNode* const node = driver.Node(i);
        Element element;
        element.node = node;
        element.port = names_.PortOf(i);
        element.index = names_.IndexOf(i);
        element.pin = Text(bscan::PinName(*node));
        element.number = node->GetPinNumber();
        positions_[node] = elements_.size();
        elements_.push_back(std::move(element));
    }
    for (const Element& element : elements_) element.node->SetPinNumber(Number(element));
}

const bscan::Facts& Device::facts() const {
    static const bscan::Facts kNone;
    return description_ == nullptr ? kNone : description_->GetFacts();
}

BScanPinMap& Device::map() const {
    BScanPinMap* map = parser_.GetPinMap();
    return map == nullptr ? without_ports_ : *map;
}

std::string Device::ComponentName() const { return Text(parser_.GetComponentName()); }

std::string Device::PackageName() const { return Text(parser_.GetPackageType()); }

std::vector<CDifferentialPair> Device::Pairs() const { return *parser_.GetDifferentialPairList(); }

int Device::Number(const Element& element) const {
    return static_cast<int>(positions_.at(element.node)) + 1;
}

const Element* Device::Find(const LPinNode* node) const {
    const auto found = positions_.find(node);
    return found == positions_.end() ? nullptr : &elements_[found->second];
}

const Element* Device::Find(const bscan::ElementName& name) const {
    // A single bit may be named with the index 0, which its element has.
    const std::string index = name.index ? fmt::format("({})", *name.index) : "";
    const std::vector<int> found = names_.Find(fmt::format("port:{}{}", name.port.text, index));
    return found.size() == 1 ? &elements_[static_cast<std::size_t>(found.front())] : nullptr;
}

std::vector<LBScanCell*> CellsOf(const LPinNode& node) {
    std::vector<LBScanCell*> cells;
    const LObjList* list = node.GetBScanCells();
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) {
        cells.push_back(static_cast<LBScanCell*>(list->GetAt(i)));
    }
    return cells;
}

std::vector<LBScanCell*> CellsOf(const BScanPinMap& map) {
    std::vector<LBScanCell*> cells(static_cast<std::size_t>(map.GetBScanLength()));
    std::iota(cells.begin(), cells.end(), map.GetBScanCellTable());
    return cells;
}

}  // namespace tool
