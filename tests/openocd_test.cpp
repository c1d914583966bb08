// The link to OpenOCD and a chain over it, against a server that answers in every wrong way.

#include <bscan/live_chain.h>
#include <bscan/result.h>

#include "support/chain_device.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace bscan {
namespace {

using std::chrono::milliseconds;
using test::DescribedDevice;
using test::kDrivenDevice;

constexpr milliseconds kPatience(10000);
constexpr milliseconds kShort(150);

// What the server does about a command.
struct Reply {
    std::string bytes;
    milliseconds delay{0};
    bool closes = false;     // the connection, behind the bytes
    bool in_pieces = false;  // a byte at a time
};

Reply Fine(const std::string& answer = "") { return {"0 " + answer + "\x1A"}; }

// A socket on a free port of this machine.
class Listener {
public:
    explicit Listener(bool listens) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(socket_, any, size), 0);
        EXPECT_EQ(getsockname(socket_, any, &size), 0);
        if (listens) {
            EXPECT_EQ(listen(socket_, 4), 0);
        }
        port_ = ntohs(address.sin_port);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { close(socket_); }
    int port() const { return port_; }
    int socket_number() const { return socket_; }

private:
    int socket_;
    int port_ = 0;
};

// Serves one connection after the other.
class FakeServer {
public:
    using Script = std::function<Reply(const std::string& command)>;

    explicit FakeServer(Script script) : script_(std::move(script)), thread_([this] { Serve(); }) {}
    ~FakeServer() {
        stop_ = true;
        thread_.join();
    }
    int port() const { return listener_.port(); }
    std::vector<std::string> Commands() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return commands_;
    }

private:
    bool IsReady(int socket) const {
        while (!stop_) {
            pollfd wanted = {socket, POLLIN, 0};
            if (poll(&wanted, 1, 5) > 0) return true;
        }
        return false;
    }
    void Serve() {
        while (IsReady(listener_.socket_number())) {
            const int client = accept(listener_.socket_number(), nullptr, nullptr);
            std::string text;
            while (Read(client, text) && Answer(client, text)) text.clear();
            close(client);
        }
    }
    // A command up to its end mark; the client sends the next one behind the answer.
    bool Read(int client, std::string& text) const {
        char block[4096];
        while (IsReady(client)) {
            const ssize_t got = recv(client, block, sizeof block, 0);
            if (got <= 0) return false;
            text.append(block, static_cast<std::size_t>(got));
            if (text.back() == '\x1A') return true;
        }
        return false;
    }
    bool Answer(int client, const std::string& wrapped) {
        const std::size_t begin = wrapped.find("[catch {") + 8;
        const std::string command = wrapped.substr(begin, wrapped.rfind("} bscan_answer]") - begin);
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            commands_.push_back(command);
        }
        const Reply reply = script_(command);
        for (milliseconds slept(0); slept < reply.delay && !stop_; slept += milliseconds(5)) {
            std::this_thread::sleep_for(milliseconds(5));
        }
        const std::size_t piece = reply.in_pieces ? 1 : reply.bytes.size();
        for (std::size_t at = 0; at < reply.bytes.size(); at += piece) {
            if (reply.in_pieces) std::this_thread::sleep_for(milliseconds(1));
            if (send(client, reply.bytes.data() + at, piece, MSG_NOSIGNAL) < 0) return false;
        }
        return !reply.closes;
    }

    Script script_;
    Listener listener_{true};
    mutable std::mutex mutex_;
    std::vector<std::string> commands_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// Fails a test that takes long although nothing has a reason to.
class Stopwatch {
public:
    explicit Stopwatch(milliseconds most) : most_(most) {}
    ~Stopwatch() { EXPECT_LT(std::chrono::steady_clock::now() - start_, most_); }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    milliseconds most_;
};

