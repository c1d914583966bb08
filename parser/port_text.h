// The text of port declarations.
#pragma once

#include <string_view>

namespace bscan::detail {

// One declaration of a port clause, such as "A, B : inout bit_vector (7 downto 4);".
struct PortDeclaration {
    std::string_view names;  // as written, with the commas between them
    std::string_view mode;
    bool is_vector = false;
    int left = 0;  // bounds of a vector, in the order written
    int right = 0;
};

PortDeclaration CutPortDeclaration(std::string_view text);

// Takes the next name off a list of names; false when none is left. A name between commas may be
// empty.
bool TakePortName(std::string_view& names, std::string_view& name);

// Tells when a port clause has ended: as soon as ");" or ") ;" stands behind the range of a
// declaration, or behind its type where it has no range.
class PortClauseEnd {
public:
    // What follows the clause's opening parenthesis; the first closing one in it is taken for that
    // of a range.
    void BeginWith(std::string_view text);
    // The next line of the clause.
    void GoOnWith(std::string_view line);
    bool IsReached() const { return reached_; }

    // Whether a line ends the clause by itself.
    static bool IsEndLine(std::string_view line);

private:
    void LookForEndIn(std::string_view rest);

    bool reached_ = false;
};

}  // namespace bscan::detail
