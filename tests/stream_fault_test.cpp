// Files that fail while they are read, that change between the two passes, and that are none.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <sys/stat.h>
#include <unistd.h>

namespace bscan::test {
namespace {

/// A stream over a text that gives at most `step` bytes at once and fails at a position.
class FaultyStream {
public:
    FaultyStream(std::string_view text, std::size_t step, std::size_t fails_at)
        : text_(text), step_(step), fails_at_(fails_at) {
        // The parser closes the stream.
        fptrBSDL = fopencookie(this, "r", {&Read, nullptr, nullptr, &Close});
    }
    FaultyStream(const FaultyStream&) = delete;
    FaultyStream& operator=(const FaultyStream&) = delete;
    bool is_closed() const { return closed_; }

private:
    static ssize_t Read(void* cookie, char* buffer, std::size_t size) {
        auto& stream = *static_cast<FaultyStream*>(cookie);
        if (stream.at_ == stream.fails_at_) {
            errno = EIO;
            return -1;
        }
        const std::size_t room = std::min({size, stream.step_, stream.fails_at_ - stream.at_});
        const std::size_t count = stream.text_.copy(buffer, room, stream.at_);
        stream.at_ += count;
        return static_cast<ssize_t>(count);
    }
    static int Close(void* cookie) {
        static_cast<FaultyStream*>(cookie)->closed_ = true;
        return 0;
    }

    std::string_view text_;
    std::size_t step_;
    std::size_t fails_at_;
    std::size_t at_ = 0;
    bool closed_ = false;
};

TEST(StreamFault, AReadErrorAtAnyPositionEndsTheReading) {
    ReadDevice whole(kSmallDevice);
    ASSERT_EQ(whole.result(), kOk);
    for (std::size_t at = 0; at <= kSmallDevice.size(); ++at) {
        SCOPED_TRACE(at);
        FaultyStream stream(kSmallDevice, kSmallDevice.size(), at);
        {
            BScanParser parser;
            EXPECT_EQ(parser.Read(), at < kSmallDevice.size() ? kReadFailed : kOk);
            EXPECT_EQ(FindPortFault(parser.GetPinMap(), whole.parser.GetPinMap()), "");
            EXPECT_EQ(FindFault(parser, kReadFailed), "");
            EXPECT_EQ(FindDriveFault(parser), "");
        }
        EXPECT_TRUE(stream.is_closed());
    }
}

TEST(StreamFault, ShortReadsChangeNothing) {
    const auto read = [](std::size_t step) {
        const FaultyStream stream(kSmallDevice, step, std::string::npos);
        BScanParser parser;
        EXPECT_EQ(parser.Read(), kOk);
        return DumpModel(parser);
    };
    const std::string whole = read(kSmallDevice.size());
    for (std::size_t step = 1; step < kSmallDevice.size(); ++step) {
        ASSERT_EQ(read(step), whole) << step;
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // nobody deletes one through its base
/// Writes its file anew when the main pass is about to begin: the first pass is over, and the file
/// has just been opened again.
class MeddlingParser final : public BScanParser {
public:
    int Reset() override {
        directory.Write("f", text);
        return result == kOk ? BScanParser::Reset() : result;
    }
    TempDir directory;
    std::string text;
    int result = kOk;
};
#pragma GCC diagnostic pop

TEST(StreamFault, TheFileMayChangeBetweenThePasses) {
    const std::string_view device = kSmallDevice;
    const std::size_t package = device.find("\"P\"");
    const struct {
        std::string text;
        int result;
        int number;  // of port V on pin A2; -1 without ports or pins
    } rows[] = {
        {std::string(device), kOk, 1},
        {"", kReadFailed, -1},
        {std::string(device.substr(0, 300)), kEndOfFile, 1},
        {std::string(device).replace(device.find("B2"), 2, "C9"), kOk, 1},
        {std::string(device).replace(package, 3, "\"Q\""), kOk, 0},
        {"x y z", kUnexpectedLine, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        MeddlingParser parser;
        const std::string file = parser.directory.Write("f", device);
        parser.text = row.text;
        EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), kOk);
        EXPECT_EQ(parser.Read(), row.result);
        BScanPinMap* const map = parser.GetPinMap();
        EXPECT_EQ(map ? map->GetPinNumberwPortName(Text("V")) : -1, row.number);
        EXPECT_EQ(FindFault(parser, row.result), "");
        EXPECT_EQ(FindDriveFault(parser), "");
        parser.result = -99;
        EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), -99) << "what Reset says";
    }
}

TEST(StreamFault, WhatIsNoDeviceFileIsRefused) {
    const TempDir directory;
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string locked = directory.Write("locked", kSmallDevice);
    ASSERT_EQ(chmod(locked.c_str(), 0), 0);
    std::string returns(kSmallDevice);
    std::replace(returns.begin(), returns.end(), '\n', '\r');
    std::string endless(kSmallDevice);
    endless.erase(std::remove(endless.begin(), endless.end(), '\n'), endless.end());
    const struct {
        std::string file;
        int opened;
        int read;
    } rows[] = {
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
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        BScanParser parser;
        EXPECT_EQ(parser.Initialize(row.file.c_str(), nullptr), row.opened);
        const int result = parser.Read();
        EXPECT_EQ(result, row.read);
        EXPECT_EQ(FindFault(parser, result), "");
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

TEST(Ceiling, EndsTheWorkOfRepeatedAttributes) {
    // Each register completes all pairs again, so that half as many of each make a quarter of the
    // work. Without a ceiling this one would take minutes.
    constexpr int kCount = 40000;
    std::string pairs;
    std::string registers;
    for (int i = 0; i < kCount; ++i) {
        pairs += (i > 0 ? ",\n(A,B)" : "(A,B)");
        registers += "attribute BOUNDARY_REGISTER of X is\n\"0 (BC_1, C, input, X)\";\n";
    }
    const auto start = std::chrono::steady_clock::now();
    ReadDevice device(
        Entity("port (A, B : in bit;\nC : in bit);\nattribute PORT_GROUPING of X is\n\"" +
               ("Differential_Voltage (" + pairs) + ")\";\nattribute BOUNDARY_LENGTH of X is 1;\n" +
               registers));
    EXPECT_EQ(device.result(), kOk);
    EXPECT_EQ(FindFault(device.parser, device.result()), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

}  // namespace
}  // namespace bscan::test
