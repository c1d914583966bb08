// Netlists in both formats, well and badly written, and the patterns that name parts and nets.

#include <bscan/board/board.h>
#include <bscan/board/netlist.h>

#include <gtest/gtest.h>

namespace bscan {
namespace {

// A netlist on one line; of a bad one, where and why.
std::string Text(const Netlist& netlist) {
    if (!netlist.Ok()) return std::to_string(netlist.line) + ": " + netlist.problem;
    std::string text;
    for (const NetlistNet& net : netlist.nets) {
        text += net.name + "@" + std::to_string(net.line) + ":";
        for (const NetlistPin& pin : net.pins) text += " " + pin.part + "." + pin.pin;
        text += "; ";
    }
    return text;
}

struct Case {
    const char* text;
    const char* expected;
};

TEST(Netlist, ReadsKicad) {
    const Case cases[] = {
        {"(export (version \"E\")\n (components (comp (ref U9) (net x)))\n (nets\n"
         "  (net (code \"1\") (name \"/A \\\"x\\\"\") (class \"Default\")\n"
         "   (node (ref \"U1\") (pin \"B3\") (pintype \"bidirectional\")) (node (ref U2) (pin "
         "1)))\n"
         "  (net (name GND) (node (ref U2) (pin 2)) (node (pin 2) (ref U2)))))\n",
         "/A \"x\"@4: U1.B3 U2.1; GND@6: U2.2; "},
        {"\xEF\xBB\xBF (export(nets(net(node(ref A)(pin 1))(name N))))", "N@1: A.1; "},
        {"(export (nets))", ""},
        {"(export)", "1: This is no netlist of KiCad: it has no nets."},
        {"(kicad_sch (nets))", "1: This is no netlist of KiCad: it begins otherwise."},
        {"(export (nets\n(net (name A)\n", "3: The text ends within a list."},
        {"(export (nets))\n)", "2: A parenthesis closes nothing."},
        {"(export (nets))\n(x)", "2: Text stands behind the netlist."},
        {"(export (nets (net\n(name \"A", "2: A quoted text does not end."},
        {"(export (nets\n(net (node (ref U1) (pin 1)))))", "2: A net has no name."},
        {"(export (nets (net (name A)\n(node (pin 1)))))", "2: A pin names no part."},
        {"(export (nets (net (name A)\n(node (ref U1)))))", "2: A pin of 'U1' has no designator."},
        {"(export (nets (net (name A) (node (ref U1) (pin 1)))\n(net (name B)\n"
         "(node (ref U1) (pin 1)))))",
         "3: Pin '1' of 'U1' is on the nets 'A' and 'B'."},
    };
    for (const Case& c : cases) EXPECT_EQ(Text(ReadNetlist(c.text)), c.expected) << c.text;
    const std::string deep = "(export " + std::string(100000, '(');
    EXPECT_EQ(Text(ReadNetlist(deep)), "1: Lists lie too deep within each other.");
}

TEST(Netlist, ReadsCsv) {
    const Case cases[] = {
        {"Pin,value,NET,part\r\n1,x,A,U1\r\n\r\n2,\"a,\"\"b\n\",\"A\",U2\n 3 ,, B ,U1",
         "A@2: U1.1 U2.2; B@6: U1.3; "},
        {"net,part,pin\n", ""},
        {"", "1: The text names no columns: it is empty."},
        {"net,part\nA,U1\n", "1: The first line has to name the columns net, part and pin."},
        {"net,part,pin\nA,U1\n", "2: The line has fewer fields than the first one needs."},
        {"net,part,pin\nA,U1,\n", "2: A pin of 'U1' has no designator."},
        {"net,part,pin\n,U1,1\n", "2: A net has no name."},
        {"net,part,pin\nA,\"U1,1\n\n", "2: A quoted field does not end."},
        {"net,part,pin\nA,\"U1\"x,1\n", "2: Text stands behind a quoted field."},
        {"net,part,pin\nA,U1,1\nB,U1,1\n", "3: Pin '1' of 'U1' is on the nets 'A' and 'B'."},
        // The dot between part and pin is no part of either.
        {"net,part,pin\nA,U.1,2\nB,U,1.2\n", "A@2: U.1.2; B@3: U.1.2; "},
    };
    for (const Case& c : cases) EXPECT_EQ(Text(ReadNetlist(c.text)), c.expected) << c.text;
}

TEST(Patterns, TakeStarsAndQuestionMarks) {
    const struct {
        const char* pattern;
        const char* name;
        bool fits;
    } cases[] = {{"R*", "R12", true},    {"R*", "CR1", false},      {"*_N", "A_N_N", true},
                 {"D?", "D1", true},     {"D?", "D", false},        {"", "", true},
                 {"*", "", true},        {"a*b*c", "aXbXbc", true}, {"a*b*c", "aXbX", false},
                 {"VCC", "VCC1", false}, {"vcc", "VCC", false}};
    for (const auto& c : cases) {
        EXPECT_EQ(FitsPattern(c.pattern, c.name), c.fits) << c.pattern << " " << c.name;
    }
    const std::string stars(2000, '*');
    EXPECT_FALSE(FitsPattern(stars + "b", std::string(20000, 'a')));
}

}  // namespace
}  // namespace bscan
