#include "terminal.h"

#include <fmt/format.h>

#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tool {
namespace {

std::string_view Environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

std::string_view Sequence(Emphasis emphasis) {
    switch (emphasis) {
        case Emphasis::kBold:
            return "\x1b[1m";
        case Emphasis::kGood:
            return "\x1b[32m";
        case Emphasis::kBad:
            return "\x1b[1;31m";
    }
    return "";
}

}  // namespace

Style::Style(std::FILE* stream)
    : coloured_(IsTerminal(stream) && Environment("NO_COLOR").empty() &&
                Environment("TERM") != "dumb") {}

std::string Style::operator()(Emphasis emphasis, std::string_view text) const {
    if (!coloured_) return std::string(text);
    return fmt::format("{}{}\x1b[0m", Sequence(emphasis), text);
}

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) == 1; }

int TerminalWidth(std::FILE* stream) {
    winsize size{};
    const bool known = ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

}  // namespace tool