TEST(OpenOcd, UnderstandsAnswers) {
    struct Row {
        Reply reply;
        int code;
        const char* answer;
        bool stays_connected;
    };
    const Row rows[] = {
        {Fine("hello"), kOk, "hello", true},
        {Fine(), kOk, "", true},
        {{"0 two\nlines \x1A"}, kOk, "two\nlines ", true},
        {{"0 a piece\x1A", {}, false, true}, kOk, "a piece", true},
        {Fine(std::string(100000, '7')), kOk, nullptr, true},
        {{"1 no such command\x1A"}, kCommandFailed, "no such command", true},
        {{"1 \x1A"}, kCommandFailed, "", true},
        {{"220 mail.example ready\x1A"}, kNoConnection, nullptr, false},
        {{"HTTP/1.1 400 Bad Request\r\n\r\n\x1A"}, kNoConnection, nullptr, false},
        {{"\x1A"}, kNoConnection, nullptr, false},
        {{"0 half", {}, true}, kNoConnection, nullptr, false},
        {{"", {}, true}, kNoConnection, nullptr, false},
        {{"0 never ended"}, kNoConnection, nullptr, false},
        {{"0 late\x1A", 3 * kShort}, kNoConnection, nullptr, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reply.bytes.substr(0, 40));
        const Stopwatch watch(kPatience);
        FakeServer server([&](const std::string& command) {
            return command == "next" ? Fine("after") : row.reply;
        });
        OpenOcd link;
        const milliseconds limit = row.stays_connected ? kPatience : kShort;
        ASSERT_EQ(link.Connect("127.0.0.1", server.port(), limit), kOk);
        std::string answer;
        EXPECT_EQ(link.Run("set x {}", answer), row.code);
        if (row.answer != nullptr) {
            EXPECT_EQ(answer, row.answer);
        }
        if (row.code != kOk && row.reply.bytes != "1 \x1A") {
            EXPECT_FALSE(link.Problem().empty());
        }
        EXPECT_EQ(link.IsConnected(), row.stays_connected);
        EXPECT_EQ(server.Commands(), std::vector<std::string>{"set x {}"});

        // An answer that came too late is never taken for that of the next command.
        if (!link.IsConnected()) {
            EXPECT_EQ(link.Run("next", answer), kNoConnection);
            ASSERT_EQ(link.Connect("127.0.0.1", server.port(), kPatience), kOk);
        }
        EXPECT_EQ(link.Run("next", answer), kOk);
        EXPECT_EQ(answer, "after");
    }
}

TEST(OpenOcd, TellsWhomItCannotReach) {
    const Stopwatch watch(kPatience);
    const Listener deaf(false);
    const Listener silent(true);  // the connection is made, and nobody ever takes it
    OpenOcd link;
    std::string answer;
    EXPECT_EQ(link.Run("x", answer), kNoConnection);
    EXPECT_EQ(link.Connect("127.0.0.1", deaf.port(), kShort), kCannotConnect);
    EXPECT_NE(link.Problem().find("no OpenOCD listens"), std::string::npos);
    for (const int port : {-1, 0, 65536, 65536 + 6666}) {
        EXPECT_EQ(link.Connect("127.0.0.1", port, kShort), kCannotConnect);
        EXPECT_NE(link.Problem().find("no port"), std::string::npos);
    }
    EXPECT_EQ(link.Connect("no.such.host.invalid", 6666, kShort), kCannotConnect);
    ASSERT_EQ(link.Connect("127.0.0.1", silent.port(), kShort), kOk);
    EXPECT_EQ(link.Run("x", answer), kNoConnection);
    EXPECT_FALSE(link.IsConnected());

    FakeServer server([](const std::string&) { return Fine("here"); });
    ASSERT_EQ(link.Connect("localhost", server.port(), kPatience), kOk);
    OpenOcd taken(std::move(link));
    EXPECT_EQ(taken.Run("x", answer), kOk);
    link = std::move(taken);
    EXPECT_EQ(link.Run("x", answer), kOk);
    EXPECT_FALSE(taken.IsConnected());  // NOLINT(bugprone-use-after-move)
}

