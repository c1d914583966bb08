// The text of constant statements.
#pragma once

#include <string_view>

namespace bscan::detail {

inline constexpr std::string_view kPinMapString = "PIN_MAP_STRING";
inline constexpr std::string_view kBoundaryRegister = "BOUNDARY_REGISTER";

// What stands from the place where a type's name first occurs in a statement, which must hold it,
// to the end of the word there. It is the name itself also where the name ends a longer word, and
// more than the name where it begins one; nothing when the statement ends with that word.
std::string_view TypeWord(std::string_view statement, std::string_view type);

// The name of a constant: the word behind the statement's first space.
std::string_view ConstantName(std::string_view statement);

}  // namespace bscan::detail
