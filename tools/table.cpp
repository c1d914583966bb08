#include "table.h"

#include "printable.h"
#include "terminal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>

namespace tool {
namespace {

std::string PlainText(const Json& value, std::string_view separator) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (!value.is_array()) return value.dump();
    std::string text;
    for (const Json& item : value) {
        if (!text.empty()) text += separator;
        text += PlainText(item, separator);
    }
    return text;
}

std::string ForPeople(const Json& value) {
    const std::string text = value.is_null() ? "" : Printable(PlainText(value, ", "));
    return text.empty() ? "-" : text;
}

std::string ForCsv(const Json& value) {
    std::string text = value.is_null() ? "" : Printable(PlainText(value, " "));
    if (text.find_first_of(",\"") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) quoted.append(character == '"' ? 2 : 1, character);
    return quoted + '"';
}

bool IsNumeric(const Table& table, std::size_t column) {
    return std::all_of(table.rows.begin(), table.rows.end(), [&](const std::vector<Json>& row) {
        return row[column].is_number() || row[column].is_null();
    });
}

using Line = std::vector<std::string>;

struct Layout {
    std::vector<std::size_t> width;
    std::vector<bool> right;
};

std::string Aligned(const Line& line, const Layout& layout) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const std::string padding(layout.width[i] - Width(line[i]), ' ');
        if (i > 0) text += "  ";
        text += layout.right[i] ? padding + line[i] : line[i] + padding;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void PrintAligned(std::FILE* stream, const Table& table) {
    std::vector<Line> lines(table.rows.size() + 1);
    Layout layout;
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        if (table.columns[c].audience == Audience::kPrograms) continue;
        lines[0].push_back(table.columns[c].title);
        for (std::size_t r = 0; r < table.rows.size(); ++r) {
            lines[r + 1].push_back(ForPeople(table.rows[r][c]));
        }
        layout.right.push_back(IsNumeric(table, c));
        std::size_t width = 0;
        for (const Line& line : lines) width = std::max(width, Width(line.back()));
        layout.width.push_back(width);
    }
    const Style style(stream);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string text = Aligned(lines[i], layout);
        Write(stream, (i == 0 ? style(Emphasis::kBold, text) : text) + '\n');
    }
}

Json Cleaned(const Json& value) {
    if (value.is_string()) return JsonText(value.get<std::string>());
    if (!value.is_structured()) return value;
    Json clean = value;
    for (Json& item : clean) item = Cleaned(item);
    return clean;
}

}  // namespace

void Print(std::FILE* stream, const Table& table, Format format) {
    if (format == Format::kCsv) {
        PrintCsvRows(stream, table, Headings::kWith);
    } else {
        PrintAligned(stream, table);
    }
}

void PrintCsvRows(std::FILE* stream, const Table& table, Headings headings) {
    std::vector<std::string> fields;
    for (const Column& column : table.columns) fields.push_back(column.key);
    std::string text;
    if (headings == Headings::kWith) text = fmt::format("{}\n", fmt::join(fields, ","));
    for (const std::vector<Json>& row : table.rows) {
        std::transform(row.begin(), row.end(), fields.begin(), ForCsv);
        text += fmt::format("{}\n", fmt::join(fields, ","));
    }
    Write(stream, text);
}

Json ToJson(const Table& table) {
    Json list = Json::array();
    for (const std::vector<Json>& row : table.rows) {
        Json object = Json::object();
        for (std::size_t c = 0; c < row.size(); ++c) object[table.columns[c].key] = row[c];
        list.push_back(std::move(object));
    }
    return list;
}

void Print(std::FILE* stream, const Json& value, int indent) {
    Write(stream, Cleaned(value).dump(indent) + '\n');
}

}  // namespace tool
