// What a player brought back from the vectors of a board test, as text.
#pragma once

#include <bscan/board/board_test.h>

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// One line for each capture in their order: the scan in hexadecimal, as SVF and OpenOCD write it.
/// '#' begins a comment.
std::string WriteCaptures(const bscan::BoardTest& test,
                          const std::vector<bscan::ScanBits>& captures);

/// Reads such a text, with as many captures as the test takes.
/// @return what is wrong in a sentence; empty when nothing is.
std::string ReadCaptures(std::string_view text, const bscan::BoardTest& test,
                         std::vector<bscan::ScanBits>& captures);

}  // namespace tool
