// Files that fail while they are read, that change between the two passes, and that are none.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace bscan::test {
namespace {

/// A stream over a text that gives at most `step` bytes at once and fails at a position.
struct FaultyStream {
    FaultyStream(std::size_t steps, std::size_t fails) : step(steps), fails_at(fails) {
        // The parser closes the stream.
        fptrBSDL = fopencookie(this, "r", {&Read, nullptr, nullptr, &Close});
    }
    static ssize_t Read(void* cookie, char* buffer, std::size_t size) {
        auto& stream = *static_cast<FaultyStream*>(cookie);
        if (stream.at == stream.fails_at) {
            errno = EIO;
            return -1;
        }
        const std::size_t room = std::min({size, stream.step, stream.fails_at - stream.at});
        const std::size_t count = SmallDevice().copy(buffer, room, stream.at);
        stream.at += count;
        return static_cast<ssize_t>(count);
    }
    static int Close(void* cookie) {
        static_cast<FaultyStream*>(cookie)->closed = true;
        return 0;
    }

    std::size_t step;
    std::size_t fails_at;
    std::size_t at = 0;
    bool closed = false;
};

TEST(StreamFault, AReadErrorEndsTheReadingAndAShortReadDoesNot) {
    FaultyStream sound(SmallDevice().size(), std::string::npos);
    BScanParser whole;
    ASSERT_EQ(whole.Read(), kOk);
    whole.CloseFile();
    for (std::size_t at = 0; at <= SmallDevice().size(); ++at) {
        SCOPED_TRACE(at);
        FaultyStream faulty(SmallDevice().size(), at);
        {
            BScanParser parser;
            EXPECT_EQ(parser.Read(), at < SmallDevice().size() ? kReadFailed : kOk);
            EXPECT_EQ(FindPortFault(parser.GetPinMap(), whole.GetPinMap()), "");
            EXPECT_EQ(FindFault(parser), "");
            EXPECT_EQ(FindDriveFault(parser), "");
        }
        EXPECT_TRUE(faulty.closed);
        const FaultyStream slow(at + 1, std::string::npos);
        BScanParser parser;
        EXPECT_EQ(parser.Read(), kOk);
        ASSERT_EQ(DumpModel(parser), DumpModel(whole));
    }
}

TEST(StreamFault, AFailedReadKeepsTheCommentOfTheLastGoodOne) {
    FaultyStream faulty(SmallDevice().size(), SmallDevice().find(" D :") + 3);
    BScanParser parser;
    Text line("");
    Text comment("");
    while (parser.GetLine(fptrBSDL, line, comment) == kOk) continue;
    EXPECT_STREQ(comment, "-- a*");
}

TEST(StreamFault, TheFileMayChangeBetweenThePasses) {
    const TempDir directory;
    const std::string_view device = SmallDevice();
    const std::size_t package = device.find("\"P\"");
    const Rows<std::string, int, int> rows = {
        {std::string(device), kOk, 1},
        {"", kReadFailed, -1},
        {std::string(device.substr(0, 300)), kEndOfFile, 1},
        {std::string(device).replace(device.find("B2"), 2, "C9"), kOk, 1},
        {std::string(device).replace(package, 3, "\"Q\""), kOk, 0},
        {"x y z", kUnexpectedLine, -1},
    };
    for (const auto& [text, result, number] : rows) {
        SCOPED_TRACE(text);
        BScanParser parser;
        EXPECT_EQ(parser.Initialize(directory.Write("f", device).c_str(), nullptr), kOk);
        directory.Write("f", text);
        EXPECT_EQ(parser.Read(), result);
        BScanPinMap* const map = parser.GetPinMap();
        EXPECT_EQ(map ? map->GetPinNumberwPortName(Text("V")) : -1, number);
        EXPECT_EQ(FindFault(parser), "");
        EXPECT_EQ(FindDriveFault(parser), "");
    }
}

TEST(StreamFault, WhatIsNoDeviceFileIsRefused) {
    const TempDir directory;
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string locked = directory.Write("locked", SmallDevice());
    ASSERT_EQ(chmod(locked.c_str(), 0), 0);
    std::string returns(SmallDevice());
    std::replace(returns.begin(), returns.end(), '\n', '\r');
    std::string endless(SmallDevice());
    endless.erase(std::remove(endless.begin(), endless.end(), '\n'), endless.end());
    const Rows<std::string, int, int> rows = {
        {directory.Path("none"), kCannotOpen, kFailed},
        {directory.Path("pipe"), kCannotOpen, kFailed},  // and does not wait for a writer
        {"/dev/zero", kCannotOpen, kFailed},
        {directory.Path("."), kOk, kReadFailed},
        {directory.Write("empty", ""), kOk, kReadFailed},
        {directory.Write("zeros", std::string(100000, '\0')), kOk, kEndOfFile},
        {directory.Write("returns", returns), kOk, kUnexpectedLine},
        {directory.Write("one line", endless), kOk, kUnexpectedLine},
        {locked, geteuid() == 0 ? kOk : kCannotOpen, geteuid() == 0 ? kOk : kFailed},
    };
    for (const auto& [file, opened, read] : rows) {
        SCOPED_TRACE(file);
        BScanParser parser;
        EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), opened);
        const int result = parser.Read();
        EXPECT_EQ(result, read);
        EXPECT_EQ(FindFault(parser), "");
    }
}

