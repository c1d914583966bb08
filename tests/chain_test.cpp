// Driving the pins of a device, and the scans of a chain.

#include <bscan/chain.h>
#include <bscan/scan_program.h>

#include "support/chain_device.h"
#include "support/read_device.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>

namespace bscan {
namespace {

using test::DescribedDevice;
using test::kDrivenDevice;

// The scan vector of a device, cell 0 first.
std::string VectorOf(BScanPinMap& device) {
    std::string text;
    for (int n = 0; n < device.GetBScanLength(); ++n) {
        const auto cell = static_cast<unsigned>(n);
        const bool set = (device.GetBScanBitArray()[cell / 8] & (0x80U >> (cell % 8))) != 0;
        text += set ? '1' : '0';
    }
    return text;
}

// A chain U1 (driven), X (a length of 5), U2 (driven), from TDI to TDO.
struct TwoDevices {
    TwoDevices() {
        EXPECT_TRUE(chain.Add("U1", first.parser, &first.description.GetFacts()).Ok());
        EXPECT_TRUE(chain.Add("X", 5).Ok());
        EXPECT_TRUE(chain.Add("U2", second.parser, &second.description.GetFacts()).Ok());
    }

    DescribedDevice first;
    DescribedDevice second;
    Chain chain;
};

TEST(PinDriver, ServesEveryKindOfDriver) {
    using enum DriveCode;
    struct Row {
        const char* pin;
        eSignal level;
        DriveCode code;
        const char* vector;  // cells 0 to 10 afterwards
        eSignal shown;
    };
    const Row rows[] = {
        {"IO(5)", SIG_1, kDrives, "01110111000", SIG_1},    // with IO(4), through cell 2
        {"IO(4)", SIG_Z, kReleased, "01010111000", SIG_Z},  // IO(5) with it
        {"IO(5)", SIG_Z, kReleased, "01010111000", SIG_PULL1},
        {"TRI", SIG_1, kDrives, "01011011000", SIG_1},
        {"TRI", SIG_Z, kReleased, "01011111000", SIG_WEAK1},
        {"PLAIN", SIG_0, kDrives, "01011101000", SIG_0},
        {"PLAIN", SIG_Z, kNoTurnOff, "01011101000", SIG_0},
        {"OD", SIG_0, kDrives, "01011100000", SIG_0},
        {"OD", SIG_1, kLetsGo, "01011101000", SIG_WEAK1},
        {"OD", SIG_Z, kReleased, "01011101000", SIG_WEAK1},
        {"MON", SIG_1, kDrives, "01011101110", SIG_1},
        {"MON", SIG_Z, kReleased, "01011101100", SIG_Z},
        {"IN2", SIG_1, kWrongMode, "01011101100", SIG_Z},
        {"IN2", SIG_Z, kReceives, "01011101100", SIG_Z},
        {"TDO", SIG_1, kNoDriver, "01011101100", SIG_Z},
        {"VDD", SIG_Z, kNoDriver, "01011101100", SIG_Z},
        {"PLAIN", SIG_X, kWrongLevel, "01011101100", SIG_0},
    };
    DescribedDevice device;
    Chain chain;
    ASSERT_TRUE(chain.Add("U1", device.parser, &device.description.GetFacts()).Ok());
    PinDriver& driver = *chain.Driver(0);
    EXPECT_EQ(VectorOf(driver.Device()), "00010111000");
    EXPECT_EQ(driver.UnsafeControls(), (std::vector<int>{2, 7}));
    EXPECT_EQ(driver.Request(99, SIG_0), kNoElement);
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.pin) + "=" + std::to_string(row.level));
        std::vector<ChainPin> found;
        ASSERT_TRUE(chain.FindPins(row.pin, found).Ok());
        ASSERT_EQ(found.size(), 1U);
        const int element = found[0].element;
        EXPECT_EQ(driver.Request(element, row.level), row.code);
        EXPECT_EQ(VectorOf(driver.Device()), row.vector);
        EXPECT_EQ(driver.Shown(element), row.shown);
    }
}

