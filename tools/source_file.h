// The text of a BSDL file, to say where something in it stands.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

/// The lines of a file, counted from 1.
class SourceFile {
public:
    /// Takes in a file. One that cannot be read has no lines.
    explicit SourceFile(const std::string& path);

    /// The line that the library's n-th read ended in. A read takes a line or 254 characters of it,
    /// so that a long line takes several. 0 when there is none.
    int LineOfRead(std::int64_t read) const;

    /// A line without its end; empty outside the file.
    std::string Line(int number) const;

    int LineCount() const { return static_cast<int>(lines_.size()); }

private:
    std::vector<std::string> lines_;
};

/// The words at the front of a line, without its comment; at most @p count of them.
std::vector<std::string> Words(const std::string& line, int count);

}  // namespace tool
