// Files that fail while they are read, that change between the two passes, and that are none.

#include "invariants.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace bscan::test {
namespace {

constexpr std::string_view kDevice = R"bsdl(entity S is
generic (PHYSICAL_PIN_MAP : string := "P");
port (A : in bit;
 D : inout bit_vector (1 downto 0); -- data
 V : linkage bit);
constant P : PIN_MAP_STRING := "A:A1," &
 "D:(B1,B2),V:A2";
attribute PORT_GROUPING of S : entity is
 "Differential_Voltage ((D,V))";
attribute INSTRUCTION_LENGTH of S : entity is 2;
attribute INSTRUCTION_OPCODE of S : entity is "BYPASS (11)";
attribute REGISTER_ACCESS of S : entity is "BOUNDARY (BYPASS)";
attribute BOUNDARY_LENGTH of S : entity is 5;
attribute BOUNDARY_REGISTER of S : entity is
 "0 (BC_1, *, control, 0)," &
 "1 (BC_7, D(0), bidir, X, 0, 0, Z)," &
 "2 (BC_1, A, input, 1)," &
 "3 (BC_1, *, internal, 1)," &
 "4 (BC_1, *, internal, 1)," & -- V
 "";
end S;
)bsdl";

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
    ReadDevice whole(kDevice);
    ASSERT_EQ(whole.result(), kOk);
    for (std::size_t at = 0; at <= kDevice.size(); ++at) {
        SCOPED_TRACE(at);
        FaultyStream stream(kDevice, kDevice.size(), at);
        {
            BScanParser parser;
            EXPECT_EQ(parser.Read(), at < kDevice.size() ? kReadFailed : kOk);
            EXPECT_EQ(FindPortFault(parser.GetPinMap(), whole.parser.GetPinMap()), "");
            EXPECT_EQ(FindContradiction(parser, kReadFailed), "");
            EXPECT_EQ(FindDriveFault(parser), "");
        }
        EXPECT_TRUE(stream.is_closed());
    }
}

TEST(StreamFault, ShortReadsChangeNothing) {
    const auto read = [](std::size_t step) {
        const FaultyStream stream(kDevice, step, std::string::npos);
        BScanParser parser;
        EXPECT_EQ(parser.Read(), kOk);
        return DumpModel(parser);
    };
    const std::string whole = read(kDevice.size());
    for (std::size_t step = 1; step < kDevice.size(); ++step) {
        ASSERT_EQ(read(step), whole) << step;
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // nobody deletes one through its base

/// Does something to its file when the main pass is about to begin: the first pass is over, and the
/// file has just been opened again.
class MeddlingParser final : public BScanParser {
public:
    explicit MeddlingParser(std::function<void()> meddle) : meddle_(std::move(meddle)) {}
    int Reset() override {
        meddle_();
        return BScanParser::Reset();
    }

private:
    std::function<void()> meddle_;
};

#pragma GCC diagnostic pop

TEST(StreamFault, TheFileMayChangeBetweenThePasses) {
    std::string renamed(kDevice);
    renamed.replace(renamed.find("B2"), 2, "C9");
    std::string regrouped(kDevice);
    regrouped.replace(regrouped.find("\"P\""), 3, "\"Q\"");
    const struct {
        const char* what;
        std::function<void(const TempDir&, const std::string&)> meddle;
        int result;
        int last_number;  // of port V on pin A2
    } rows[] = {
        {"it stays", [](const TempDir&, const std::string&) {}, kOk, 1},
        {"it is removed", [](const TempDir&, const std::string& f) { unlink(f.c_str()); }, kOk, 1},
        {"it is emptied",
         [](const TempDir&, const std::string& f) { EXPECT_EQ(truncate(f.c_str(), 0), 0); },
         kReadFailed, 0},
        {"it is cut",
         [](const TempDir&, const std::string& f) { EXPECT_EQ(truncate(f.c_str(), 300), 0); },
         kEndOfFile, 1},
        {"a pin is renamed", [&](const TempDir& d, const std::string&) { d.Write("f", renamed); },
         kOk, 1},
        {"its package is renamed",
         [&](const TempDir& d, const std::string&) { d.Write("f", regrouped); }, kOk, 0},
        {"it becomes another", [](const TempDir& d, const std::string&) { d.Write("f", "x y z"); },
         kUnexpectedLine, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const TempDir directory;
        const std::string file = directory.Write("f", kDevice);
        MeddlingParser parser([&] { row.meddle(directory, file); });
        EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), kOk);
        EXPECT_EQ(parser.Read(), row.result);
        BScanPinMap* const map = parser.GetPinMap();
        if (row.last_number != 0 || row.result == kOk) {
            ASSERT_NE(map, nullptr);
            EXPECT_EQ(map->GetPinNumberwPortName(Text("V")), row.last_number);
        }
        EXPECT_EQ(FindContradiction(parser, row.result), "");
        EXPECT_EQ(FindDriveFault(parser), "");
    }
}

TEST(StreamFault, AFileMayVanishBeforeItIsOpened) {
    const TempDir directory;
    const std::string file = directory.Write("f", kDevice);
    BScanParser parser;
    EXPECT_EQ(parser.ReadPackageDB(Text(file)), kOk);
    EXPECT_EQ(parser.GetPackageMapCount(), 1);
    unlink(file.c_str());
    EXPECT_EQ(parser.Initialize(file.c_str(), nullptr), kCannotOpen);
    EXPECT_EQ(parser.Read(), kFailed);
    EXPECT_EQ(parser.GetPackageMapCount(), 1);
}

TEST(StreamFault, WhatIsNoDeviceFileIsRefused) {
    const TempDir directory;
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string locked = directory.Write("locked", kDevice);
    ASSERT_EQ(chmod(locked.c_str(), 0), 0);
    std::string returns(kDevice);
    std::replace(returns.begin(), returns.end(), '\n', '\r');
    std::string endless(kDevice);
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
        {directory.Write("blank", " \n\t\n\r\n"), kOk, kReadFailed},
        {directory.Write("zeros", std::string(100000, '\0')), kOk, kEndOfFile},
        {directory.Write("zero lines", std::string("\0\n\0\n", 4)), kOk, kReadFailed},
        {directory.Write("returns", returns), kOk, kUnexpectedLine},
        {directory.Write("one line", endless), kOk, kUnexpectedLine},
        {directory.Write("dashes", std::string(100000, '-')), kOk, kEndOfFile},
        {locked, geteuid() == 0 ? kOk : kCannotOpen, geteuid() == 0 ? kOk : kFailed},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        BScanParser parser;
        EXPECT_EQ(parser.Initialize(row.file.c_str(), nullptr), row.opened);
        const int result = parser.Read();
        EXPECT_EQ(result, row.read);
        EXPECT_EQ(FindContradiction(parser, result), "");
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
    EXPECT_EQ(FindContradiction(device.parser, device.result()), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

}  // namespace
}  // namespace bscan::test