TEST(PinDriver, TellsWhoSharesAControlCell) {
    TwoDevices devices;
    PinDriver& driver = *devices.chain.Driver(0);
    const int io4 = driver.Find(driver.Device().GetPort(test::Text("IO"), 0));
    ASSERT_GE(io4, 0);
    const int io5 = io4 + 1;
    EXPECT_EQ(driver.SharedWith(io4), (std::vector<int>{io4, io5}));
    driver.Request(io4, SIG_1);
    EXPECT_EQ(driver.AlsoDriven(), std::vector<int>{io5});
    EXPECT_TRUE(driver.NoLongerDriven().empty());
    driver.Request(io5, SIG_Z);
    EXPECT_TRUE(driver.AlsoDriven().empty());
    EXPECT_EQ(driver.NoLongerDriven(), std::vector<int>{io4});

    // A capture under SAMPLE keeps output and control cells; an x keeps the preset.
    std::vector<eSignal> sample(11, SIG_X);
    sample[0] = sample[2] = SIG_1;
    sample[3] = SIG_0;  // only receives
    driver.Preset(sample);
    EXPECT_EQ(VectorOf(driver.Device()), "10110111000");
    EXPECT_EQ(driver.Requested(io4), SIG_X);
}

TEST(Chain, SelectsInstructions) {
    struct Row {
        const char* instruction;
        ChainCode code;
        const char* opcode;  // bit next to TDO first
        const char* data_register;
        int length;
    };
    const Row rows[] = {
        {"extest", ChainCode::kOk, "0000", "BOUNDARY", 11},
        {"SAMPLE", ChainCode::kOk, "0100", "BOUNDARY", 11},   // the first of two
        {"PRELOAD", ChainCode::kOk, "1100", "BOUNDARY", 11},  // x as 0
        {"IDCODE", ChainCode::kOk, "0010", "DEVICE_ID", 32},
        {"STAT", ChainCode::kOk, "0001", "STATUS", 3},
        {"BYPASS", ChainCode::kOk, "1111", "BYPASS", 1},
        {"SECRET", ChainCode::kPrivateInstruction, "1111", "BYPASS", 1},
        {"ODD", ChainCode::kNoRegister, "1111", "BYPASS", 1},
        {"INTEST", ChainCode::kNoInstruction, "1111", "BYPASS", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.instruction);
        TwoDevices devices;
        Chain& chain = devices.chain;
        const ChainResult result = chain.Select({{0, row.instruction}});
        EXPECT_EQ(result.code, row.code);
        EXPECT_EQ(result.reason.empty(), result.Ok());
        EXPECT_EQ(chain.InstructionBits().Text(), std::string("111111111") + row.opcode);
        const ScanFields& fields = *chain.DataFields();
        ASSERT_EQ(fields.size(), 3U);
        EXPECT_EQ(fields[2].register_name, row.data_register);
        EXPECT_EQ(fields[2].first, 2);
        EXPECT_EQ(fields[2].count, row.length);
        EXPECT_EQ(chain.DataBits().Size(), 2 + row.length);
    }
}

TEST(Chain, RefusesWhatItCannotHold) {
    TwoDevices devices;
    BScanParser empty;
    DescribedDevice no_length(kDrivenDevice, "INSTRUCTION_LENGTH", "INSTRUCTION_WIDTH");
    EXPECT_EQ(devices.chain.Add("U3", empty).code, ChainCode::kNoModel);
    EXPECT_EQ(devices.chain.Add("U3", no_length.parser).code, ChainCode::kNoLength);
    EXPECT_EQ(devices.chain.Add("U3", 0).code, ChainCode::kNoLength);
    EXPECT_EQ(devices.chain.Add("X", 4).code, ChainCode::kBadName);
    EXPECT_EQ(devices.chain.Select({{3, "BYPASS"}}).code, ChainCode::kNoDevice);
    EXPECT_EQ(devices.chain.DeviceCount(), 3);
    EXPECT_EQ(Chain().Select({}).code, ChainCode::kEmpty);
    EXPECT_EQ(devices.chain.MaxFrequency(), 3.3e6);
}

// Shifts bits through registers that stand as they do on a board, TDI on the left.
ScanBits ShiftThrough(std::vector<std::deque<bool>>& registers, const ScanBits& out) {
    ScanBits in(out.Size());
    for (int i = 0; i < out.Size(); ++i) {
        bool bit = out.Get(i);
        for (std::deque<bool>& cells : registers) {  // cell 0 is the back, next to TDO
            cells.push_front(bit);
            bit = cells.back();
            cells.pop_back();
        }
        in.Set(i, bit);
    }
    return in;
}

