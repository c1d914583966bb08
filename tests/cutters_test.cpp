// The cutters by themselves, on texts that few files hold.

#include <bscan/result.h>

#include "parser/constant_text.h"
#include "parser/name_list_text.h"
#include "parser/pin_map_text.h"
#include "parser/port_group_text.h"
#include "parser/port_text.h"
#include "parser/register_text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace bscan::test {
namespace {

using namespace bscan::detail;

struct Row {
    std::string_view text;
    std::string_view parts;
};

template <std::size_t kRows, typename Cut>
void ExpectParts(const Row (&rows)[kRows], Cut cut) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        std::ostringstream parts;
        cut(row.text, parts);
        EXPECT_EQ(parts.str(), row.parts);
    }
}

TEST(Cutters, PinMap) {
    const Row rows[] = {
        {"", ""},
        {"A:1", "[A=1]"},
        {" A : (1 , 2),\tB:3 ", "[ A=1,2][B=3]"},
        {"A:(1,2", "[A=1,2]"},
        {"A:()", "[A=]"},
        {"A:(1)", "[A=1]"},
        {"A:1,2,B:3", "[A=1][2,B=3]"},  // without its own colon an entry borrows the next one's
        {"A:1,2", "[A=1][A=2]"},        // and keeps its port when there is none
        {":1", "[=:1]"},
        {"A:(1),", "[A=1]"},
        {"A:(,1)", "[A=,1]"},  // a comma in front makes one designator of the rest
        {"A:(1,,2)", "[A=1,,2]"},
        {"A", "[=A]"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        PinMapCutter cutter(text);
        for (PinMapEntry entry; cutter.Next(entry);) {
            parts << '[' << entry.port << '=';
            const char* comma = "";
            for (std::string_view pin; TakePin(entry.pins, pin); comma = ",") parts << comma << pin;
            parts << ']';
        }
    });
}

TEST(Cutters, BoundaryRegister) {
    const Row rows[] = {
        {"", "none"},
        {"\" \t", "none"},
        {"- only a remark *", "none"},
        {"0 (A)", "[0 (A)]"},
        {"0 (A), -- one -* 1 (B(2)) ,", "[0 (A)|- one -][1 (B(2))]"},
        {"-x*0 (A)", "[0 (A)]"},
        {"0 (A), -a*-b*", "[0 (A)|b]"},
        {"0 (A) 1", "none"},
        {"0 A)", "none"},
        {"(A)", "none"},             // the first character is taken as it is
        {"0 (A), 1 (B", "[0 (A)]"},  // an entry without end is none
        {"0 (A), -b", "[0 (A)]"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        if (!IsRegister(text)) {
            parts << "none";
            return;
        }
        RegisterCutter cutter(text);
        for (RegisterEntry entry; cutter.Next(entry);) {
            parts << '[' << entry.text << (entry.remark.empty() ? "" : "|") << entry.remark << ']';
        }
    });
}

TEST(Cutters, BoundaryRegisterEntry) {
    const Row rows[] = {
        {"3 (BC_1, A(2), input, X)", "3 BC_1 A(2) input 2"},
        {"3 ( BC_1 , * , Control , 0 )", "3 BC_1 (0) Control 0"},
        {"3(BC_7,B,bidir,x,12,1,weak0)", "3 BC_7 B(0) bidir 2 12 1 6"},
        {"3 (BC_1, A, output3, 1, 4)", "refused"},
        {"3 (BC_1, A, output3, 1, 4, 0)", "refused"},
        {"3 (BC_1, A, output3, 1, 4, X, Z)", "refused"},
        {"3 (BC_1, A, output3, 1, 4, 0, Z, Z)", "refused"},
        {"3 (BC_1, A, input, -)", "refused"},
        {"3 (BC_1, A, input)", "refused"},
        {"3 (BC_1, A(, input, 1)", "3 BC_1 A(0) input 1"},
        {"4294967299 (BC_1, A(-1), input, 1)", "3 BC_1 A(-1) input 1"},
        {"99999999999999999999 (BC_1, A, input, 1)", "-1 BC_1 A(0) input 1"},
        {"", "refused"},
        {"(", "refused"},
        {",,,,,,,", "refused"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        RegisterFields f;
        if (!CutRegisterEntry(text, f)) {
            parts << "refused";
            return;
        }
        parts << f.number << ' ' << f.type << ' ' << f.port << '(' << f.port_index << ") "
              << f.function << ' ' << f.safe;
        if (f.control >= 0) {
            parts << ' ' << f.control << ' ' << f.disable_value << ' ' << f.disable_result;
        }
    });
}

