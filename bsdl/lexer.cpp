#include "bsdl/lexer.h"

#include "support/text_view.h"

#include <algorithm>

namespace bscan::detail {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kEnDash = "\xE2\x80\x93";
constexpr std::string_view kEmDash = "\xE2\x80\x94";

}  // namespace

Lexer::Lexer(std::string_view text, std::vector<Word>* broken_comments)
    : at_(text.data()),
      end_(text.data() + text.size()),
      line_begin_(text.data()),
      broken_comments_(broken_comments) {
    if (text.starts_with(kByteOrderMark)) {
        at_ += kByteOrderMark.size();
        line_begin_ = at_;
    }
    Advance();
    last_ = {Rest().substr(0, 0), 0, 0};
}

void Lexer::PassLineEnd() {
    const bool pair = *at_ == '\r' && at_ + 1 != end_ && at_[1] == '\n';
    at_ += pair ? 2 : 1;
    line_begin_ = at_;
    ++line_;
}

void Lexer::SkipComment() {
    const std::size_t size = LineSize(Rest());
    if (!comment_.Exists()) {
        comment_ = WordHere(size);
        const std::size_t dashes = std::min(comment_.text.find_first_not_of('-'), size);
        comment_.text = Trim(comment_.text.substr(dashes));
    }
    at_ += size;
}

// "- words", "// words", and the long dashes that word processors make of "--". A number may have a
// minus, which is wrong in another way.
bool Lexer::AtBrokenComment() const {
    const std::string_view rest = Rest();
    if (rest[0] == '-') return rest.size() < 2 || !IsDigit(rest[1]);
    return rest.starts_with("//") || rest.starts_with(kEnDash) || rest.starts_with(kEmDash);
}

void Lexer::SkipBlanks() {
    while (at_ != end_) {
        const CharacterClass kind = ClassOf(*at_);
        if (kind == CharacterClass::kLineEnd) {
            PassLineEnd();
        } else if (kind == CharacterClass::kBlank) {
            ++at_;
        } else if (kind == CharacterClass::kDash && at_ + 1 != end_ && at_[1] == '-') {
            SkipComment();
        } else if (kind <= CharacterClass::kDash && AtBrokenComment()) {
            // Looking ahead meets the same comment again.
            const Word comment = WordHere(LineSize(Rest()));
            const bool known =
                broken_comments_ == nullptr ||
                (!broken_comments_->empty() && broken_comments_->back().line >= comment.line);
            if (!known) broken_comments_->push_back(comment);
            SkipComment();
        } else {
            return;
        }
    }
}

Word Lexer::WordHere(std::size_t size) const {
    return {{at_, size}, line_, static_cast<int>(at_ - line_begin_) + 1};
}

// A dash belongs to a word, as in 1.0E-3 or in a name that is none, unless a comment begins.
std::size_t Lexer::WordSize() const {
    const char* at = at_;
    for (; at != end_; ++at) {
        const CharacterClass kind = ClassOf(*at);
        if (kind == CharacterClass::kWord) continue;
        if (kind != CharacterClass::kDash || (at + 1 != end_ && at[1] == '-')) break;
    }
    // A dot at the end of a word is another mark that was mistyped.
    if (at - at_ > 1 && at[-1] == '.') --at;
    return static_cast<std::size_t>(at - at_);
}

void Lexer::Advance() {
    last_ = current_.word;
    comment_ = {};
    SkipBlanks();
    current_ = {};
    if (at_ == end_) {
        current_.word = WordHere(0);
        return;
    }
    const CharacterClass kind = ClassOf(*at_);
    std::size_t size = 1;
    if (kind == CharacterClass::kQuote || Rest().starts_with(kOpeningQuote)) {
        current_.kind = TokenKind::kQuote;
        if (kind != CharacterClass::kQuote) size = kOpeningQuote.size();
    } else if (kind == CharacterClass::kSymbol) {
        current_.kind = TokenKind::kSymbol;
    } else {
        current_.kind = TokenKind::kWord;
        size = WordSize();
    }
    current_.word = WordHere(size);
    at_ += size;
}

bool Lexer::Accept(char symbol) {
    if (!current_.Is(symbol)) return false;
    Advance();
    return true;
}

bool Lexer::Accept(std::string_view keyword) {
    if (!current_.Is(keyword)) return false;
    Advance();
    return true;
}

void Lexer::SkipInLine(std::size_t count) {
    const Word skipped = WordHere(count);
    at_ += count;
    Advance();
    last_ = skipped;
}

void Lexer::Skip(std::size_t count) {
    const char* const stop = at_ + count;
    Word skipped = WordHere(0);
    while (at_ != stop) {
        const std::string_view rest(at_, static_cast<std::size_t>(stop - at_));
        const std::size_t size = LineSize(rest);
        skipped = WordHere(size);
        at_ += size;
        if (at_ != stop) PassLineEnd();
    }
    Advance();
    last_ = skipped;
}

}  // namespace bscan::detail