TEST(Ceiling, EndsAnEndlessStatement) {
    const std::string blanks = "A,\n" + std::string(200, 'B') + ",\n";
    std::string endless;
    while (endless.size() < kMaxStatementLength / 50 * 51) endless += blanks;
    for (const char* start :
         {"entity ", "entity X is;\nport (", "entity X is;\nattribute A of X is ",
          "entity X is;\nconstant A := PIN_MAP_STRING := \"",
          "entity X is;\nattribute PORT_GROUPING of X is "}) {
        SCOPED_TRACE(start);
        ReadDevice device(start + endless + "; end;");
        EXPECT_EQ(device.result(), kTextTooLong);
    }
}

/// Pairs of no ports, each in a line, and one of P and Q.
std::string Grouping(int count, const std::string& name) {
    std::string pairs = "\"Differential_Voltage (";
    for (int i = 0; i < count; ++i) pairs += '(' + name + ',' + std::to_string(i) + name + "),\n";
    return "attribute PORT_GROUPING of X is\n" + pairs + "(P,Q))\";\n";
}
constexpr const char* kPairPorts = "port (P, Q : out bit;\nC : in bit);\n";

TEST(Ceiling, EndsTheWorkOfRepeatedAttributes) {
    // Each register completes all pairs again: without a ceiling, this would take minutes.
    std::string registers = "attribute BOUNDARY_LENGTH of X is 1;\n";
    for (int i = 0; i < 40'000; ++i) {
        registers += "attribute BOUNDARY_REGISTER of X is\n\"0 (BC_1, C, input, X)\";\n";
    }
    ReadDevice device(Entity(kPairPorts + Grouping(40'000, "N") + registers));
    EXPECT_EQ(device.result(), kRepeatedTooOften);
    EXPECT_EQ(FindFault(device.parser), "");
    for (const int count : {15, 17}) {
        std::string lengths;
        for (int i = 0; i < count; ++i) lengths += "attribute BOUNDARY_LENGTH of X is 1048576;\n";
        EXPECT_EQ(ReadDevice(Entity("port (\nA : in bit);\n" + lengths)).result(),
                  count < 16 ? kOk : kRepeatedTooOften);
    }
}

TEST(Ceiling, IsNoneForWhatIsReadOnce) {
    // Pairs with long names, whose completion is work that a ceiling might count.
    ReadDevice device(
        Entity(kPairPorts + Grouping(3000, std::string(1000, 'N')) +
               "attribute BOUNDARY_LENGTH of X is 4;\nattribute BOUNDARY_REGISTER of X is\n"
               "\"3 (BC_1, *, control, 0),\" &\n\"2 (BC_1, P, output3, X, 3, 0, Z),\" &\n"
               "\"1 (BC_1, *, internal, X),\" & -- Q\n\"0 (BC_1, C, input, X)\";"));
    EXPECT_EQ(device.result(), kOk);
    ASSERT_EQ(device.parser.GetDifferentialPairCount(), 3001);
    EXPECT_EQ(device.parser.GetDifferentialPair(3000)->GetNegativeBScanPosition(), 1);
    // A host may call a reader as often as it likes.
    for (int i = 0; i < 20'000; ++i) {
        ASSERT_EQ(device.parser.ReadBSCANBoundaryLength(nullptr, Text("is 1000;")), kOk);
    }
}

}  // namespace
}  // namespace bscan::test
