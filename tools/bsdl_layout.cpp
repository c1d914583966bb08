#include "bsdl_layout.h"

#include "plain_text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tool {
namespace {

constexpr std::string_view kIndent = "  ";
constexpr std::string_view kValueIndent = "    ";

// Between the quotes of a line: less the indentation, two quotes and " &".
constexpr std::size_t kStringWidth = kBsdlWidth - kValueIndent.size() - 4;

std::string_view WithoutLastBlank(std::string_view text) {
    if (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

// "attribute NAME of TARGET : entity is", in two lines when the names are that long.
std::string Head(const std::string& head) {
    const std::size_t of = head.find(" of ");
    if (head.size() + kIndent.size() <= kBsdlWidth || of == std::string::npos) {
        return fmt::format("{}{}", kIndent, head);
    }
    return fmt::format("{}{}\n{}{}", kIndent, head.substr(0, of + 3), kValueIndent,
                       head.substr(of + 4));
}

std::string StringLine(std::string_view text, bool last, const std::string& comment) {
    return fmt::format("{}\"{}\"{}{}\n", kValueIndent, text, last ? ";" : " &",
                       comment.empty() ? "" : " -- " + comment);
}

// What is cut off a long part is set in.
void AppendPart(std::string& lines, const ListPart& part, bool last) {
    constexpr std::string_view kSetIn = "  ";
    const std::vector<std::string_view> cut =
        CutText(part.text, kStringWidth - kSetIn.size(), false);
    for (std::size_t i = 0; i < cut.size(); ++i) {
        const bool ends = i + 1 == cut.size();
        const std::string line =
            fmt::format("{}{}", i == 0 ? "" : kSetIn, WithoutLastBlank(cut[i]));
        lines += StringLine(line, last && ends, ends ? part.comment : "");
    }
}

}  // namespace

std::string WordStatement(const std::string& head, const std::string& value) {
    std::string line = fmt::format("{} {};\n", Head(head), value);
    if (line.size() <= kBsdlWidth + 1) return line;
    std::string lines = Head(head) + '\n';
    for (const std::string_view part :
         CutText(value, kBsdlWidth - kValueIndent.size() - 1, false)) {
        lines += fmt::format("{}{}\n", kValueIndent, WithoutLastBlank(part));
    }
    return lines.insert(lines.size() - 1, ";");
}

std::string PartsStatement(const std::string& head, const std::vector<ListPart>& parts) {
    std::string lines = Head(head) + '\n';
    for (const ListPart& part : parts) AppendPart(lines, part, &part == &parts.back());
    if (parts.empty()) lines += StringLine("", true, "");
    return lines;
}

std::string ListStatement(const std::string& head, const std::vector<std::string>& parts) {
    std::vector<ListPart> list;
    list.reserve(parts.size());
    for (const std::string& part : parts) {
        list.push_back({&part == &parts.back() ? part : part + ',', ""});
    }
    return PartsStatement(head, list);
}

std::string TextStatement(const std::string& head, std::string_view text) {
    std::string lines = Head(head) + '\n';
    const std::string plain = PlainText(text);
    const std::vector<std::string_view> parts = CutText(plain, kStringWidth, true);
    for (const std::string_view& part : parts) {
        lines += StringLine(part, &part == &parts.back(), "");
    }
    return lines;
}

std::string InParentheses(const std::vector<std::string>& items) {
    return fmt::format("({})", fmt::join(items, ", "));
}

}  // namespace tool
