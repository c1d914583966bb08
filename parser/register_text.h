// The text of the boundary register.
#pragma once

#include "model/cell_fields.h"

#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// An entry such as "12 (BC_1, IO(3), output3, X, 11, 1, Z)" and the comment behind it.
struct RegisterEntry {
    std::string_view number;
    std::string_view columns;  // what stands in the parentheses
    std::string_view remark;   // without the dash that begins it and the '*' that ends it
};

// Takes the value of a boundary register, with its comments, apart. False when it holds something
// that is no entry, or none at all.
bool CutRegister(std::string_view value, std::vector<RegisterEntry>& entries);

// Reads an entry, but for its remark, into fresh fields: what has no column stays as it is. False
// when a value is none that its column may hold. The port is spelled as in the entry, and without
// its subscript.
bool CutRegisterEntry(const RegisterEntry& entry, CellFields& fields);

// Appends a remark without its dashes and its white space: the name that it gives a cell.
void AppendRemark(std::string_view remark, std::string& text);

}  // namespace bscan::detail
