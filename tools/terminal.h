// What the program knows about the terminal behind a stream.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace tool {

enum class Emphasis { kBold, kGood, kBad };

/// Colours for one stream: none unless it is a terminal and the user has not asked for plain text
/// with NO_COLOR.
class Style {
public:
    explicit Style(std::FILE* stream);

    std::string operator()(Emphasis emphasis, std::string_view text) const;

private:
    bool coloured_;
};

bool IsTerminal(std::FILE* stream);

/// The width of the terminal in columns; 80 when it does not tell.
int TerminalWidth(std::FILE* stream);

}  // namespace tool
