// A table that prints aligned for people, and as CSV or JSON for programs.
#pragma once

#include "output.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace tool {

using Json = nlohmann::ordered_json;

enum class Audience { kEveryone, kPrograms };

struct Column {
    std::string key;    ///< name in CSV and JSON
    std::string title;  ///< heading for people
    Audience audience = Audience::kEveryone;
};

/// Rows of values: texts, numbers, truth values, lists of them, or null for what does not apply.
/// Texts are kept as the file has them; printing makes them fit.
struct Table {
    std::vector<Column> columns;
    std::vector<std::vector<Json>> rows;
};

/// Prints a table as Format::kTable or Format::kCsv.
void Print(std::FILE* stream, const Table& table, Format format);

enum class Headings { kWith, kWithout };

/// Prints rows as CSV.
void PrintCsvRows(std::FILE* stream, const Table& table, Headings headings);

/// A list of objects, one for each row.
Json ToJson(const Table& table);

/// Writes one JSON value and a newline; @p indent below 0 writes it on one line.
void Print(std::FILE* stream, const Json& value, int indent);

}  // namespace tool
