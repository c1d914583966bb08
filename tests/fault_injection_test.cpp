// Every allocation of a reading fails once, and from some allocation on all of them fail. The
// answer is a code or a whole model, and in either case nothing leaks and the objects can be
// destroyed.

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

/// What the allocations of this program go through.
struct {
    long live = 0;          // allocated and not freed
    long left = -1;         // so many more succeed; negative for all
    bool for_good = false;  // whether those behind the failed one fail too
} memory;

void* Allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    if (memory.left == 0) {
        if (!memory.for_good) memory.left = -1;
        return nullptr;
    }
    if (memory.left > 0) --memory.left;
    const std::size_t units = size / alignment + 1;
    void* const block = std::aligned_alloc(alignment, units * alignment);
    if (block) ++memory.live;
    return block;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    if (void* const block = Allocate(size, alignment)) return block;
    throw std::bad_alloc();
}

void Free(void* block) {
    if (block) --memory.live;
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Free(block); }
void operator delete(void* block, std::align_val_t) noexcept { Free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { Free(block); }

namespace bscan::test {
namespace {

/// Lets the n-th allocation from now on fail, from 0, as long as it lives.
class Failure {
public:
    Failure(long n, bool for_good) {
        memory.for_good = for_good;
        memory.left = n;
    }
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    ~Failure() { memory.left = -1; }

    /// Whether no allocation has failed.
    static bool WasSpared() { return memory.left > 0; }
};

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
    {
        const Failure failure(n, for_good);
        outcome.result = parser.SetBSCANBitArray(capture, sizeof capture, nullptr);
        if (outcome.result == kOk) {
            outcome.result = parser.Initialize(file.c_str(), folder.c_str());
        }
        if (outcome.result == kOk) outcome.result = parser.Read();
        outcome.spared = Failure::WasSpared();
    }
    outcome.model = DumpModel(parser);
    parser.ProcessException(1, 1, nullptr);  // with or without an error handler
    if (const ErrorHandler* const errors = parser.GetErrorHandler()) {
        outcome.model += errors->GetErrorCount() > 0 ? errors->GetError(0) : "no message";
    }
    outcome.fault = FindFault(parser, outcome.result);
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
    [](BScanPinMap& map) {
        const char* const names[] = {"a_first_name_of_a_cell", "a_second_name_of_a_cell", "third"};
        for (int n = 5; n < 11; ++n) map.GetBScanCell(n)->SetPinName(names[n % 3]);
        bool right = true;
        for (int k = 0; k < 10; ++k) {  // the first few walk
            right = right && map.GetBScanCell("vector_with_a_long_name2") == map.GetBScanCell(3) &&
                    map.GetBScanCellByOriginalName("another cell with a long name") == nullptr;
        }
        return right;
    },
    [](BScanPinMap& map) { return NodeAt(map, 0)->GetPortName() != nullptr; },
    [](BScanPinMap& map) { return NodeAt(map, 0)->SetPortName(renamed), true; },
    [](BScanPinMap& map) {
        char name[] = "A_PORT_WITH_A_LONG_NAME";
        return map.GetPort(name, 1) == NodeAt(map, 1);
    },
    [](BScanPinMap& map) {
        for (int n = 4; n > 0; --n) map.GetBScanCell(n)->SetPinName("a_new_cell_name_that_is_long");
        return true;
    },
    [](BScanPinMap& map) {
        // By whatever names they have now, and by one that a cell had.
        const LBScanCell* const table = map.GetBScanCellTable();
        const auto walk = [&](const char* name) {
            const LBScanCell* const end = table + map.GetBScanLength();
            const auto* const found = std::find_if(table, end, [&](const LBScanCell& cell) {
                return std::strcmp(cell.GetPinName(), name) == 0;
            });
            return found == end ? nullptr : found;
        };
        const char* const former = "VECTOR_WITH_A_LONG_NAME2";
        return map.GetBScanCell(former) == walk(former) &&
               std::all_of(table, table + map.GetBScanLength(), [&](const LBScanCell& cell) {
                   return map.GetBScanCell(cell.GetPinName()) == walk(cell.GetPinName());
               });
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
                {
                    const Failure failure(n, GetParam());
                    right = kSteps[i](map);
                    spared = spared && Failure::WasSpared();
                }
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
