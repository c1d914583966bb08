// The text of port declarations.
#pragma once

#include <string_view>

namespace bscan::detail {

// One declaration of a port clause, such as "A, B : inout bit_vector (7 downto 4);".
struct PortDeclaration {
    std::string_view names;  // as written, between commas
    std::string_view mode;
    bool is_vector = false;
    int left = 0;  // bounds of a vector, in the order written
    int right = 0;
};

PortDeclaration CutPortDeclaration(std::string_view text);

// Takes the next name off a list of names; false when none is left. A name between commas may be
// empty.
bool TakePortName(std::string_view& names, std::string_view& name);

// Follows where a port clause ends: at the text behind the closing parenthesis of a declaration,
// which is remembered until another declaration brings one.
class PortClauseEnd {
public:
    // What follows the clause's opening parenthesis.
    void BeginWith(std::string_view text);
    // The next line of the clause.
    void GoOnWith(std::string_view line);
    bool IsReached() const { return reached_; }

    // Whether a line ends the clause by itself.
    static bool IsEndLine(std::string_view line);

private:
    void Remember(std::string_view rest);

    bool reached_ = false;
};

}  // namespace bscan::detail
