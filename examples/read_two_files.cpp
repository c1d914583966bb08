// Reads two files at the same time, each in a thread of its own.
//
//     read_two_files FILE [FILE]
//
// The second file is the first one again when it is not given. Only BScanParser::Read is bound to
// one file at a time in a process; a Description shares nothing with another.
#include <bscan/bscan.h>

#include <cstdio>
#include <memory>
#include <thread>

namespace {

// A file's facts, and the model that was filled from them. The parser owns the model.
struct Device {
    explicit Device(const char* file) : description(bscan::Description::Read(file)) {
        code = description.Fill(parser);
    }

    bscan::Description description;
    BScanParser parser;
    int code;
};

void Print(const char* file, const Device& device) {
    if (device.code != bscan::kOk) {
        std::fprintf(stderr, "%s: %s (%d)\n", file, bscan::Describe(device.code), device.code);
        return;
    }
    const bscan::Facts& facts = device.description.GetFacts();
    std::printf("%s: %.*s, %zu ports, %d cells, %zu findings\n", file,
                static_cast<int>(facts.entity.text.size()), facts.entity.text.data(),
                facts.ports.size(), device.parser.GetPinMap()->GetBScanLength(),
                device.description.Findings().size());
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fputs(
            "read_two_files: no BSDL file given\n"
            "usage: read_two_files FILE [FILE]\n",
            stderr);
        return 2;
    }
    const char* files[] = {argv[1], argc > 2 ? argv[2] : argv[1]};
    std::unique_ptr<Device> devices[2];
    std::thread other([&] { devices[1] = std::make_unique<Device>(files[1]); });
    devices[0] = std::make_unique<Device>(files[0]);
    other.join();

    // From here on, one thread has both models.
    int status = 0;
    for (int i = 0; i < 2; ++i) {
        Print(files[i], *devices[i]);
        status = devices[i]->code == bscan::kOk ? status : 1;
    }
    return status;
}
