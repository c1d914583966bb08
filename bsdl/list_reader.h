// The lists that values are made of: entries, commas, parentheses.
#pragma once

#include "bsdl/findings.h"
#include "bsdl/source_reader.h"
#include "bsdl/value_lexer.h"

#include <optional>

namespace bscan::detail {

// Reads the value of a statement and finds fault with marks that are missing or too many. Each such
// fault is told once, and the reading goes on as if the mark were right.
class ListReader {
public:
    explicit ListReader(SourceReader& source);
    ~ListReader();
    ListReader(const ListReader&) = delete;
    ListReader& operator=(const ListReader&) = delete;

    const ValueToken& Current() const { return lexer_.Current(); }
    const ValueToken& Next() const { return lexer_.Next(); }
    const Word& Last() const { return lexer_.Last(); }
    const Piece* LastPiece() const { return lexer_.LastPiece(); }
    bool AtEnd() const { return lexer_.Current().IsEnd(); }
    Reading& GetReading() { return reading_; }

    void Advance() { lexer_.Advance(); }
    bool Accept(char symbol) { return lexer_.Accept(symbol); }
    void SplitCurrent() { lexer_.SplitCurrent(); }
    // A copy of the lexer, to look farther ahead.
    ValueLexer Ahead() const { return lexer_; }

    // Goes to the next entry of the value; false at the end. What begins none is passed over.
    bool NextEntry();
    // The comma behind an entry, or the end of the value.
    void EndEntry();
    // Goes to the next item in parentheses; false when there is none. A word with one of the marks
    // behind it is no item but begins the next entry: a `)` is missing then.
    bool NextItem(std::string_view entry_marks);

    // Takes a mark, or finds fault.
    void Expect(char mark, Rule rule);
    void Open();
    // Takes the `)` behind the last item.
    void Close();

    Word TakeWord();
    // A word that is an integer; nothing and a finding when it is none.
    std::optional<int> TakeInteger();
    // "A" or "A(3)".
    ElementName TakeElement();
    // Words up to the next mark as one row of bits: blanks and underscores are taken out. A length
    // that is known tells where a row ends without a comma; 0 is none.
    Word TakeBits(int length = 0);
    // Finds fault with what stands behind a value that has only one part.
    void ExpectEnd();

private:
    bool IsNewEntry(std::string_view entry_marks) const;
    bool BitsGoOn() const;
    bool CutIndex(ElementName& element);
    bool ReplacesMark(char mark) const;

    Reading& reading_;
    NameSet& ports_;              // of the device
    bool doubtful_;               // nothing is concluded from the value's end
    std::vector<Word> comments_;  // within strings
    ValueLexer lexer_;
    Word item_;                 // the last item that NextItem passed
    bool comma_taken_ = false;  // by NextItem, though it stands behind the entry
    bool opened_twice_ = false;
    bool opened_square_ = false;  // by a `[` in place of a `(`
};

}  // namespace bscan::detail
