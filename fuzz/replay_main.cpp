/// @file
/// Feeds kept inputs to a fuzz target in builds without libFuzzer: takes a folder of them, and
/// fails when there is none to replay.

#include "fuzz/input.h"

#include <filesystem>
#include <fstream>
#include <iterator>

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    std::printf("%zu inputs replayed\n", count);
    return count == 0 ? 1 : 0;
}
