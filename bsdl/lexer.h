// The tokens of a BSDL text outside its strings.
#pragma once

#include <bscan/facts.h>

#include "bsdl/character.h"
#include "support/text_view.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace bscan::detail {

enum class TokenKind : std::uint8_t {
    kEnd,     // nothing follows
    kWord,    // a name, a keyword or a number
    kSymbol,  // one character
    kQuote,   // the quote that begins a string; what follows it is not looked at
};

struct Token {
    Word word;
    TokenKind kind = TokenKind::kEnd;

    bool IsEnd() const { return kind == TokenKind::kEnd; }
    bool IsWord() const { return kind == TokenKind::kWord; }
    bool Is(char symbol) const { return kind == TokenKind::kSymbol && word.text[0] == symbol; }
    bool Is(std::string_view keyword) const {
        return kind == TokenKind::kWord && EqualIgnoringCase(word.text, keyword);
    }
};

// The place right behind a word, where something is missing.
inline Word Behind(const Word& word) {
    return {{word.text.data() + word.text.size(), 0},
            word.line,
            word.column + static_cast<int>(word.text.size())};
}

// Cuts a text into tokens and keeps count of lines; comments count as blanks. A copy goes on by
// itself, so looking ahead is reading with a copy.
class Lexer {
public:
    // Lines that look like a comment but do not begin as one are passed over and noted.
    explicit Lexer(std::string_view text, std::vector<Word>* broken_comments = nullptr);

    const Token& Current() const { return current_; }
    const Word& Last() const { return last_; }  // the word or symbol before the current token
    bool BeginsLine() const { return current_.word.line != last_.line; }

    void Advance();
    bool Accept(char symbol);
    bool Accept(std::string_view keyword);

    // The first comment between the last token and the current one, without its dashes.
    const Word& Comment() const { return comment_; }

    // The text behind the current token, for what is not made of tokens.
    std::string_view Rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
    // Takes characters of Rest() off and reads the token behind them. They become the last word.
    void Skip(std::size_t count);
    void SkipInLine(std::size_t count);  // of characters without an end of line

private:
    void SkipBlanks();
    bool AtBrokenComment() const;
    void SkipComment();
    void PassLineEnd();
    std::size_t WordSize() const;
    Word WordHere(std::size_t size) const;

    const char* at_;
    const char* end_;
    const char* line_begin_;
    std::vector<Word>* broken_comments_;
    int line_ = 1;
    Token current_;
    Word last_;
    Word comment_;
};

}  // namespace bscan::detail
