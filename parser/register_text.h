// The text of the boundary register.
#pragma once

#include "model/cell_fields.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// A part of a value. Values are shorter than what 32 bits count.
struct Span {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;

    std::string_view In(std::string_view value) const {
        return {value.data() + begin, end - begin};
    }
};

// An entry such as "12 (BC_1, IO(3), output3, X, 11, 1, Z)" and the comment behind it.
struct RegisterEntry {
    Span number;
    Span columns;  // what stands in the parentheses
    Span remark;   // without the dash that begins it and the '*' that ends it
};

// Takes the value of a boundary register, with its comments, apart. False when it holds something
// that is no entry, or none at all.
bool CutRegister(std::string_view value, std::vector<RegisterEntry>& entries);

// Reads an entry, but for its remark, into fresh fields: what has no column stays as it is. False
// when a value is none that its column may hold. The port is spelled as in the entry, and without
// its subscript.
bool CutRegisterEntry(std::string_view value, const RegisterEntry& entry, CellFields& fields);

// Leaves out the dashes and the white space of a remark.
void AppendRemark(std::string_view remark, std::string& text);

}  // namespace bscan::detail