// OpenOCD with one device, U1; what goes wrong is put in its place.
class FakeBoard {
public:
    FakeBoard() {
        EXPECT_TRUE(chain.Add("U1", device.parser, &device.description.GetFacts()).Ok());
        EXPECT_TRUE(chain.FindPins("TRI", tri).Ok());
        EXPECT_TRUE(chain.FindPins("MON", mon).Ok());
        EXPECT_TRUE(chain.FindPins("PLAIN", plain).Ok());
    }
    // A connection that is patient but for the replies that come too late.
    void Connect(milliseconds limit = kPatience) {
        ASSERT_EQ(link.Connect("127.0.0.1", server.port(), limit), kOk);
    }

    DescribedDevice device;
    Chain chain;
    std::vector<ChainPin> tri, mon, plain;
    std::string idcode = "10000FFD";
    int fails_at = -1;  // number of the command, from 0
    Reply failure;
    FakeServer server{[this](const std::string& command) { return Answer(command); }};
    OpenOcd link;

private:
    Reply Answer(const std::string& command) {
        if (count_++ == fails_at) return failure;
        if (command == "jtag names") return Fine("U1.tap");
        if (command.rfind("drscan U1.tap 32 ", 0) == 0) return Fine(idcode);
        if (command.rfind("drscan U1.tap 11 ", 0) == 0) return Fine("000");
        return Fine();
    }
    int count_ = 0;
};

// The instructions of the device, as ScanInstruction() sends them.
const std::string kExtest = "irscan U1.tap 0x0";
const std::string kBypass = "irscan U1.tap 0xF";
const std::string kTrst = "adapter assert trst; adapter deassert trst";

// Whether the board was told to free the pins after it last entered EXTEST.
bool IsFree(const std::vector<std::string>& commands) {
    for (std::size_t i = commands.size(); i-- > 0;) {
        if (commands[i] == kTrst) return true;
        if (commands[i] == kExtest) return false;
    }
    return true;
}

// What a host does with a chain, one thing after the other.
ChainResult Use(FakeBoard& board, LiveChain& live) {
    ScanBits captured;
    std::vector<PinState> states;
    ChainResult result = live.Attach();
    if (result.Ok()) result = live.Capture(captured);
    if (result.Ok()) result = live.Drive({{board.tri[0], SIG_1}});
    if (result.Ok()) result = live.Drive({{board.mon[0], SIG_0}});
    if (result.Ok()) result = live.Read(board.tri, states);
    if (result.Ok()) result = live.Release();
    if (!result.Ok()) return result;
    const Steps steps = ParseSteps(board.chain, "drive TRI=1\nexpect TRI=0\nwait 2 tck");
    const auto nothing = [](const ScanOperation&, const FailedCheck&) {};
    return live.Play(PlanSteps(board.chain, steps.steps, {false, {}}), nullptr, nothing);
}

TEST(LiveChain, FreesThePinsWhereverItFails) {
    std::size_t count = 0;
    {
        FakeBoard board;
        board.Connect();
        LiveChain live(board.link, board.chain);
        EXPECT_TRUE(Use(board, live).Ok());
        count = board.server.Commands().size();
        EXPECT_TRUE(live.Detach().Ok());
        EXPECT_EQ(board.server.Commands().back(), kTrst);
    }
    ASSERT_GT(count, 20U);
    struct Row {
        const char* name;
        Reply reply;
        milliseconds limit;
    };
    const Row rows[] = {
        {"refused", {"1 not now\x1A"}, kPatience},
        {"garbage", {"0 <html>\x1A"}, kPatience},
        {"closed", {"", {}, true}, kPatience},
        {"late", {"0 0\x1A", milliseconds(900)}, milliseconds(700)},
    };
    for (const Row& row : rows) {
        const std::size_t stride = row.limit < kPatience ? 9 : 1;
        for (std::size_t at = 0; at < count; at += stride) {
            SCOPED_TRACE(std::string(row.name) + " at command " + std::to_string(at));
            const Stopwatch watch(kPatience);
            FakeBoard board;
            board.fails_at = static_cast<int>(at);
            board.failure = row.reply;
            board.Connect(row.limit);
            {
                LiveChain live(board.link, board.chain);
                const ChainResult result = Use(board, live);
                const std::vector<std::string> commands = board.server.Commands();
                if (commands.size() <= at) continue;  // a slow machine was late before
                if (!result.Ok()) {
                    EXPECT_TRUE(result.code == ChainCode::kLinkFailed ||
                                result.code == ChainCode::kWrongChain);
                    EXPECT_GT(result.reason.size(), 5U);
                    EXPECT_TRUE(IsFree(commands)) << testing::PrintToString(commands);
                }
                // A lost link is made anew for a reset; of most answers only the code counts.
                const bool resets = commands[at] == kBypass || commands[at] == kTrst;
                const std::string name = row.name;
                if (name == "refused" || (name != "garbage" && !resets)) {
                    EXPECT_FALSE(result.Ok());
                }
            }
            EXPECT_TRUE(IsFree(board.server.Commands()));
        }
    }
}

