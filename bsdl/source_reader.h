// A text that is being read statement by statement, and what its statements have in common.
#pragma once

#include "bsdl/lexer.h"
#include "bsdl/name_set.h"
#include "bsdl/reading.h"
#include "bsdl/value.h"

#include <optional>
#include <string_view>
#include <vector>

namespace bscan::detail {

// Where a file says a thing twice, with the same words or others: the first counts.
struct SaidBefore {
    NameSet names;
    std::vector<std::string_view> words;  // what was said of each name

    // Whether the thing is new. If not, there is a finding at its name.
    bool Add(Reading& reading, const Word& name, std::string_view key, std::string_view said,
             Rule other_words);
};

// A vector whose range cannot be read as a whole.
struct LostRange {
    Word port;
    std::optional<int> left, right;
    bool down = false;
    bool lacks_end = false;  // one of its ends, while its direction is clear
};

struct SourceReader {
    explicit SourceReader(Reading& target)
        : reading(target), lexer(target.text, &broken_comments) {}
    SourceReader(const SourceReader&) = delete;
    SourceReader& operator=(const SourceReader&) = delete;

    Reading& reading;
    std::vector<Word> broken_comments;
    Lexer lexer;
    Value value;  // of the statement that is being read
    SaidBefore ports;
    SaidBefore constants;
    SaidBefore attributes;
    bool text_ended = false;  // within a statement
    std::vector<LostRange> lost_ranges;
    NameSet declared;                 // attributes, by "attribute NAME : TYPE;"
    bool names_entity = false;        // in an attribute
    std::vector<Word> other_targets;  // entities that attributes name wrongly
    Word other_end;                   // the same behind "end"
};

// Reads up to the semicolon that ends a statement, and takes it. False when there is no value.
bool ReadValue(SourceReader& source);

// Tells that the text ends too early. What it would have said behind that is not known.
void FindTextEnd(SourceReader& source);

// Takes the semicolon that ends a statement; one that is missing is found fault with.
void EndStatement(SourceReader& source);

// Whether a declaration begins at the current token: words that nothing else in an entity has in
// this order.
bool BeginsDeclaration(const Lexer& lexer);

// Goes on behind the next semicolon, or at the next word that begins a declaration.
void SkipStatement(SourceReader& source);

// Finds fault with a statement that is none, and skips it.
void SkipUnknown(SourceReader& source);

Word TakeWord(Lexer& lexer);

// What was read since a word of the text.
std::string_view TextBehind(const Word& word, const Lexer& lexer);

// Takes a mark, `:=` or a keyword, or finds fault. A word that looks like the keyword is taken for
// it.
void ExpectMark(SourceReader& source, char mark, Rule rule);
void ExpectAssignment(SourceReader& source);
void ExpectKeyword(SourceReader& source, std::string_view keyword);

// Goes to the entity and reads its first line; false when there is none.
bool ReadPreamble(SourceReader& source);
// Looks at what follows the end of the entity.
void ReadBehindEntity(SourceReader& source);

// Clauses; each is entered behind its keyword.
void ReadGenericClause(SourceReader& source);
void ReadPortClause(SourceReader& source);
void ReadUseClause(SourceReader& source);
void ReadConstant(SourceReader& source);
void ReadAttribute(SourceReader& source);

// Goes on with a port clause that seemed to have ended.
void ReadMorePorts(SourceReader& source);

}  // namespace bscan::detail
