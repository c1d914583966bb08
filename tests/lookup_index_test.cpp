// Holds every lookup of the device against a plain walk over what a host can see, through random
// sequences of everything that can change the answer.

#include "support/read_device.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <optional>
#include <random>

namespace bscan::test {
namespace {

// Few names in different letter case, so that they collide; one is null.
constexpr const char* kNames[] = {"A",  "a",  "Ab", "aB", "AB1", "ab1",
                                  "AB", "b0", "B0", "B",  "",    nullptr};
constexpr const char* kSought[] = {"A", "a", "aB", "Ab1", "AB12", "B0", "b", "", "none"};

struct PlainName {
    std::optional<std::string> text;
    char* pointer = nullptr;  // where the host kept what a getter gave it
};

struct PlainNode {
    LPinNode* node;
    PlainName port;
    PlainName pin;
    int vector_index;
    int number;
};

struct PlainCell {
    std::string pin_name;
    std::string original_name;
};

std::optional<std::string> OrNothing(const char* text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

std::string Upper(std::string text) {
    strupr(text.data());
    return text;
}

/// The device beside a plain model of it.
class Twins {
public:
    explicit Twins(unsigned seed) : random_(seed) {}
    ~Twins() {
        for (LPinNode* node : removed_) delete node;
    }

    void ChangeSomething() {
        switch (Below(14)) {
            case 0:
                return AddCountedPorts();
            case 1:
                return AddVector();
            case 2:
                return AppendNode();
            case 3:
                return RemoveNode();
            case 4:
            case 5:
                return Rename();
            case 6:
                return Renumber();
            case 7:
            case 8:
                return WriteThroughAPointer();
            case 9:
                return SerialSet();
            case 10:
                return NameCell();
            case 11:
                return AssignCell();
            case 12:
                return FillCell();
            default:
                if (Below(3) == 0) AllocateCells();
        }
    }

    /// Does one lookup in both and expects the same answer, and the same names afterwards.
    void LookSomethingUp() {
        const std::string sought = kSought[Below(std::size(kSought))];
        const int index = Below(4) - 1;
        const auto cell = [&](std::string PlainCell::*name) -> LBScanCell* {
            for (std::size_t n = 0; n < cells_.size(); ++n)
                if (Upper(cells_[n].*name) == Upper(sought))
                    return map_.GetBScanCell(static_cast<int>(n));
            return nullptr;
        };
        switch (Below(8)) {
            case 0: {
                Text text(sought);
                LPinNode* const expected = PortOf(sought, index);
                ASSERT_EQ(map_.GetPort(text, index), expected) << sought << ' ' << index;
                if (expected) {
                    EXPECT_EQ(text.str(), Upper(sought));
                }
                break;
            }
            case 1:
                ASSERT_EQ(map_.GetPortwName(Text(sought)), FirstPortOf(sought)) << sought;
                break;
            case 2:
                ASSERT_EQ(map_.GetPort(sought.c_str()), ByPinName(sought)) << sought;
                break;
            case 3:
                ASSERT_EQ(map_.GetPort(index * 3), ByNumber(index * 3)) << index * 3;
                break;
            case 4:
                ASSERT_EQ(map_.GetBScanCell(sought.c_str()), cell(&PlainCell::pin_name)) << sought;
                break;
            case 5:
                ASSERT_EQ(map_.GetBScanCellByOriginalName(sought.c_str()),
                          cell(&PlainCell::original_name))
                    << sought;
                break;
            case 6: {
                const LPinNode* const expected = ByPinName(sought);
                ASSERT_EQ(map_.GetPinNumber(sought.c_str()),
                          expected ? expected->GetPinNumber() : -1);
                break;
            }
            default:
                CompareKeptPointers();
        }
    }

    /// Compares all names. Reading the names leaves the nodes as they are.
    void CompareNames() {
        ASSERT_EQ(static_cast<std::size_t>(map_.GetNumberOfPins()), nodes_.size());
        for (const PlainNode& plain : nodes_) {
            ASSERT_EQ(plain.port.text, OrNothing(PortName(*plain.node)));
            ASSERT_EQ(plain.pin.text, OrNothing(PinName(*plain.node)));
            ASSERT_EQ(plain.number, plain.node->GetPinNumber());
        }
    }

private:
    int Below(std::size_t limit) {
        return static_cast<int>(random_() % static_cast<unsigned>(limit));
    }
    const char* AnyName() { return kNames[Below(std::size(kNames))]; }
    const char* AnyNameButNull() { return kNames[Below(std::size(kNames) - 1)]; }
    PlainNode* AnyNode() {
        return nodes_.empty() ? nullptr : &nodes_[static_cast<std::size_t>(Below(nodes_.size()))];
    }

    // The plain walks.

    LPinNode* PortOf(const std::string& name, int index) {
        if (name.empty()) return nullptr;
        for (PlainNode& plain : nodes_) {
            if (!plain.port.text) return nullptr;
            *plain.port.text = Upper(*plain.port.text);
            if (*plain.port.text == Upper(name) && plain.vector_index == index) return plain.node;
        }
        return nullptr;
    }
    LPinNode* FirstPortOf(const std::string& name) {
        for (PlainNode& plain : nodes_) {
            if (!plain.port.text) continue;
            *plain.port.text = Upper(*plain.port.text);
            if (*plain.port.text == Upper(name)) return plain.node;
        }
        return nullptr;
    }
    LPinNode* ByPinName(const std::string& name) {
        for (const PlainNode& plain : nodes_)
            if (plain.pin.text == name) return plain.node;
        return nullptr;
    }
    LPinNode* ByNumber(int number) {
        if (number < 1 || number > static_cast<int>(nodes_.size())) return nullptr;
        for (const PlainNode& plain : nodes_)
            if (plain.number == number) return plain.node;
        return nullptr;
    }
    PlainNode* SerialNode(const char* name, int k) {
        for (PlainNode& plain : nodes_)
            if (plain.port.text == name && k-- == 0) return &plain;
        return nullptr;
    }

    // What a host and the reader can do.

    void AddExpected(const char* name, int vector_index) {
        LObject* const node = map_.GetPinListArray()->GetAt(static_cast<int>(nodes_.size()));
        nodes_.push_back({static_cast<LPinNode*>(node), {name}, {}, vector_index, -1});
    }
    void AddCountedPorts() {
        if (nodes_.size() > 40) return;
        const char* const name = AnyNameButNull();
        const int count = Below(4);
        const bool ascending = Below(2) == 0;
        map_.AddNewPorts(Text(name), Text("in"), count, ascending);
        for (int k = 0; k < count; ++k) AddExpected(name, ascending ? k : count - 1 - k);
    }
    void AddVector() {
        if (nodes_.size() > 40) return;
        const char* const name = AnyNameButNull();
        const int from = Below(4);
        const int to = Below(4);
        map_.AddNewPorts(Text(name), Text("out"), from, to);
        const int span = std::abs(to - from);
        for (int k = 0; k <= span; ++k) AddExpected(name, from <= to ? k : span - k);
    }
    void AppendNode() {
        if (nodes_.size() > 40) return;
        LPinNode* node = new LPinNode;
        if (!removed_.empty() && Below(2) == 0) {  // one that was in the list before
            delete node;
            node = removed_.back();
            removed_.pop_back();
        }
        map_.GetPinListArray()->AddTail(node);
        nodes_.push_back({node,
                          {OrNothing(PortName(*node))},
                          {OrNothing(PinName(*node))},
                          node->GetVectorIndex(),
                          node->GetPinNumber()});
    }
    void RemoveNode() {
        LObject* const tail = map_.GetPinListArray()->RemoveTail();
        ASSERT_EQ(tail, nodes_.empty() ? nullptr : nodes_.back().node);
        if (!tail) return;
        // Its names may change while no list holds it.
        removed_.push_back(nodes_.back().node);
        nodes_.pop_back();
        if (Below(2) == 0) removed_.back()->SetPortName(Text("B0"));
        if (Below(2) == 0) removed_.back()->SetPinNumber(3);
    }
    void Rename() {
        const char* const name = AnyName();
        PlainNode* const plain = AnyNode();
        if (!plain) return;
        Text text(name ? name : "");
        char* const argument = name ? static_cast<char*>(text) : nullptr;
        const bool port = Below(2) == 0;
        port ? plain->node->SetPortName(argument) : plain->node->SetPinName(argument);
        if (name) (port ? plain->port : plain->pin) = {name};
    }
    void Renumber() {
        PlainNode* const plain = AnyNode();
        if (!plain) return;
        plain->number = Below(12) - 2;
        plain->node->SetPinNumber(plain->number);
    }
    void WriteThroughAPointer() {
        PlainNode* const plain = AnyNode();
        if (!plain) return;
        const bool port = Below(2) == 0;
        PlainName& name = port ? plain->port : plain->pin;
        if (!name.text) return;
        if (!name.pointer)
            name.pointer = port ? plain->node->GetPortName() : plain->node->GetPinName();
        std::string& expected = *name.text;
        ASSERT_EQ(expected, name.pointer);
        if (expected.empty() || Below(3) == 0) return;
        if (Below(10) == 0) expected.resize(expected.size() - 1);
        for (char& c : expected) c = "ABab01"[Below(6)];
        std::memcpy(name.pointer, expected.c_str(), expected.size() + 1);
    }
    void SerialSet() {
        const char* const name = AnyNameButNull();
        const int k = Below(4) - 1;
        PlainNode* const plain = SerialNode(name, k);
        if (Below(2) == 0) {
            const int number = Below(10);
            map_.SerialSetPinNumber(Text(name), k, number);
            if (plain) plain->number = number;
        } else {
            map_.SerialSetPinName(Text(name), k, Text("aB"));
            if (plain) plain->pin = {"aB"};
        }
    }
    void AllocateCells() {
        const int length = Below(12);
        map_.AllocateBScanCellTable(length);
        cells_.assign(static_cast<std::size_t>(length), {});
    }
    void NameCell() {
        const char* const name = AnyName();
        if (cells_.empty()) return;
        const int n = Below(cells_.size());
        PlainCell& plain = cells_[static_cast<std::size_t>(n)];
        const bool original = Below(2) == 0;
        if (original)
            map_.GetBScanCell(n)->SetOriginalPinName(name);
        else
            map_.GetBScanCell(n)->SetPinName(name);
        if (name) (original ? plain.original_name : plain.pin_name) = name;
    }
    void AssignCell() {
        if (cells_.empty()) return;
        const int from = Below(cells_.size());
        const int to = Below(cells_.size());
        if (Below(2) == 0) {
            *map_.GetBScanCell(to) = *map_.GetBScanCell(from);
        } else {
            const LBScanCell copy(*map_.GetBScanCell(from));
            map_.GetBScanCellTable()[to] = copy;
        }
        cells_[static_cast<std::size_t>(to)] = cells_[static_cast<std::size_t>(from)];
    }
    void FillCell() {
        const char* const name = AnyNameButNull();
        const int n = Below(14) - 1;
        const int index = Below(3);
        const char* const original = AnyName();
        map_.AddNewRegister(n, Text("BC_1"), Text(name), index, Text("input"), SIG_X, -1, SIG_0,
                            SIG_Z, SIG_X, original);
        if (n < 0 || n >= static_cast<int>(cells_.size())) return;
        PortOf(name, index);
        PlainCell& plain = cells_[static_cast<std::size_t>(n)];
        plain.pin_name = Upper(name) + (index ? std::to_string(index) : "");
        if (original) plain.original_name = original;
    }
    void CompareKeptPointers() {
        for (const PlainNode& plain : nodes_) {
            for (const PlainName& name : {plain.port, plain.pin}) {
                ASSERT_TRUE(!name.pointer || *name.text == name.pointer) << *name.text;
            }
        }
    }

    std::mt19937 random_;
    BScanPinMap map_;
    std::vector<PlainNode> nodes_;
    std::vector<PlainCell> cells_;
    std::vector<LPinNode*> removed_;
};

TEST(LookupIndex, AgreesWithAPlainWalk) {
    for (unsigned seed = 0; seed < 4000; ++seed) {
        SCOPED_TRACE(seed);
        Twins twins(seed);
        for (int step = 0; step < 60; ++step) {
            twins.ChangeSomething();
            // Names are compared now and then alone, as hosts that keep pointers do.
            if (step % 3 != 0) twins.LookSomethingUp();
            if (step % 5 == 0) twins.CompareNames();
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(LookupIndex, LetsGoOfRemovedNodes) {
    auto map = std::make_unique<BScanPinMap>();
    map->AddNewPorts(Text("A"), Text("in"), 2, true);
    auto* const node = static_cast<LPinNode*>(map->GetPinListArray()->RemoveTail());
    EXPECT_EQ(map->GetPort(Text("A"), 1), nullptr);
    node->SetPinName(Text("B2"));
    EXPECT_EQ(map->GetPort("B2"), nullptr);
    BScanPinMap other;
    other.GetPinListArray()->AddTail(node);
    EXPECT_EQ(other.GetPort("B2"), node);
    map.reset();
    node->SetPortName(Text("C"));
    node->SetPinNumber(1);
    EXPECT_EQ(other.GetPortwName(Text("c")), node);
    EXPECT_EQ(other.GetPort(1), node);
}

TEST(LookupIndex, KeptPointersSeeTheFoldingOfNames) {
    BScanPinMap map;
    for (const char* name : {"one", "two", "three"})
        map.AddNewPorts(Text(name), Text("in"), 1, true);
    std::vector<char*> kept;
    for (int i = 0; i < 3; ++i)
        kept.push_back(static_cast<LPinNode*>(map.GetPinListArray()->GetAt(i))->GetPortName());
    EXPECT_NE(map.GetPortwName(Text("TWO")), nullptr);
    EXPECT_STREQ(kept[0], "ONE");
    EXPECT_STREQ(kept[1], "TWO");
    EXPECT_STREQ(kept[2], "three");
    std::strcpy(kept[0], "t3");
    EXPECT_EQ(map.GetPortwName(Text("T3")), map.GetPinListArray()->GetAt(0));
    EXPECT_EQ(map.GetPortwName(Text("one")), nullptr);
    EXPECT_STREQ(kept[2], "THREE");
}

}  // namespace
}  // namespace bscan::test
