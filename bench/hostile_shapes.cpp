#include "hostile_shapes.h"

#include <string_view>

namespace bscan::bench {
namespace {

std::string Entity(const std::string& ports) {
    return "entity HOSTILE is\ngeneric (PHYSICAL_PIN_MAP : string := \"P\");\nport (\n" + ports +
           ");\n";
}

std::string Attribute(const char* name, const std::string& value) {
    return std::string("attribute ") + name + " of HOSTILE : entity is\n" + value + ";\n";
}

std::string Length(int cells) { return Attribute("BOUNDARY_LENGTH", std::to_string(cells)); }

std::string Ended(const std::string& text) { return text + "end HOSTILE;\n"; }

/// Lines of items that a function of the item's number makes, without the last separator.
template <typename Item>
std::string List(std::size_t bytes, std::string_view begin, Item item, std::string_view end,
                 std::string_view last) {
    std::string text;
    for (int number = 0; text.size() < bytes; ++number) {
        if (number != 0) text += end;
        text += begin;
        text += item(number);
    }
    return text + std::string(last);
}

/// A string value of one item a line.
template <typename Item>
std::string Quoted(std::size_t bytes, Item item) {
    return List(bytes, "\"", item, ",\" &\n", "\"");
}

std::string Base36(int number) {
    std::string digits;
    do {
        digits += "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[number % 36];
        number /= 36;
    } while (number != 0);
    return digits;
}

std::string OneLine(std::size_t bytes) {
    return "entity HOSTILE is generic (" + std::string(bytes, 'x');
}

std::string OneStatement(std::size_t bytes) {
    const auto word = [](int) { return "word word word word word word word word word"; };
    return Entity("A : in bit\n") + "attribute ENDLESS of HOSTILE : entity is\n" +
           List(bytes, "", word, "\n", "\n");
}

std::string ManyPorts(std::size_t bytes) {
    const auto name = [](int number) { return 'P' + Base36(number); };
    return Ended(Entity(List(bytes, "", name, ",\n", " : in bit\n")));
}

std::string EntriesForOneCell(std::size_t bytes) {
    return Ended(
        Entity("A : inout bit\n") + Length(1) +
        Attribute("BOUNDARY_REGISTER", Quoted(bytes, [](int) { return "0(BC_7,A,BIDIR,X)"; })));
}

std::string HugeRanges(std::size_t bytes) {
    const auto vector = [](int number) {
        return number % 2 == 0 ? "A, B, C : in bit_vector (0 to 2147483647)"
                               : "A, B, C : in bit_vector (2147483647 downto 0)";
    };
    return Ended(Entity(List(bytes, "", vector, ";\n", "\n")));
}

/// Ranges as large as one device may be, each of which the ones before it leave no room for.
std::string FillingRanges(std::size_t bytes) {
    const auto vector = [](int) { return "A : in bit_vector (0 to 1048575)"; };
    return Ended(Entity(List(bytes, "", vector, ";\n", "\n")));
}

std::string Nested(std::size_t bytes, const std::string& before, const std::string& inside) {
    const std::string open(60, '(');
    const std::string close(60, ')');
    const auto opens = [&](int) { return open; };
    const auto closes = [&](int) { return close; };
    return '"' + before + List(bytes / 2, "\"", opens, "\" &\n", "\" &\n").substr(1) + '"' +
           inside + "\" &\n" + List(bytes / 2, "\"", closes, "\" &\n", "\"");
}

std::string NestedEntry(std::size_t bytes) {
    return Ended(Entity("A : in bit\n") + Length(1) +
                 Attribute("BOUNDARY_REGISTER", Nested(bytes, "0", "BC_1,A,INPUT,X")));
}

std::string NestedGroups(std::size_t bytes) {
    return Ended(Entity("A, B : in bit\n") +
                 Attribute("PORT_GROUPING", Nested(bytes, "DIFFERENTIAL_VOLTAGE", "A,B")));
}

std::string CommentedEntries(std::size_t bytes) {
    int cells = 0;
    const std::string value = List(
        bytes, "\"",
        [&](int number) {
            ++cells;
            return std::to_string(number) + " (BC_1, *, INTERNAL, X),\" & -- R" + Base36(number);
        },
        "\n", "");
    // A comment behind the last entry would be a fault of syntax: one more entry follows it.
    return Ended(Entity("A : in bit\n") + Length(cells + 1) +
                 Attribute("BOUNDARY_REGISTER",
                           value + "\n\"" + std::to_string(cells) + " (BC_1, *, INTERNAL, X)\""));
}

std::string RepeatedPins(std::size_t bytes) {
    constexpr std::size_t kTimes = 1000;
    constexpr std::size_t kEntry = 17;
    const int ports = static_cast<int>(bytes / kTimes / kEntry) + 1;
    std::string names;
    for (int port = 0; port < ports; ++port) {
        names += (port == 0 ? "P" : ",\nP") + std::to_string(port);
    }
    const auto entry = [ports](int number) {
        const std::string port = std::to_string(number % ports);
        return 'P' + port + ":B" + port;
    };
    return Ended(Entity(names + " : in bit\n") + "constant P : PIN_MAP_STRING :=\n" +
                 Quoted(bytes, entry) + ";\n");
}

std::string CaseTwins(std::size_t bytes) {
    int twins = 0;
    const auto name = [&](int number) {
        std::string letters = "abcdefghijklmnopqrst";
        for (char& letter : letters) {
            if (number % 2 != 0) letter = static_cast<char>(letter - 'a' + 'A');
            number /= 2;
        }
        return letters;
    };
    const std::string ports = List(
        bytes / 3, "",
        [&](int number) {
            ++twins;
            return name(number);
        },
        ",\n", " : inout bit\n");
    std::string cells;
    for (int cell = 0; cell < twins; ++cell) {
        cells += (cell == 0 ? "\"" : ",\" &\n\"") + std::to_string(cell) + "(BC_7," + name(cell) +
                 ",BIDIR,X)";
    }
    return Ended(Entity(ports) + Length(twins) + Attribute("BOUNDARY_REGISTER", cells + '"'));
}

/// Groups of one and the same pair, every one of which the completion takes up.
std::string ManyGroups(std::size_t bytes) {
    const auto group = [](int) { return "Differential_Voltage((A,B))"; };
    return Ended(Entity("A, B : out bit\n") + Attribute("PORT_GROUPING", Quoted(bytes, group)) +
                 Length(4) +
                 Attribute("BOUNDARY_REGISTER",
                           "\"0 (BC_1, *, CONTROL, 1),\" &\n\"1 (BC_1, A, OUTPUT3, X, 0, 1, Z),\" "
                           "&\n\"2 (BC_1, *, INTERNAL, X), 3 (BC_1, *, INTERNAL, X),\" & -- B\n"
                           "\"2 (BC_1, *, INTERNAL, X)\""));
}

/// Groups of two pairs; no pair has a cell, and each looks for one.
std::string ManyPairs(std::size_t bytes) {
    std::string ports;
    for (int port = 0; port < 1000; ++port) ports += "P" + std::to_string(port) + ",\n";
    const auto group = [](int number) {
        const std::string port = std::to_string(number % 1000);
        return "Differential_Current((P" + port + ",A),(A,P" + port + "))";
    };
    return Ended(Entity(ports + "A : out bit\n") +
                 Attribute("PORT_GROUPING", Quoted(bytes, group)) + Length(1) +
                 Attribute("BOUNDARY_REGISTER", "\"0 (BC_1, *, INTERNAL, X)\""));
}

/// One name for every port, whose elements the pin map counts through.
std::string OneNameAgain(std::size_t bytes) {
    const std::string ports = List(
        bytes / 2, "", [](int) { return "A, A, A, A, A, A, A, A"; }, ",\n", " : in bit\n");
    const std::string pins = List(
        bytes / 2, "\"", [](int) { return "1, 1, 1, 1, 1, 1, 1, 1"; }, ",\" &\n", ")\"");
    return Ended(Entity(ports) + "constant P : PIN_MAP_STRING :=\n\"A : (\" &\n" + pins + ";\n");
}

/// Every length starts a register as large as one may be.
std::string LengthsAgain(std::size_t bytes) {
    const std::string length = Length(1 << 20);
    return Ended(Entity("A : in bit\n") +
                 List(
                     bytes, "", [&](int) { return std::string_view(length); }, "", ""));
}

/// Every register is followed by a completion over all pairs.
std::string RegistersOverPairs(std::size_t bytes) {
    const std::string cell = Attribute("BOUNDARY_REGISTER", "\"0 (BC_1, *, INTERNAL, X)\"");
    const auto group = [](int) { return "Differential_Voltage((A,B))"; };
    return Ended(Entity("A, B : out bit\n") + Attribute("PORT_GROUPING", Quoted(bytes / 2, group)) +
                 Length(1) +
                 List(
                     bytes / 2, "", [&](int) { return std::string_view(cell); }, "", ""));
}

constexpr HostileShape kShapes[] = {
    {"one endless line", OneLine},
    {"one endless statement", OneStatement},
    {"ports in one list", ManyPorts},
    {"entries for one cell", EntriesForOneCell},
    {"ranges of 2^31", HugeRanges},
    {"ranges of 2^20", FillingRanges},
    {"parentheses in an entry", NestedEntry},
    {"parentheses in a group", NestedGroups},
    {"a comment on every entry", CommentedEntries},
    {"each pin a thousand times", RepeatedPins},
    {"names that differ in case", CaseTwins},
    {"port groups of one pair", ManyGroups},
    {"port groups without cells", ManyPairs},
    {"one port name again", OneNameAgain},
    {"boundary lengths again", LengthsAgain},
    {"registers over many pairs", RegistersOverPairs},
};

}  // namespace

std::span<const HostileShape> HostileShapes() { return kShapes; }

}  // namespace bscan::bench