TEST(LiveChain, RefusesWhatIsNoScan) {
    for (const char* const answer : {"", "xyz", "0x1", "FFF", "0 0", "1F00000000"}) {
        SCOPED_TRACE(answer);
        FakeBoard board;
        board.Connect();
        LiveChain live(board.link, board.chain);
        ASSERT_TRUE(live.Attach().Ok());
        ASSERT_TRUE(live.Drive({{board.tri[0], SIG_1}}).Ok());
        board.fails_at = static_cast<int>(board.server.Commands().size());
        board.failure = Fine(answer);
        ScanBits captured;
        EXPECT_EQ(live.Capture(captured).code, ChainCode::kLinkFailed);
        EXPECT_TRUE(IsFree(board.server.Commands()));
    }
}

// The bits of the last scan of the boundary register, cell 0 first.
std::string LastVector(const FakeServer& server) {
    std::string vector;
    const std::string scan = "drscan U1.tap 11 0x";
    for (const std::string& command : server.Commands()) {
        if (command.rfind(scan, 0) != 0) continue;
        vector = ScanBits::FromHex(command.substr(scan.size()), 11).value_or(ScanBits()).Text();
    }
    return vector;
}

TEST(LiveChain, DrivesWhatWasAskedSinceTheLastRelease) {
    FakeBoard board;
    board.Connect();
    LiveChain live(board.link, board.chain);
    ASSERT_TRUE(live.Attach().Ok());
    ASSERT_TRUE(live.Drive({{board.tri[0], SIG_1}}).Ok());
    EXPECT_EQ(LastVector(board.server), "00011011000");
    ASSERT_TRUE(live.Drive({{board.mon[0], SIG_1}}).Ok());
    EXPECT_EQ(LastVector(board.server), "00011011110");
    ASSERT_TRUE(live.Release().Ok());
    ASSERT_TRUE(live.Drive({{board.mon[0], SIG_1}}).Ok());
    EXPECT_EQ(LastVector(board.server), "00010111110");

    // PLAIN cannot be released, so that nothing is driven, and TRI has to be asked for anew.
    EXPECT_EQ(live.Drive({{board.tri[0], SIG_1}, {board.plain[0], SIG_Z}}).code,
              ChainCode::kBadStep);
    EXPECT_TRUE(IsFree(board.server.Commands()));
    ASSERT_TRUE(live.Drive({{board.plain[0], SIG_0}}).Ok());
    EXPECT_EQ(LastVector(board.server), "00010101000");
}

