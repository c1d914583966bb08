// The text of constant statements.
#pragma once

#include <string_view>

namespace bscan::detail {

inline constexpr std::string_view kPinMapString = "PIN_MAP_STRING";
inline constexpr std::string_view kBoundaryRegister = "BOUNDARY_REGISTER";

// The word that begins where a type's name first occurs in a statement that holds it. Where that is
// the end of a longer word, or its beginning, the word is not the type.
std::string_view TypeWord(std::string_view statement, std::string_view type);

// The name of a constant: the word behind the statement's first space.
std::string_view ConstantName(std::string_view statement);

}  // namespace bscan::detail
