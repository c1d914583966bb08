// Levels over time in a Value Change Dump, which wave viewers such as GTKWave open.
#pragma once

#include <bscan/signal.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace tool {

class VcdFile {
public:
    /// @param names  one signal each.
    VcdFile(const std::string& path, const std::vector<std::string>& names);

    bool IsOpen() const { return file_ != nullptr; }

    /// Writes the signals that have changed; the first call writes all.
    void Write(std::chrono::microseconds time, const std::vector<eSignal>& levels);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> file_;
    std::vector<eSignal> last_;
};

}  // namespace tool
