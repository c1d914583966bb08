#include "bsdl/value_lexer.h"

namespace bscan::detail {

ValueLexer::ValueLexer(const Value& value, std::deque<std::string>& joined,
                       std::vector<Word>& comments)
    : joined_(&joined),
      comments_(&comments),
      piece_(value.pieces.data()),
      end_(value.pieces.data() + value.pieces.size()) {
    EnterPiece(piece_);
    // What comes before the first token is the place where the value begins.
    first_ = 2;
    Token(2).word = {value.begin.text.substr(0, 0), value.begin.line, value.begin.column};
    Advance();
    Advance();
}

bool ValueLexer::EnterPiece(const Piece* piece) {
    piece_ = piece;
    if (piece_ == end_) return false;
    at_ = piece_->text.data();
    stop_ = at_ + piece_->text.size();
    return true;
}

void ValueLexer::ReadEnd() {
    Token(2) = {};
    Token(2).word = Behind(Token(1).word);
}

// Goes to the next token; false at the end.
bool ValueLexer::SkipBlanks() {
    for (;;) {
        while (at_ != stop_ && IsSpace(*at_)) ++at_;
        if (at_ != stop_ && (*at_ != '-' || !SkipComment())) return true;
        if (at_ == stop_ && (piece_ == end_ || !EnterPiece(piece_ + 1))) return false;
    }
}

// Passes "-- words" over, to the end of the piece. Looking ahead meets the same words again.
bool ValueLexer::SkipComment() {
    if (stop_ - at_ < 2 || at_[1] != '-') return false;
    const Word comment = WordTo(stop_);
    at_ = stop_;
    const bool known = !comments_->empty() && comments_->back().line >= comment.line;
    if (!known) comments_->push_back(comment);
    return true;
}

Word ValueLexer::WordTo(const char* end) const {
    return {{at_, static_cast<std::size_t>(end - at_)},
            piece_->line,
            piece_->column + static_cast<int>(at_ - piece_->text.data())};
}

void ValueLexer::ReadNext() {
    if (!SkipBlanks()) return ReadEnd();
    const char* end = at_;
    while (end != stop_ && IsWordCharacter(*end)) ++end;
    // A dot at the end of a word is a comma that was mistyped.
    if (end != at_ && end[-1] == '.') --end;
    ValueToken& token = Token(2);
    token.kind = end == at_ ? TokenKind::kSymbol : TokenKind::kWord;
    token.cut = 0;
    token.piece = piece_;
    token.word = WordTo(end == at_ ? end + 1 : end);
    at_ += token.word.text.size();
    if (at_ == stop_ && piece_->joins_next) JoinWord();
}

void ValueLexer::JoinWord() {
    ValueToken& token = Token(2);
    if (!token.IsWord()) return;
    const std::size_t first_part = token.word.text.size();
    std::string* whole = nullptr;
    while (piece_->joins_next && at_ == stop_ && piece_ + 1 != end_) {
        const std::string_view text = piece_[1].text;
        if (text.empty() || !IsWordCharacter(text.front())) break;
        if (whole == nullptr) whole = &joined_->emplace_back(token.word.text);
        EnterPiece(piece_ + 1);
        while (at_ != stop_ && IsWordCharacter(*at_)) ++at_;
        whole->append(text.data(), at_);
    }
    if (whole == nullptr) return;
    token.word.text = *whole;
    token.cut = first_part;
}

void ValueLexer::SplitCurrent() {
    ValueToken& token = Token(1);
    if (token.cut == 0) return;
    const Piece* const piece = token.piece;
    const char* const end = piece->text.data() + piece->text.size();
    token.word.text = {end - token.cut, token.cut};
    token.cut = 0;
    EnterPiece(piece + 1);
    ReadNext();
}

}  // namespace bscan::detail
