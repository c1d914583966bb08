// How people name pins, and the levels that they ask for.

#include <bscan/pin_names.h>

#include "support/chain_device.h"

#include <gtest/gtest.h>

namespace bscan {
namespace {

using test::DescribedDevice;

constexpr std::string_view kNamedDevice =
    R"bsdl(entity NAMED is
        generic (PHYSICAL_PIN_MAP : string := "P");
        port (D : inout bit_vector(5 downto 2); N : in bit_vector(0 to 2);
              d_x, DX, ONE_AND_ALL : out bit; E : in bit_vector(3 to 3));
        constant P : PIN_MAP_STRING := "D:(A1,A2,A3,A4), N:(1,2,3), d_x:DX, DX:B2, " &
            "ONE_AND_ALL:B3, E:B4";
        end NAMED;)bsdl";

std::string LabelsOf(const PinNames& names, std::string_view text) {
    std::string labels;
    for (const int element : names.Find(text)) labels += names.Label(element) + " ";
    return labels;
}

TEST(PinNames, FindsWhatPeopleMean) {
    struct Row {
        const char* text;
        const char* labels;
    };
    const Row rows[] = {
        {"d", "D(5) D(4) D(3) D(2) "},
        {"D(2)", "D(2) "},
        {"D(5)", "D(5) "},
        {"D(1)", ""},
        {"D(3..5)", "D(3) D(4) D(5) "},
        {"D[5..4]", "D(5) D(4) "},
        {"D(5..5)", "D(5) "},
        {"D(5..1)", ""},
        {"D(0..2000000000)", ""},
        {"D(-2147483648..2147483647)", ""},
        {"D(3..)", ""},
        {"D(3", ""},
        {"D()", ""},
        {"N(-1..0)", ""},
        {"N(1..2)", "N(1) N(2) "},
        {"d*", "D(5) D(4) D(3) D(2) d_x DX "},
        {"*_*", "d_x ONE_AND_ALL "},
        {"o*n*_l*l", ""},
        {"o*n*_*l*l", "ONE_AND_ALL "},
        {"D*(4)", "D(4) "},
        {"*(3)", "D(3) E(3) "},
        {"**", "D(5) D(4) D(3) D(2) N(0) N(1) N(2) d_x DX ONE_AND_ALL E(3) "},
        {"pin:D*", ""},
        {"DX", "d_x "},  // the pin of that name comes before the port
        {"port:DX", "DX "},
        {"dx", "DX "},
        {"E", "E(3) "},
        {"E(0)", ""},
        {"DX(0)", "DX "},
        {"", ""},
        {"port:", ""},
    };
    DescribedDevice device(kNamedDevice);
    ASSERT_EQ(device.description.Result(), 0);
    const PinDriver driver(*device.parser.GetPinMap());
    const PinNames names(driver, &device.description.GetFacts());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(LabelsOf(names, row.text), row.labels);
    }
    // Without facts, indexes count from the lowest.
    EXPECT_EQ(LabelsOf(PinNames(driver, nullptr), "D(1..0)"), "D(1) D(0) ");
    EXPECT_EQ(names.Label(99) + names.Label(-1), "");
    EXPECT_EQ(names.IndexOf(0), 5);
    EXPECT_EQ(names.IndexOf(7), std::nullopt);
}

TEST(PinLevels, ReadsLevelsAndNumbers) {
    struct Row {
        const char* text;
        std::size_t count;
        const char* levels;  // of that many elements; empty where it does not fit or is none
    };
    const Row rows[] = {
        {"0", 2, "00"},
        {"1", 3, "111"},
        {"z", 2, "ZZ"},
        {"0x5A", 8, "01011010"},
        {"0x5a", 9, "001011010"},
        {"0X5A", 7, "1011010"},
        {"0x5A", 6, ""},
        {"0b10_10", 4, "1010"},
        {"0b0010", 2, "10"},
        {"0x0", 3, "000"},
        {"0x0", 0, ""},
        {"0b", 1, ""},
        {"0b12", 2, ""},
        {"0xG", 4, ""},
        {"x", 1, ""},
        {"", 1, ""},
        {"10", 2, ""},
        {"0x", 4, ""},
        {"0x123456789ABCDEF01", 65,
         "10010001101000101011001111000100110101011110011011110111100000001"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<PinLevels> levels = PinLevels::Parse(row.text);
        std::string text;
        for (std::size_t i = 0; levels && levels->Fits(row.count) && i < row.count; ++i) {
            const eSignal level = levels->Of(i, row.count);
            text += level == SIG_Z ? 'Z' : level == SIG_1 ? '1' : '0';
        }
        EXPECT_EQ(text, row.levels);
    }
}

}  // namespace
}  // namespace bscan
