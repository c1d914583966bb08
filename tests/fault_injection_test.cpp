// Every allocation of a reading fails once, and from some allocation on all of them fail. The
// answer is a code or a whole model, and in either case nothing leaks and the objects can be
// destroyed.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

/// What the allocations of this program go through.
struct {
    long live = 0;          // allocated and not freed
    long left = -1;         // so many more succeed; negative for all
    bool for_good = false;  // whether those behind the failed one fail too
} memory;

[[gnu::noinline]] void Free(void* block) {  // or g++ 12 sees a free of what new gave
    if (block) --memory.live;
    std::free(block);
}

}  // namespace

// The other forms of new and delete call these.
void* operator new(std::size_t size) {
    if (memory.left == 0) {
        if (!memory.for_good) memory.left = -1;
        throw std::bad_alloc();
    }
    if (memory.left > 0) --memory.left;
    void* const block = std::malloc(size + 1);
    if (!block) throw std::bad_alloc();
    ++memory.live;
    return block;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}
void operator delete(void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }

namespace bscan::test {
namespace {

/// Lets the n-th allocation from now on fail, from 0, during some work. Tells whether none failed.
template <class Work>
bool IsSpared(long n, bool for_good, Work work) {
    memory.for_good = for_good;
    memory.left = n;
    work();
    const bool spared = memory.left > 0;
    memory.left = -1;
    return spared;
}

struct Outcome {
    int result = kOk;
    bool spared = false;
    std::string model;
    std::string fault;
};

Outcome ReadWithFailure(const std::string& file, const std::string& folder, long n, bool for_good) {
    Outcome outcome;
    unsigned char capture[] = {0, 1, 0, 2, 1};
    BScanParser parser;
    outcome.spared = IsSpared(n, for_good, [&] {
        outcome.result = parser.SetBSCANBitArray(capture, sizeof capture, nullptr);
        if (outcome.result == kOk) {
            outcome.result = parser.Initialize(file.c_str(), folder.c_str());
        }
        if (outcome.result == kOk) outcome.result = parser.Read();
    });
    outcome.model = DumpModel(parser);
    parser.ProcessException(1, 1, nullptr);  // with or without an error handler
    if (const ErrorHandler* const errors = parser.GetErrorHandler()) {
        outcome.model += errors->GetErrorCount() > 0 ? errors->GetError(0) : "no message";
    }
    outcome.fault = FindFault(parser);
    if (outcome.fault.empty()) outcome.fault = FindDriveFault(parser);
    return outcome;
}

class FaultInjection : public testing::TestWithParam<bool> {};

TEST_P(FaultInjection, LeavesAReadingWholeOrRefused) {
    const std::string folder = SourceDir() / "examples";
    for (const std::filesystem::path& file : FilesIn(SourceDir() / "examples" / "devices")) {
        const Outcome whole = ReadWithFailure(file, folder, -1, false);
        ASSERT_EQ(whole.result, kOk);
        bool spared = false;
        for (long n = 0; !spared; ++n) {
            SCOPED_TRACE(file.string() + ", allocation " + std::to_string(n));
            const long live = memory.live;
            {
                const Outcome outcome = ReadWithFailure(file, folder, n, GetParam());
                spared = outcome.spared;
                EXPECT_TRUE(outcome.result == kOk || outcome.result == kOutOfMemory ||
                            outcome.result == kNoPinMap)
                    << outcome.result;
                if (outcome.result == kOk) {
                    EXPECT_EQ(outcome.model, whole.model);
                }
                EXPECT_EQ(outcome.fault, "");
            }
            if (HasFailure()) return;  // what was reported is live too
            EXPECT_EQ(memory.live, live);
        }
    }
}

/// A device that a host makes without a file. Each step answers whether the device answers rightly.
using Step = bool (*)(BScanPinMap&);
char mode[] = "in", type[] = "BC_7", function[] = "bidir", pin[] = "a pin with a long name";
char port[] = "a_port_with_a_long_name", renamed[] = "a_new_name_that_is_long_too";
char vector[] = "VECTOR_WITH_A_LONG_NAME", both[] = "inout";

/// Whether each cell is found by its name, and none by another one.
bool FindsCells(BScanPinMap& map) {
    bool right = map.GetBScanCellByOriginalName("another cell with a long name") == nullptr;
    for (int n = 0; n < map.GetBScanLength(); ++n) {
        const char* const name = map.GetBScanCell(n)->GetPinName();
        right = right && map.GetBScanCell(name) == WalkToCell(map, &LBScanCell::GetPinName, name);
    }
    return right;
}

const Step kSteps[] = {
    [](BScanPinMap& map) { return map.AddNewPorts(port, mode, 5, true), true; },
    [](BScanPinMap& map) { return map.AddNewPorts(vector, both, 3, 0), true; },
    [](BScanPinMap& map) { return map.AllocateBScanCellTable(11), true; },
    [](BScanPinMap& map) {
        const int result = map.AddNewRegister(3, type, vector, 2, function, SIG_X, 4, SIG_0, SIG_Z,
                                              SIG_1, "the original name of a cell");
        return result == kOk || result == kOutOfMemory;
    },
    [](BScanPinMap& map) { return map.SerialSetPinName(vector, 0, pin), true; },
    [](BScanPinMap& map) { return map.GetPort("another pin with a long name") == nullptr; },
    [](BScanPinMap& map) { return map.GetPort(pin) == NodeAt(map, 5); },
    FindsCells,
    [](BScanPinMap& map) {
        for (int n = 4; n > 0; --n) map.GetBScanCell(n)->SetPinName("a_new_cell_name_that_is_long");
        return FindsCells(map);
    },
    [](BScanPinMap& map) { return NodeAt(map, 0)->GetPortName() != nullptr; },
    [](BScanPinMap& map) { return NodeAt(map, 0)->SetPortName(renamed), true; },
    [](BScanPinMap& map) {
        char name[] = "A_PORT_WITH_A_LONG_NAME";
        return map.GetPort(name, 1) == NodeAt(map, 1);
    },
    [](BScanPinMap& map) { return map.SetIOName("names, of, a, declaration, for, both"), true; },
};

std::string State(BScanPinMap& map) {
    std::string state = Ports(&map) + Pins(&map);
    for (int n = 0; n < map.GetBScanLength(); ++n) state += Describe(*map.GetBScanCell(n)) + '\n';
    for (int i = 0; i < map.GetNumberOfPins(); ++i) state += CellsOf(NodeAt(map, i)) + ',';
    return map.GetIOTypeCount() > 0 ? state + map.GetIOName(0) : state;
}

TEST_P(FaultInjection, LeavesADeviceThatWorksOn) {
    std::vector<std::string> expected;
    BScanPinMap undisturbed;
    for (const Step step : kSteps) {
        ASSERT_TRUE(step(undisturbed));
        expected.push_back(State(undisturbed));
    }
    SCOPED_TRACE("the first trace of a thread allocates for good");
    bool spared = false;
    for (long n = 0; !spared && !HasFailure(); ++n) {
        const long live = memory.live;
        spared = true;
        {
            BScanPinMap map;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                SCOPED_TRACE("step " + std::to_string(i) + ", allocation " + std::to_string(n));
                bool right = false;
                spared = IsSpared(n, GetParam(), [&] { right = kSteps[i](map); }) && spared;
                EXPECT_TRUE(right);
                // What was refused may be asked for again.
                if (State(map) != expected[i]) {
                    EXPECT_TRUE(kSteps[i](map));
                }
                EXPECT_EQ(State(map), expected[i]);
            }
        }
        EXPECT_EQ(memory.live, live);
    }
}

INSTANTIATE_TEST_SUITE_P(Memory, FaultInjection, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& row) {
                             return row.param ? "StaysExhausted" : "RunsShortOnce";
                         });

}  // namespace
}  // namespace bscan::test
