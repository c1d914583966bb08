// The tokens of a value, whatever pieces it is written in.
#pragma once

#include "bsdl/lexer.h"
#include "bsdl/value.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace bscan::detail {

struct ValueToken : Token {
    const Piece* piece = nullptr;  // in which it begins; null at the end of the value
    // The size of its part in that piece, when it goes on in the next one; else 0.
    std::size_t cut = 0;
};

// Names, numbers and designators are words; ( ) [ ] , : ; = & are symbols. A word that is cut
// between two pieces of a string is one. A copy goes on by itself.
class ValueLexer {
public:
    // What is given must stay while tokens are used. "-- words" in a string are passed over and
    // noted.
    ValueLexer(const Value& value, std::deque<std::string>& joined, std::vector<Word>& comments);

    const Word& Last() const { return Token(0).word; }  // the token before the current one
    const ValueToken& Current() const { return Token(1); }
    const ValueToken& Next() const { return Token(2); }  // the token behind the current one
    // The piece in which the token before the current one began; null before the first.
    const Piece* LastPiece() const { return Token(0).piece; }

    void Advance() {
        first_ = (first_ + 1) % kTokens;
        ReadNext();
    }
    bool Accept(char symbol) {
        if (!Current().Is(symbol)) return false;
        Advance();
        return true;
    }
    // Takes the current word for two, where it is cut.
    void SplitCurrent();

private:
    // A ring of which three are in use: the last token, the current one, the next one.
    static constexpr unsigned kTokens = 4;

    ValueToken& Token(unsigned number) { return tokens_[(first_ + number) % kTokens]; }
    const ValueToken& Token(unsigned number) const { return tokens_[(first_ + number) % kTokens]; }

    void ReadNext();
    bool EnterPiece(const Piece* piece);
    bool SkipBlanks();
    bool SkipComment();
    Word WordTo(const char* end) const;
    void ReadEnd();
    void JoinWord();

    std::deque<std::string>* joined_;
    std::vector<Word>* comments_;
    const Piece* piece_;  // in which `at_` is
    const Piece* end_;
    const char* at_ = nullptr;
    const char* stop_ = nullptr;
    unsigned first_ = 0;
    ValueToken tokens_[kTokens];
};

}  // namespace bscan::detail
