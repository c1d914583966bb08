// What stands around the entity: the comments before it, and the user's packages.

#include "bsdl_layout.h"
#include "bsdl_text.h"
#include "bsdl_words.h"
#include "plain_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tool {
namespace {

std::string_view WithoutLastBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view WithoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return WithoutLastBlanks(text);
}

// Takes the first line off a text, whatever ends it.
std::string TakeLine(std::string_view& text) {
    const std::size_t size = std::min(text.find_first_of("\r\n"), text.size());
    std::string line = PlainText(text.substr(0, size));
    text.remove_prefix(size);
    text.remove_prefix(text.substr(0, 2) == "\r\n" ? 2 : std::min<std::size_t>(text.size(), 1));
    return line;
}

// A row of one character, such as dashes.
bool IsRule(std::string_view text) {
    return !text.empty() && text.find_first_not_of(text.front()) == text.npos;
}

// A comment without its first two dashes, in as many lines as it takes.
std::string CommentLines(std::string_view comment) {
    comment = WithoutLastBlanks(comment);
    constexpr std::size_t kWidth = kBsdlWidth - 2;
    if (IsRule(comment)) comment = comment.substr(0, kWidth);
    const std::size_t blanks = std::min(comment.find_first_not_of(' '), comment.size());
    const bool fits = comment.size() <= kWidth;
    const std::string margin(fits ? blanks : std::min(blanks, kWidth / 2), ' ');
    std::string lines;
    for (const std::string_view part :
         CutText(comment.substr(blanks), kWidth - margin.size(), false)) {
        lines += fmt::format("--{}{}\n", margin, WithoutLastBlanks(part));
    }
    return lines;
}

// "use NAME;" and "library NAME;", which belong into the entity or to no description at all.
bool IsClause(std::string_view statement) {
    const std::string lower = LowerCase(WithoutBlanks(statement));
    return lower.rfind("use ", 0) == 0 || lower.rfind("library ", 0) == 0;
}

// Words before the entity that are no comment are made one. Other languages begin comments with
// two slashes; one dash was meant to be two.
std::string StrayWords(std::string_view words) {
    std::string stray;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(';'), words.size() - 1) + 1;
        if (!IsClause(words.substr(0, end))) stray += words.substr(0, end);
        words.remove_prefix(end);
    }
    std::string_view text = WithoutBlanks(stray);
    text.remove_prefix(std::min(text.find_first_not_of("-/ "), text.size()));
    return text.find_first_not_of("; ") == text.npos ? "" : CommentLines(fmt::format(" {}", text));
}

class Preamble {
public:
    void AddComments(std::string_view text) {
        while (!text.empty()) AddLine(TakeLine(text));
    }

    void AddPackage(std::string_view text) {
        AddBlankLine();
        while (!text.empty()) Add(fmt::format("{}\n", WithoutLastBlanks(TakeLine(text))));
        AddBlankLine();
    }

    void AddBlankLine() { gap_ = !text_.empty(); }

    std::string Text() const { return text_.empty() ? text_ : text_ + '\n'; }

private:
    void AddLine(std::string_view line) {
        const std::size_t dashes = std::min(line.find("--"), line.size());
        const std::string words = StrayWords(line.substr(0, dashes));
        if (!words.empty()) Add(words);
        if (dashes < line.size()) Add(CommentLines(line.substr(dashes + 2)));
        if (WithoutBlanks(line).empty()) AddBlankLine();
    }

    void Add(const std::string& lines) {
        if (std::exchange(gap_, false)) text_ += '\n';
        text_ += lines;
    }

    std::string text_;
    bool gap_ = false;
};

bool IsWithin(std::string_view part, std::string_view text) {
    return part.data() >= text.data() && part.data() < text.data() + text.size();
}

}  // namespace

std::string PreambleText(const bscan::Facts& facts) {
    std::string_view rest = facts.preamble;
    if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);
    Preamble preamble;
    for (const bscan::Word& package : facts.packages) {
        if (!IsWithin(package.text, rest)) continue;
        const auto before = static_cast<std::size_t>(package.text.data() - rest.data());
        preamble.AddComments(rest.substr(0, before));
        preamble.AddPackage(package.text);
        rest.remove_prefix(before + package.text.size());
    }
    preamble.AddComments(rest);
    return preamble.Text();
}

std::string PackagesBehind(const bscan::Facts& facts) {
    Preamble packages;
    for (const bscan::Word& package : facts.packages) {
        if (!IsWithin(package.text, facts.preamble)) packages.AddPackage(package.text);
    }
    const std::string text = packages.Text();
    return text.empty() ? text : '\n' + text.substr(0, text.size() - 1);
}

}  // namespace tool
