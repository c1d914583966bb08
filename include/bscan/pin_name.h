/// @file
/// A pin designator taken apart.
#pragma once

#include <string>

/// A designator such as AB12 as its letters and its number.
struct PIN_NAME {
    std::string letters;        ///< its letters in order; empty for a plain number
    unsigned short number = 0;  ///< the low 16 bits of the value of its digits
};