TEST(Chain, PutsEveryBitWhereItsCellIs) {
    TwoDevices devices;
    Chain& chain = devices.chain;
    ASSERT_TRUE(chain.Select({{0, "EXTEST"}, {2, "SAMPLE"}}).Ok());
    std::mt19937 random(14);
    std::vector<std::deque<bool>> registers = {std::deque<bool>(11), std::deque<bool>(1),
                                               std::deque<bool>(11)};
    for (std::deque<bool>& cells : registers) {
        for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = (random() & 1U) != 0;
    }
    const std::vector<std::deque<bool>> captured = registers;
    for (const int device : {0, 2}) {
        for (int cell = 0; cell < 11; ++cell) {
            const eSignal level = (random() & 1U) != 0 ? SIG_1 : SIG_0;
            chain.Driver(device)->Device().SetBit(cell, level);
        }
    }
    const ScanBits in = ShiftThrough(registers, chain.DataBits());
    for (const int device : {0, 2}) {
        const std::string vector = VectorOf(chain.Driver(device)->Device());
        for (int cell = 0; cell < 11; ++cell) {
            SCOPED_TRACE(chain.Device(device).name + " cell " + std::to_string(cell));
            const auto from_tdo = static_cast<std::size_t>(10 - cell);
            const auto index = static_cast<std::size_t>(device);
            EXPECT_EQ(registers[index][from_tdo], vector[static_cast<std::size_t>(cell)] == '1');
            const int bit = chain.BitOf(device, cell);
            EXPECT_EQ(in.Get(bit), captured[index][from_tdo]);
            const ScanPlace place = FindPlace(*chain.DataFields(), bit);
            ASSERT_NE(place.field, nullptr);
            EXPECT_EQ(place.field->device, device);
            EXPECT_EQ(place.cell, cell);
        }
    }
    EXPECT_EQ(FindPlace(*chain.DataFields(), in.Size()).field, nullptr);
    EXPECT_EQ(FindPlace(*chain.DataFields(), -1).field, nullptr);
    std::vector<ChainPin> pins;
    ASSERT_TRUE(chain.FindPins("U1.IN2", pins).Ok());
    EXPECT_EQ(chain.Seen(pins[0], in), captured[0][2] ? SIG_1 : SIG_0);  // merged cell 8
    ASSERT_TRUE(chain.FindPins("U1.PLAIN", pins).Ok());
    EXPECT_EQ(chain.Seen(pins[0], in), SIG_X);
}

TEST(Chain, FindsPins) {
    struct Row {
        const char* text;
        ChainCode code;
        const char* labels;
    };
    const Row rows[] = {
        {"U1.A5", ChainCode::kOk, "U1.IO(4) "},
        {"U1.a5", ChainCode::kNoPin, ""},
        {"U2.io", ChainCode::kOk, "U2.IO(4) U2.IO(5) "},
        {"U2.port:IO[5]", ChainCode::kOk, "U2.IO(5) "},
        {"U2.IO(0)", ChainCode::kNoPin, ""},
        {"U2.IO(5..4)", ChainCode::kOk, "U2.IO(5) U2.IO(4) "},
        {"U1.T*I", ChainCode::kOk, "U1.TDI U1.TRI "},
        {"U2.pin:7", ChainCode::kOk, "U2.TRI "},
        {"U2.port:7", ChainCode::kNoPin, ""},
        {"U1.", ChainCode::kNoPin, ""},
        {"TRI", ChainCode::kNoDevice, ""},
        {"U3.TRI", ChainCode::kNoDevice, ""},
        {"X.TRI", ChainCode::kNoModel, ""},
    };
    TwoDevices devices;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        std::vector<ChainPin> pins;
        EXPECT_EQ(devices.chain.FindPins(row.text, pins).code, row.code);
        std::string labels;
        for (const ChainPin pin : pins) labels += devices.chain.Label(pin) + " ";
        EXPECT_EQ(labels, row.labels);
    }
}