TEST(LiveChain, TakesTheOneDeviceThatTheFileTells) {
    struct Row {
        const char* idcode;
        ChainCode code;
    };
    // The version and the x of the part number do not count.
    const Row rows[] = {{"10000FFD", ChainCode::kOk},         {"F0000ffd", ChainCode::kOk},
                        {"10001FFD", ChainCode::kOk},         {"10002FFD", ChainCode::kWrongChain},
                        {"FFFFFFFF", ChainCode::kWrongChain}, {"00000000", ChainCode::kWrongChain}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.idcode);
        FakeBoard board;
        board.idcode = row.idcode;
        board.Connect();
        LiveChain live(board.link, board.chain);
        const ChainResult result = live.Attach();
        EXPECT_EQ(result.code, row.code);
        if (!result.Ok()) {
            EXPECT_NE(result.reason.find("U1"), std::string::npos);
        }
    }
}

TEST(LiveChain, EndsAProgramWhenTheHostSaysSo) {
    FakeBoard board;
    board.Connect();
    LiveChain live(board.link, board.chain);
    ASSERT_TRUE(live.Attach().Ok());
    const Steps steps = ParseSteps(board.chain, "drive TRI=1\nwait 60000 ms\ndrive TRI=0");
    const ScanProgram program = PlanSteps(board.chain, steps.steps);
    int waited = 0;
    const Stopwatch watch(kPatience);
    const auto before = [&](const ScanOperation& operation) {
        return operation.kind != OperationKind::kWait || ++waited < 3;
    };
    EXPECT_TRUE(live.Play(program, before, nullptr).Ok());
    EXPECT_EQ(waited, 3);
    EXPECT_TRUE(IsFree(board.server.Commands()));
    EXPECT_EQ(LastVector(board.server), "00011011000");
}

TEST(LiveChain, PutsTheWholeChainInThePlaceOfItsParts) {
    DescribedDevice device;
    Chain chain;
    ASSERT_TRUE(chain.Add("U1", device.parser).Ok());
    ASSERT_TRUE(chain.Add("X", 60).Ok());
    struct Row {
        const char* names;
        ChainCode code;
    };
    const Row rows[] = {{"X.tap U1.tap bscan.chain", ChainCode::kOk},
                        {"bscan.chain X.tap\nU1.tap", ChainCode::kOk},
                        {"X.tap U1.tap", ChainCode::kWrongChain},
                        {"U1.tap", ChainCode::kWrongChain},
                        {"U1.tap bscan.chain", ChainCode::kWrongChain},
                        {"U1.tap X.tap Y.tap bscan.chain", ChainCode::kWrongChain},
                        {"", ChainCode::kWrongChain}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.names);
        FakeServer server([&](const std::string& command) {
            return Fine(command == "jtag names" ? row.names : "000");
        });
        OpenOcd link;
        ASSERT_EQ(link.Connect("127.0.0.1", server.port(), kPatience), kOk);
        LiveChain live(link, chain);
        EXPECT_EQ(live.Attach().code, row.code);
        if (row.code != ChainCode::kOk) continue;
        EXPECT_TRUE(live.Release().Ok());
        const std::string taken = server.Commands().back();
        for (const char* const part : {"jtag tapdisable X.tap", "jtag tapdisable U1.tap"}) {
            EXPECT_NE(taken.find(part), std::string::npos) << taken;
        }
        EXPECT_EQ(taken.find("tapdisable bscan.chain"), std::string::npos) << taken;
        EXPECT_TRUE(live.Detach().Ok());
        // OpenOCD's own TAPs come back with the reset.
        EXPECT_EQ(server.Commands().back(), kTrst);
    }
    // One bit more than OpenOCD takes in a scan of the instruction register.
    ASSERT_TRUE(chain.Add("Y", 1).Ok());
    FakeServer server([](const std::string& command) {
        return Fine(command == "jtag names" ? "U1.tap X.tap Y.tap bscan.chain" : "");
    });
    OpenOcd link;
    ASSERT_EQ(link.Connect("127.0.0.1", server.port(), kPatience), kOk);
    LiveChain live(link, chain);
    const ChainResult result = live.Attach();
    EXPECT_EQ(result.code, ChainCode::kWrongChain);
    EXPECT_NE(result.reason.find("SVF"), std::string::npos) << result.reason;
}

}  // namespace
}  // namespace bscan
