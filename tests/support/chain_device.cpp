#include "chain_device.h"

namespace bscan::test {

const std::string_view kDrivenDevice = R"bsdl(entity DRIVEN is
    generic (PHYSICAL_PIN_MAP : string := "P20");
    port (TDI, TMS, TCK : in bit; TDO : out bit;
          IO : inout bit_vector(4 to 5);
          TRI : inout bit; PLAIN, OD, MON : out bit; IN2, CK : in bit; VDD : linkage bit);
    use STD_1149_1_2001.all;
    attribute COMPONENT_CONFORMANCE of DRIVEN : entity is "STD_1149_1_2001";
    attribute PIN_MAP of DRIVEN : entity is PHYSICAL_PIN_MAP;
    constant P20 : PIN_MAP_STRING :=
        "TDI:1, TMS:2, TCK:3, TDO:4, IO:(A5,A6), TRI:7, PLAIN:8, OD:9, MON:10, IN2:11, CK:12, " &
        "VDD:13";
    attribute TAP_SCAN_IN of TDI : signal is true;
    attribute TAP_SCAN_MODE of TMS : signal is true;
    attribute TAP_SCAN_OUT of TDO : signal is true;
    attribute TAP_SCAN_CLOCK of TCK : signal is (3.3e6, BOTH);
    attribute INSTRUCTION_LENGTH of DRIVEN : entity is 4;
    attribute INSTRUCTION_OPCODE of DRIVEN : entity is
        "BYPASS (1111), EXTEST (0000), SAMPLE (0010, 1010), PRELOAD (0x11), IDCODE (0100)," &
        "SECRET (0111), STAT (1000), ODD (1001)";
attribute INSTRUCTION_CAPTURE of DRIVEN : entity is "XX01";
attribute INSTRUCTION_PRIVATE of DRIVEN : entity is "SECRET";
attribute IDCODE_REGISTER of DRIVEN : entity is "0001" & "000000000000000X" & "11111111110" & "1";
attribute REGISTER_ACCESS of DRIVEN : entity is "STATUS[3] (STAT), BOUNDARY (EXTEST, SAMPLE)";
attribute BOUNDARY_LENGTH of DRIVEN : entity is 11;
attribute BOUNDARY_REGISTER of DRIVEN
    : entity is "0 (BC_7, IO(4), bidir, X, 2, 0, Z)," &
      "1 (BC_7, IO(5), bidir, X, 2, 0, PULL1)," & "2 (BC_2, *, control, 1)," &
      "3 (BC_1, TRI, input, 1)," & "4 (BC_1, TRI, output3, X, 5, 1, WEAK1)," &
      "5 (BC_2, *, control, 1)," & "6 (BC_1, PLAIN, output2, 1)," &
      "7 (BC_1, OD, output2, 0, 7, 1, WEAK1)," & "8 (BC_1, IN2, input, X)," &
      "8 (BC_1, MON, output3, X, 9, 0, Z)," & "9 (BC_2, *, control, 0)," &
      "10 (BC_4, CK, clock, X)";
end DRIVEN;
)bsdl";

namespace {
std::string Replaced(std::string_view text, std::string_view replaced, std::string_view by) {
    std::string result(text);
    const std::size_t at = result.find(replaced);
    if (at != std::string::npos) result.replace(at, replaced.size(), by);
    return result;
}

}  // namespace

DescribedDevice::DescribedDevice(std::string_view text)
    : description(Description::Parse(text, "device")) {
    description.Fill(parser);
}

DescribedDevice::DescribedDevice(std::string_view text, std::string_view replaced,
                                 std::string_view by)
    : DescribedDevice(Replaced(text, replaced, by)) {}

}  // namespace bscan::test