TEST(Steps, TellsWhatCannotBeDone) {
    struct Row {
        const char* text;
        int line;             // of the first fault; 0 for none
        const char* message;  // a part of it
    };
    const Row rows[] = {
        {"drive U1.TRI=1\nexpect U1.TRI=1 U1.IN2=0 # and U1.none\n\n# all\nreset\n", 0, ""},
        {"sample U1.PLAIN=1 U1.MON=0\nwait 5 tck\nwait 3 us\nnote a#b", 0, ""},
        {"drive U1.TRI=1\nsample U1.IN2=1", 0, ""},
        {"\nfly U1.TRI=1", 2, "begins with drive"},
        {"drive", 1, "at least one pin"},
        {"drive U1.TRI", 1, "PIN=Z"},
        {"expect U1.TRI=Z", 1, "PIN=1 or PIN=0x5A"},
        {"drive U1.IO=0x4", 1, "does not fit 2 elements"},
        {"drive U1.*=0x1", 1, "elements of one port"},
        {"drive U1.I*(4)=0 U2.IO(5..4)=0b01\nexpect U2.IO=0x2", 0, ""},
        {"drive =1", 1, "not of the form"},
        {"drive U1.TRI=1 U1.NIL=1", 1, "no pin or port 'NIL'"},
        {"drive X.A=1", 1, "no file"},
        {"drive U1.IN2=1", 1, "mode in cannot be driven"},
        {"drive U1.PLAIN=Z", 1, "U1.PLAIN: the port has no cell that turns it off"},
        {"drive U1.PLAIN=1\nexpect U1.PLAIN=1", 2, "U1.PLAIN shows cannot be seen"},
        {"drive U1.PLAIN=1\nsample U1.MON=1", 2, "while pins are driven"},
        {"expect U1.TRI=1 U1.TRI=0", 1, "0 and 1 at the same time"},
        {"wait 0 ms", 1, "whole number from 1"},
        {"wait 99999999999 ms", 1, "whole number"},
        {"wait 5 s", 1, "wait N tck"},
        {"wait 5 ms more", 1, "wait N tck"},
        {"reset now", 1, "Nothing may stand"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TwoDevices devices;
        const Steps steps = ParseSteps(devices.chain, row.text);
        const ScanProgram program = PlanSteps(devices.chain, steps.steps);
        const std::vector<StepFault>& faults = steps.faults.empty() ? program.faults : steps.faults;
        EXPECT_EQ(steps.result.Ok() && program.result.Ok(), row.line == 0);
        ASSERT_EQ(faults.empty(), row.line == 0) << faults.front().message;
        if (faults.empty()) continue;
        EXPECT_EQ(faults.front().line, row.line);
        EXPECT_NE(faults.front().message.find(row.message), std::string::npos)
            << faults.front().message;
    }
}

// The data scans of a program as out/wanted with '.' where nothing is compared, and its instruction
// scans as hexadecimal.
std::string Outline(const ScanProgram& program) {
    std::string text;
    for (const ScanOperation& operation : program.operations) {
        if (operation.kind == OperationKind::kReset) text += "reset ";
        if (operation.kind == OperationKind::kInstructionScan) text += operation.out.Hex() + " ";
        if (operation.kind != OperationKind::kDataScan) continue;
        text += operation.out.Text();
        if (!operation.mask.Empty()) text += '/';
        for (int i = 0; i < operation.mask.Size(); ++i) {
            text += !operation.mask.Get(i) ? '.' : operation.wanted.Get(i) ? '1' : '0';
        }
        text += ' ';
    }
    return text;
}

TEST(Steps, BecomeScans) {
    struct Row {
        const char* steps;
        bool idcodes;
        const char* outline;
    };
    const Row rows[] = {
        {"", false, "reset reset "},
        // The version and the x of the part number are not compared.
        {"note x", true,
         "reset 4 00000000000000000000000000000000/101111111111.000000000000000.... reset "},
        // PRELOAD holds the first levels before EXTEST comes.
        {"drive TRI=1\nexpect TRI=1 IN2=0\ndrive TRI=Z", false,
         "reset 3 00011011000 0 00011011000/...1....0.. 00011111000 reset "},
        {"sample MON=1 TRI=0\ndrive IO=1\nreset\nexpect CK=1", false,
         "reset 2 00010111000/...0....11. 3 11110111000 0 reset "
         "3 00010111000 0 00010111000/..........1 reset "},
        // SAMPLE would let go of what is driven.
        {"drive OD=0\nsample OD=1", false, nullptr},
        {"drive OD=0\nsample TRI=1", false, "reset 3 00010110000 0 00010110000/...1....... reset "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.steps);
        DescribedDevice device;
        Chain chain;
        ASSERT_TRUE(chain.Add("U1", device.parser, &device.description.GetFacts()).Ok());
        const Steps steps = ParseSteps(chain, row.steps);
        ASSERT_TRUE(steps.result.Ok()) << steps.result.reason;
        const ScanProgram program = PlanSteps(chain, steps.steps, {row.idcodes, {}});
        EXPECT_EQ(program.result.Ok(), row.outline != nullptr);
        if (row.outline == nullptr) continue;
        EXPECT_EQ(Outline(program), row.outline);
    }
}

TEST(Steps, LackOfInstructionsIsToldWhereItMatters) {
    DescribedDevice without(kDrivenDevice, "EXTEST (0000),", "");
    DescribedDevice with;
    Chain chain;
    ASSERT_TRUE(chain.Add("U1", without.parser, &without.description.GetFacts()).Ok());
    ASSERT_TRUE(chain.Add("U2", with.parser, &with.description.GetFacts()).Ok());
    const ScanProgram good = PlanSteps(chain, ParseSteps(chain, "drive U2.TRI=1").steps);
    EXPECT_TRUE(good.result.Ok());
    ASSERT_FALSE(good.notes.empty());
    EXPECT_NE(good.notes[0].find("U1 stays in BYPASS"), std::string::npos) << good.notes[0];
    const ScanProgram bad = PlanSteps(chain, ParseSteps(chain, "note\ndrive U1.TRI=1").steps);
    EXPECT_EQ(bad.result.code, ChainCode::kNoInstruction);
    ASSERT_FALSE(bad.faults.empty());
    EXPECT_EQ(bad.faults[0].line, 2);
    EXPECT_TRUE(WriteSvf(chain, bad).empty());
}

TEST(Steps, ComparesWhatComesBack) {
    TwoDevices devices;
    Chain& chain = devices.chain;
    const Steps steps = ParseSteps(chain, "expect U1.TRI=1 U2.IN2=0 U2.CK=1");
    const ScanProgram program = PlanSteps(chain, steps.steps);
    ASSERT_TRUE(program.result.Ok());
    for (const ScanOperation& operation : program.operations) {
        if (operation.mask.Empty()) continue;
        EXPECT_TRUE(Compare(operation, operation.wanted).empty());
        ScanBits wrong = operation.wanted;
        for (int i = 0; i < wrong.Size(); ++i) wrong.Set(i, !wrong.Get(i));
        const std::vector<FailedCheck> failed = Compare(operation, wrong);
        std::string text;
        for (const FailedCheck& check : failed) {
            const std::string label = chain.Label(check.pin);
            text += label.empty() ? chain.Device(check.device).name : label;
            text += std::to_string(check.wanted) + std::to_string(check.seen) + " ";
        }
        EXPECT_EQ(text, operation.step < 0 ? "U210 U110 " : "U1.TRI10 U2.IN201 U2.CK10 ");
    }
}

TEST(ScanBits, ReadsAndWritesHexadecimal) {
    struct Row {
        const char* text;
        int size;
        const char* hex;  // null when it cannot be read
    };
    const Row rows[] = {
        {"0", 1, "0"},       {"1", 1, "1"},    {"2", 1, nullptr}, {"a5", 8, "A5"},
        {"05", 3, "5"},      {"F", 5, "0F"},   {"", 4, "0"},      {"g", 8, nullptr},
        {"0x1", 8, nullptr}, {"0001", 1, "1"}, {"1", 0, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<ScanBits> bits = ScanBits::FromHex(row.text, row.size);
        ASSERT_EQ(bits.has_value(), row.hex != nullptr);
        if (!bits) continue;
        EXPECT_EQ(bits->Hex(), row.hex);
        EXPECT_EQ(ScanBits::FromText(bits->Text()), bits);
    }
    ScanBits twice = *ScanBits::FromText("10110");
    twice.Append(twice);
    EXPECT_EQ(twice.Text(), "1011010110");
    EXPECT_EQ(twice.Slice(3, 4).Text(), "1010");
    EXPECT_EQ(twice.Slice(8, 9).Text(), "10");
    EXPECT_EQ(ScanBits(9, true).Hex(), "1FF");
}

}  // namespace
}  // namespace bscan