TEST(Cutters, NameList) {
    const Row rows[] = {
        {"\"A (1)\"", "[A=1]"},
        {"is \"A (1, 2),\" & \"B(3)\"; C(4)", "[A=1,2][B=3]"},
        {"\"A (1,\" & \"2)\"", "[A=1,2]"},
        {"no entry", ""},
        {"\"A (1,)\"", "-16"},
        {"\"A (1 2)\"", "-16"},
        {"\"A B (1)\"", "-16"},
        {"\"(1)\"", "-8"},
        {"\"A )\"", "-8"},
        {")", "-8"},
        {"\"A (1)), B (2)\"", "[A=1]-8"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        NameListCutter cutter(text, kBadOpcode);
        NameListEntry entry;
        while (!cutter.IsAtEnd()) {
            const int result = cutter.Next(entry);
            if (result != kOk) {
                parts << result;
                return;
            }
            parts << '[' << entry.name << '=';
            for (const std::string& item : entry.items) {
                parts << (&item == &entry.items.front() ? "" : ",") << item;
            }
            parts << ']';
        }
    });
}

TEST(Cutters, PortDeclaration) {
    const Row rows[] = {
        {"A : in bit;", "A in"},
        {"A, ,B,:inout bit_vector (7 downto 4);", "A||B inout 7 4"},
        {"A : out bit_vector(0 to 4294967296)", "A out 0 0"},
        {"A : out bit_vector(-3 to 2147483648)", "A out -3 -2147483648"},
        {"A : in", "A "},
        {"A : in\n", "A in"},
        {"A in bit", " A"},
        {"", " "},
        {":", " "},
        {"A : linkage bit_vector", "A linkage 0 0"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        PortDeclaration d = CutPortDeclaration(text);
        const char* bar = "";
        for (std::string_view name; TakePortName(d.names, name); bar = "|") parts << bar << name;
        parts << ' ' << d.mode;
        if (d.is_vector) parts << ' ' << d.left << ' ' << d.right;
    });
}

TEST(Cutters, PortGrouping) {
    const Row rows[] = {
        {"Differential_Voltage ((A, B),(C,D)) , differential_current((E,F)) rest", "refused"},
        {"Differential_Voltage ((A, B),(C,D)) , differential_current((E,F))",
         "{[A/B][C/D]}{[E/F]}"},
        {"Differential_Voltage ((A, B)), rest", "{[A/B]}"},
        {"Differential_Voltage ((A(0), B(0)))", "{}"},  // a subscript ends the pairs
        {"Differential_Voltage ((A B))", "{error}"},
        {"Differential_Voltage ((A,))", "{error}"},
        {"Differential_Voltage ((A,B)x)", "{error}"},
        {"Differential_Voltage ()", "{}"},
        {"Single (A)", "{none}"},
        {")(", "{none}"},  // balanced, as counted
        {")", "refused"},
        {"((", "refused"},
        {"", "refused"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        std::vector<std::string_view> groups;
        if (!CutPortGroups(text, groups)) {
            parts << "refused";
            return;
        }
        for (const std::string_view group : groups) {
            std::string_view pairs;
            PairNames names;
            parts << '{' << (CutPortGroup(group, pairs) ? "" : "none");
            Taken taken = TakePair(pairs, names);
            for (; taken == Taken::kItem; taken = TakePair(pairs, names)) {
                parts << '[' << names.positive << '/' << names.negative << ']';
            }
            parts << (taken == Taken::kError ? "error}" : "}");
        }
    });
}

TEST(Cutters, Constant) {
    const Row rows[] = {
        {"constant QFP : PIN_MAP_STRING := ", "QFP PIN_MAP_STRING"},
        {"constant QFP: MY_PIN_MAP_STRINGS:=", "QFP PIN_MAP_STRINGS"},
        {"constant A : SOME_PIN_MAP_STRING\t:=", "A PIN_MAP_STRING"},
    };
    ExpectParts(rows, [](std::string_view text, std::ostream& parts) {
        parts << ConstantName(text) << ' ' << TypeWord(text, kPinMapString);
    });
}

}  // namespace
}  // namespace bscan::test
