// Texts for people in the characters that every reader of BSDL takes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Text in printable ASCII alone: tabs and control characters become blanks, letters lose their
/// accents, and a character without a likeness becomes a question mark. Bytes that are not UTF-8
/// are taken for Latin-1.
std::string PlainText(std::string_view text);

/// Cuts a text at blanks into parts of at most @p width characters. A blank at which it is cut
/// stays at the end of its part. A word that is longer alone is cut too when @p cut_words is true.
std::vector<std::string_view> CutText(std::string_view text, std::size_t width, bool cut_words);

}  // namespace tool
