// Programs for generated chains, played on a model of devices that shares no code with the library.

#include <bscan/chain.h>
#include <bscan/scan_program.h>

#include "support/chain_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>

namespace bscan {
namespace {

using test::DescribedDevice;

// A source of choices that is the same on every machine.
class Dice {
public:
    explicit Dice(unsigned seed) : random_(seed) {}
    int Below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    int Between(int first, int last) { return first + Below(last - first + 1); }
    bool Coin() { return Below(2) != 0; }
    char Bit() { return Coin() ? '1' : '0'; }
    template <typename List>
    void Shuffle(List& list) {
        for (std::size_t i = list.size(); i > 1; --i) {
            std::swap(list[i - 1], list[static_cast<std::size_t>(Below(static_cast<int>(i)))]);
        }
    }

private:
    std::mt19937 random_;
};

std::size_t At(int position) { return static_cast<std::size_t>(position); }

using Drive = std::optional<bool>;  // what a driver gives; nothing while it is off

// A pin of a model, and the cells around it; -1 for none.
struct ModelPin {
    std::string name;
    int receiver = -1;
    int output = -1;
    int control = -1;      // the output itself for one that is its own control cell
    bool disable = false;  // level of the control cell that turns the driver off
    bool outside = false;  // level of the board where the device does not drive
};

// A device as the standard describes it: shift registers with their front next to TDO, latches
// behind them, and a core that drives pins until EXTEST takes them over.
struct ModelDevice {
    int length = 0;
    std::vector<std::pair<std::string, std::string>> opcodes;  // name; pattern, left next to TDI
    std::optional<unsigned> idcode;
    std::vector<ModelPin> pins;
    std::vector<bool> core;   // what the core gives to each output and control cell
    std::vector<bool> noise;  // what cells capture of which nobody can tell
    std::vector<bool> safe;

    std::string instruction;
    std::vector<bool> latches;
    std::deque<bool> shifting;

    void Reset() {
        instruction = idcode ? "IDCODE" : "BYPASS";
        latches.assign(core.size(), true);  // what no update has written yet
    }
    bool InTest() const { return instruction == "EXTEST"; }
    bool SelectsBoundary() const {
        return InTest() || instruction == "SAMPLE" || instruction == "PRELOAD";
    }
    Drive DriveOf(const ModelPin& pin) const {
        const std::vector<bool>& cells = InTest() ? latches : core;
        if (pin.output < 0) return std::nullopt;
        if (pin.control >= 0 && cells[At(pin.control)] == pin.disable) return std::nullopt;
        return cells[At(pin.output)];
    }
    bool Shown(const ModelPin& pin) const { return DriveOf(pin).value_or(pin.outside); }

    void Capture(bool of_instruction) {
        shifting.clear();
        if (of_instruction) {
            shifting.assign(At(length), false);
            shifting.front() = true;
        } else if (SelectsBoundary()) {
            const std::vector<bool>& cells = InTest() ? noise : core;
            shifting.assign(cells.begin(), cells.end());
            for (const ModelPin& pin : pins) {
                if (pin.receiver >= 0) shifting[At(pin.receiver)] = Shown(pin);
            }
        } else if (instruction == "IDCODE") {
            for (unsigned bit = 0; bit < 32; ++bit) shifting.push_back((*idcode >> bit & 1U) != 0);
        } else {
            shifting.push_back(false);
        }
    }
    bool Shift(bool tdi) {
        shifting.push_back(tdi);
        const bool tdo = shifting.front();
        shifting.pop_front();
        return tdo;
    }
    void Update(bool of_instruction) {
        if (of_instruction) {
            instruction = "BYPASS";
            for (const auto& [name, pattern] : opcodes) {
                if (Matches(pattern)) instruction = name;
            }
        } else if (SelectsBoundary()) {
            latches.assign(shifting.begin(), shifting.end());
        }
    }
    bool Matches(const std::string& pattern) const {
        return std::equal(pattern.rbegin(), pattern.rend(), shifting.begin(),
                          [](char p, bool bit) { return p == 'X' || (p == '1') == bit; });
    }
};

using DriveStates = std::vector<Drive>;  // of all pins of all devices

struct ModelChain {
    std::vector<ModelDevice> devices;  // from TDI to TDO

    void Reset() {
        for (ModelDevice& device : devices) device.Reset();
    }
    std::vector<bool> Scan(bool of_instruction, const std::vector<bool>& out) {
        for (ModelDevice& device : devices) device.Capture(of_instruction);
        std::vector<bool> in;
        for (bool bit : out) {
            for (ModelDevice& device : devices) bit = device.Shift(bit);
            in.push_back(bit);
        }
        for (ModelDevice& device : devices) device.Update(of_instruction);
        return in;
    }
    DriveStates Drives() const {
        DriveStates all;
        for (const ModelDevice& device : devices) {
            for (const ModelPin& pin : device.pins) all.push_back(device.DriveOf(pin));
        }
        return all;
    }
};

// Makes up a device, as a model and as a file.
class DeviceMaker {
public:
    explicit DeviceMaker(Dice& dice) : dice_(dice) {}
    ModelDevice model;
    std::string Text();

private:
    int NewCell() { return cells_++; }
    int ChooseControl();
    ModelPin& AddPin(const std::string& name, const char* mode);
    void AddDriver(ModelPin& pin, const char* function, int cell);
    void AddEntry(int cell, const std::string& rest) { entries_.push_back({cell, rest}); }
    void AddPins();
    void AddVector();
    void AddMerged();
    void ShuffleCells();
    void AddInstructions();
    std::string Idcode();

    struct Entry {
        int cell;
        std::string rest;  // with C in place of the control cell's number
        int control = -1;
        char safe = 'X';
    };
    Dice& dice_;
    int cells_ = 0;
    std::vector<int> controls_;
    std::map<int, bool> disable_;
    std::vector<Entry> entries_;
    std::string ports_, pin_map_, opcodes_;
    int package_pins_ = 4;
};

int DeviceMaker::ChooseControl() {
    if (!controls_.empty() && dice_.Coin()) {
        return controls_[At(dice_.Below(static_cast<int>(controls_.size())))];
    }
    controls_.push_back(NewCell());
    disable_[controls_.back()] = dice_.Coin();
    entries_.push_back({controls_.back(), "BC_2, *, control, S", -1, "01X"[dice_.Below(3)]});
    return controls_.back();
}

ModelPin& DeviceMaker::AddPin(const std::string& name, const char* mode) {
    ports_ += "; " + name + " : " + mode + " bit";
    pin_map_ += ", " + name + ":" + std::to_string(++package_pins_);
    ModelPin pin;
    pin.name = name;
    pin.outside = dice_.Coin();
    model.pins.push_back(pin);
    return model.pins.back();
}

void DeviceMaker::AddDriver(ModelPin& pin, const char* function, int cell) {
    const char* const results[] = {"Z", "PULL0", "PULL1", "WEAK1"};
    pin.output = cell;
    pin.control = ChooseControl();
    pin.disable = disable_[pin.control];
    entries_.push_back({cell,
                        std::string("BC_") + (pin.receiver == cell ? "7, " : "1, ") + pin.name +
                            ", " + function + ", S, C, " + (pin.disable ? "1, " : "0, ") +
                            results[dice_.Below(4)],
                        pin.control, "01X"[dice_.Below(3)]});
}

void DeviceMaker::AddPins() {
    for (int i = dice_.Between(1, 3); i-- > 0;) {
        ModelPin& in = AddPin("IN" + std::to_string(i), "in");
        in.receiver = NewCell();
        AddEntry(in.receiver, "BC_4, " + in.name + (dice_.Coin() ? ", input, S" : ", clock, S"));
    }
    for (int i = dice_.Below(3); i-- > 0;) {
        ModelPin& out = AddPin("PLAIN" + std::to_string(i), dice_.Coin() ? "out" : "buffer");
        out.output = NewCell();
        entries_.push_back({out.output, "BC_1, " + out.name + ", output2, S", -1, dice_.Bit()});
    }
    for (int i = dice_.Below(4); i-- > 0;) {
        AddDriver(AddPin("TRI" + std::to_string(i), "out"), "output3", NewCell());
    }
    for (int i = dice_.Below(3); i-- > 0;) {
        ModelPin& both = AddPin("BOTH" + std::to_string(i), "inout");
        both.receiver = NewCell();
        AddEntry(both.receiver, "BC_1, " + both.name + ", input, S");
        AddDriver(both, "output3", NewCell());
    }
    for (int i = dice_.Below(3); i-- > 0;) {
        ModelPin& open = AddPin("OPEN" + std::to_string(i), "out");
        open.output = open.control = NewCell();
        open.disable = dice_.Coin();
        entries_.push_back(
            {open.output,
             "BC_1, " + open.name + ", output2, S, C, " + (open.disable ? "1, WEAK1" : "0, WEAK0"),
             open.control, "01X"[dice_.Below(3)]});
    }
}

// The port IO with a cell for both ways at each element.
void DeviceMaker::AddVector() {
    const int first = dice_.Below(5);
    const int count = dice_.Between(1, 4);
    const bool up = dice_.Coin();
    const int last = first + count - 1;
    ports_ += "; IO : inout bit_vector(" +
              (up ? std::to_string(first) + " to " + std::to_string(last)
                  : std::to_string(last) + " downto " + std::to_string(first)) +
              ")";
    pin_map_ += ", IO:(";
    for (int i = 0; i < count; ++i) {
        pin_map_ += (i == 0 ? "" : ",") + std::to_string(++package_pins_);
        ModelPin pin;
        pin.name = "IO(" + std::to_string(up ? first + i : last - i) + ")";
        pin.outside = dice_.Coin();
        pin.receiver = NewCell();
        AddDriver(pin, "bidir", pin.receiver);
        model.pins.push_back(pin);
    }
    pin_map_ += ")";
}

// One cell that receives for a pin and drives another, to which the core passes the level.
void DeviceMaker::AddMerged() {
    const int cell = NewCell();
    ModelPin& from = AddPin("FROM", "in");
    from.receiver = cell;
    AddEntry(cell, "BC_1, FROM, input, S");
    AddDriver(AddPin("TO", "out"), "output3", cell);
}

// Until here cells are numbered as they were made.
void DeviceMaker::ShuffleCells() {
    std::vector<int> number(At(cells_));
    for (int i = 0; i < cells_; ++i) number[At(i)] = i;
    dice_.Shuffle(number);
    const auto renumber = [&](int& cell) { cell = cell < 0 ? cell : number[At(cell)]; };
    for (ModelPin& pin : model.pins) {
        renumber(pin.receiver);
        renumber(pin.output);
        renumber(pin.control);
    }
    for (Entry& entry : entries_) {
        renumber(entry.cell);
        renumber(entry.control);
    }
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const Entry& a, const Entry& b) { return a.cell < b.cell; });
    model.safe.assign(At(cells_), false);
    for (const Entry& entry : entries_) model.safe[At(entry.cell)] = entry.safe == '1';
    for (int i = 0; i < cells_; ++i) {
        model.core.push_back(dice_.Coin());
        model.noise.push_back(dice_.Coin());
    }
    for (const ModelPin& from : model.pins) {
        if (from.name == "FROM") model.core[At(from.receiver)] = from.outside;
    }
}

// The first bits of an opcode tell the instructions apart; of the others some do not count.
void DeviceMaker::AddInstructions() {
    model.length = dice_.Between(2, 9);
    const int head = std::min(model.length, 3);
    std::vector<std::string> heads = {"00", "01", "10"};
    if (head == 3) heads = {"000", "001", "010", "011", "100", "101", "110"};
    dice_.Shuffle(heads);
    std::vector<std::string> names = {"EXTEST", "SAMPLE"};
    if (head == 3 && dice_.Coin()) names.emplace_back("PRELOAD");
    if (dice_.Coin()) names.emplace_back("IDCODE");
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::string pattern = heads[i];
        while (pattern.size() < At(model.length)) pattern += "01X"[dice_.Below(3)];
        model.opcodes.emplace_back(names[i], pattern);
        opcodes_ += ", " + names[i] + " (" + pattern + ")";
    }
    // Without one of its own, PRELOAD shares the opcode of SAMPLE or is not there.
    if (names.size() < 3 || names[2] != "PRELOAD") {
        if (dice_.Coin()) opcodes_ += ", PRELOAD (" + model.opcodes[1].second + ")";
    }
}

std::string DeviceMaker::Idcode() {
    std::string text(32, '1');
    model.idcode = 0;
    for (std::size_t i = 0; i < 32; ++i) {
        if (i < 31) text[i] = "01X"[dice_.Below(i < 20 ? 3 : 2)];
        const bool set = text[i] == '1' || (text[i] == 'X' && dice_.Coin());
        if (set) *model.idcode |= 0x80000000U >> i;
    }
    return text;
}

std::string DeviceMaker::Text() {
    AddInstructions();
    AddPins();
    if (dice_.Coin()) AddVector();
    if (dice_.Coin()) AddMerged();
    for (int i = dice_.Below(3); i-- > 0;) AddEntry(NewCell(), "BC_1, *, internal, S");
    ShuffleCells();
    std::string text = R"(entity MADE is
generic (PHYSICAL_PIN_MAP : string := "P");
port (TDI, TMS, TCK : in bit; TDO : out bit)";
    text += ports_ + R"();
use STD_1149_1_2001.all;
attribute COMPONENT_CONFORMANCE of MADE : entity is "STD_1149_1_2001";
attribute PIN_MAP of MADE : entity is PHYSICAL_PIN_MAP;
constant P : PIN_MAP_STRING := "TDI:1, TMS:2, TCK:3, TDO:4)";
    text += pin_map_ + R"(";
attribute TAP_SCAN_IN of TDI : signal is true;
attribute TAP_SCAN_MODE of TMS : signal is true;
attribute TAP_SCAN_OUT of TDO : signal is true;
attribute TAP_SCAN_CLOCK of TCK : signal is (1.0e6, BOTH);
attribute INSTRUCTION_LENGTH of MADE : entity is )";
    text += std::to_string(model.length) +
            ";\nattribute INSTRUCTION_OPCODE of MADE : entity is \"" + "BYPASS (" +
            std::string(At(model.length), '1') + ")" + opcodes_ + "\";\n" +
            "attribute INSTRUCTION_CAPTURE of MADE : entity is \"" +
            std::string(At(model.length - 2), 'X') + "01\";\n";
    const bool has_idcode = model.opcodes.back().first == "IDCODE";
    if (has_idcode) {
        text += "attribute IDCODE_REGISTER of MADE : entity is \"" + Idcode() + "\";\n";
    }
    text += "attribute BOUNDARY_LENGTH of MADE : entity is " + std::to_string(cells_) +
            ";\nattribute BOUNDARY_REGISTER of MADE : entity is\n";
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const Entry& entry = entries_[i];
        std::string rest = entry.rest;
        rest.replace(rest.find(", S") + 2, 1, 1, entry.safe);
        const std::size_t control = rest.find(", C,");
        if (control != std::string::npos) {
            rest.replace(control + 2, 1, std::to_string(entry.control));
        }
        text += "\"" + std::to_string(entry.cell) + " (" + rest + ")" +
                (i + 1 == entries_.size() ? "\";\n" : ",\" &\n");
    }
    return text + "end MADE;\n";
}

// A chain of made-up devices, some of which are known by their length alone.
struct Rig {
    explicit Rig(unsigned seed) : dice(seed) {
        const int count = dice.Between(2, 5);
        for (int i = 0; i < count; ++i) {
            const std::string name = "U" + std::to_string(i + 1);
            if (i > 0 && dice.Below(4) == 0) {
                ModelDevice device;
                device.length = dice.Below(4) == 0 ? 300 : dice.Between(2, 9);
                EXPECT_TRUE(chain.Add(name, device.length).Ok());
                model.devices.push_back(device);
                continue;
            }
            DeviceMaker maker(dice);
            texts.push_back(maker.Text());
            parts.push_back(std::make_unique<DescribedDevice>(texts.back()));
            EXPECT_EQ(parts.back()->description.Result(), 0) << texts.back();
            for (const Finding& finding : parts.back()->description.Findings()) {
                EXPECT_NE(finding.severity, Severity::kError) << texts.back();
            }
            const ChainResult result =
                chain.Add(name, parts.back()->parser, &parts.back()->description.GetFacts());
            EXPECT_TRUE(result.Ok()) << result.reason << texts.back();
            model.devices.push_back(maker.model);
        }
    }

    Dice dice;
    std::vector<std::string> texts;
    std::vector<std::unique_ptr<DescribedDevice>> parts;
    Chain chain;
    ModelChain model;
};

// A level that a step wants of a pin, by the numbers that the model has for both.
struct Wish {
    int device = 0;
    int pin = 0;
    char level = '0';
};

struct MadeStep {
    StepKind kind = StepKind::kNote;
    std::string text;
    std::vector<Wish> wishes;
    bool under_sample = false;
};

// Makes up steps that can be done, and knows from the requests alone what pins have to do.
class StepMaker {
public:
    StepMaker(Dice& dice, const ModelChain& model) : dice_(dice), model_(model) {}

    MadeStep Next() {
        MadeStep step;
        const int choice = dice_.Below(20);
        step.kind = choice < 8    ? StepKind::kDrive
                    : choice < 13 ? StepKind::kExpect
                    : choice < 17 ? StepKind::kSample
                    : choice < 18 ? StepKind::kWait
                    : choice < 19 ? StepKind::kReset
                                  : StepKind::kNote;
        if (step.kind == StepKind::kWait) step.text = dice_.Coin() ? "wait 7 tck" : "wait 250 us";
        if (step.kind == StepKind::kReset) step.text = "reset";
        if (step.kind == StepKind::kReset) under_extest_ = false;
        if (step.kind == StepKind::kNote) step.text = "note SDR 4 TDI (F); here";
        if (!step.text.empty()) return step;
        step.under_sample = step.kind == StepKind::kSample && !under_extest_;
        step.text = step.kind == StepKind::kDrive    ? "drive"
                    : step.kind == StepKind::kExpect ? "expect"
                                                     : "sample";
        AddWishes(step);
        under_extest_ = under_extest_ || step.kind != StepKind::kSample;
        return step;
    }

private:
    void AddWishes(MadeStep& step) {
        for (int tries = 0; step.wishes.empty() || tries < 4; ++tries) {
            const int device = dice_.Below(static_cast<int>(model_.devices.size()));
            const ModelDevice& known = model_.devices[At(device)];
            if (known.pins.empty()) continue;
            const int position = dice_.Below(static_cast<int>(known.pins.size()));
            const ModelPin& pin = known.pins[At(position)];
            const char level = LevelFor(step, pin);
            if (level == ' ' || IsTaken(step, device, pin)) continue;
            step.wishes.push_back({device, position, level});
            step.text += " U" + std::to_string(device + 1) + "." + pin.name + "=" + level;
        }
    }
    // A blank when the step can ask nothing of the pin.
    char LevelFor(const MadeStep& step, const ModelPin& pin) {
        const bool visible = pin.receiver >= 0 || (step.under_sample && pin.output >= 0);
        if (step.kind != StepKind::kDrive) return visible ? dice_.Bit() : ' ';
        if (pin.output < 0) return 'Z';
        return pin.control >= 0 && dice_.Below(3) == 0 ? 'Z' : dice_.Bit();
    }
    // Two wishes on one cell could contradict each other.
    bool IsTaken(const MadeStep& step, int device, const ModelPin& pin) const {
        return std::any_of(step.wishes.begin(), step.wishes.end(), [&](const Wish& wish) {
            const ModelPin& other = model_.devices[At(device)].pins[At(wish.pin)];
            return wish.device == device &&
                   (other.name == pin.name || pin.name == "TO" || pin.name == "FROM");
        });
    }

    Dice& dice_;
    const ModelChain& model_;
    bool under_extest_ = false;
};

// What the requests since the last reset ask of the pins under EXTEST.
class Requests {
public:
    explicit Requests(const ModelChain& model) : model_(model) {}

    void Take(const MadeStep& step) {
        if (step.kind == StepKind::kReset) *this = Requests(model_);
        if (step.kind != StepKind::kDrive) return;
        for (const Wish& wish : step.wishes) {
            const ModelPin& pin = model_.get().devices[At(wish.device)].pins[At(wish.pin)];
            on_[{wish.device, pin.control}] = wish.level != 'Z';
            levels_[{wish.device, wish.pin}] = wish.level;
        }
    }

    void Check(const ModelChain& now) const {
        for (int d = 0; d < static_cast<int>(now.devices.size()); ++d) {
            const ModelDevice& device = now.devices[At(d)];
            for (int p = 0; p < static_cast<int>(device.pins.size()); ++p) {
                const ModelPin& pin = device.pins[At(p)];
                SCOPED_TRACE("U" + std::to_string(d + 1) + "." + pin.name);
                if (pin.output >= 0) CheckPin({d, p}, device, pin);
            }
        }
    }

private:
    using Key = std::pair<int, int>;
    void CheckPin(Key key, const ModelDevice& device, const ModelPin& pin) const {
        EXPECT_TRUE(device.InTest());
        const Drive drive = device.DriveOf(pin);
        const auto asked = levels_.find(key);
        const char level = asked == levels_.end() ? ' ' : asked->second;
        const bool known = level == '0' || level == '1';
        const auto on = on_.find({key.first, pin.control});
        if (pin.control < 0) {
            EXPECT_EQ(drive, known ? level == '1' : bool{device.safe[At(pin.output)]});
        } else if (pin.control == pin.output) {
            const bool pulls = known && (level == '1') != pin.disable;
            EXPECT_EQ(drive, pulls ? Drive(level == '1') : Drive());
        } else if (on == on_.end() || !on->second) {
            EXPECT_EQ(drive, Drive());
        } else {
            EXPECT_TRUE(drive.has_value());  // with those that share the control cell
            if (known) {
                EXPECT_EQ(drive, level == '1');
            }
        }
    }

    std::reference_wrapper<const ModelChain> model_;
    std::map<Key, bool> on_;      // by device and control cell
    std::map<Key, char> levels_;  // by device and pin
};

std::vector<bool> BitsOf(const ScanBits& bits) {
    std::vector<bool> list;
    for (int i = 0; i < bits.Size(); ++i) list.push_back(bits.Get(i));
    return list;
}

ScanBits ScanBitsOf(const std::vector<bool>& list) {
    ScanBits bits(static_cast<int>(list.size()));
    for (std::size_t i = 0; i < list.size(); ++i) bits.Set(static_cast<int>(i), list[i]);
    return bits;
}

// Plays the operations of a program, and looks at every pin behind each of them.
class Player {
public:
    Player(Rig& rig, std::vector<MadeStep> steps) : rig_(rig), steps_(std::move(steps)) {}

    void Play(const ScanProgram& program) {
        rig_.model.Reset();
        requests_ = std::make_unique<Requests>(rig_.model);
        for (std::size_t begin = 0; begin < program.operations.size();) {
            std::size_t end = begin;
            const int step = program.operations[begin].step;
            while (end < program.operations.size() && program.operations[end].step == step) ++end;
            SCOPED_TRACE(step < 0 ? "outside the steps" : steps_[At(step)].text);
            PlayStep(program, begin, end);
            begin = end;
        }
        for (const ModelDevice& device : rig_.model.devices) EXPECT_FALSE(device.InTest());
    }
    // Whether each data scan that compares found what it wants.
    const std::vector<bool>& passed() const { return passed_; }
    const std::set<int>& wrong_idcodes() const { return wrong_idcodes_; }

private:
    // Within a step each pin changes once at most, and no two operations change pins.
    void PlayStep(const ScanProgram& program, std::size_t begin, std::size_t end) {
        const int step = program.operations[begin].step;
        int changes = 0;
        for (std::size_t i = begin; i < end; ++i) {
            const DriveStates before = rig_.model.Drives();
            PlayOperation(program.operations[i]);
            if (rig_.model.Drives() != before) ++changes;
        }
        EXPECT_LE(changes, 1);
        if (step < 0) return;
        const MadeStep& made = steps_[At(step)];
        requests_->Take(made);
        if (made.kind == StepKind::kReset) under_extest_ = false;
        if (made.kind == StepKind::kDrive || made.kind == StepKind::kExpect) under_extest_ = true;
        if (under_extest_) return requests_->Check(rig_.model);
        for (const ModelDevice& device : rig_.model.devices) EXPECT_FALSE(device.InTest());
    }

    void PlayOperation(const ScanOperation& operation) {
        if (operation.kind == OperationKind::kReset) rig_.model.Reset();
        const bool of_instruction = operation.kind == OperationKind::kInstructionScan;
        if (!of_instruction && operation.kind != OperationKind::kDataScan) return;
        const ModelChain before = rig_.model;
        const std::vector<bool> in = rig_.model.Scan(of_instruction, BitsOf(operation.out));
        if (operation.mask.Empty()) return;
        const std::vector<FailedCheck> failed = Compare(operation, ScanBitsOf(in));
        passed_.push_back(failed.empty());
        if (operation.step < 0) {
            for (const FailedCheck& check : failed) wrong_idcodes_.insert(check.device);
        } else {
            CheckComparison(before, steps_[At(operation.step)], failed);
        }
    }

    // Exactly the pins that stand otherwise are told.
    void CheckComparison(const ModelChain& model, const MadeStep& step,
                         const std::vector<FailedCheck>& failed) {
        std::set<std::string> told;
        std::set<std::string> wrong;
        for (const FailedCheck& check : failed) {
            const char* const level = check.seen == SIG_Z ? "Z" : check.seen == SIG_1 ? "1" : "0";
            EXPECT_TRUE(told.insert(rig_.chain.Label(check.pin) + " shows " + level + ", not " +
                                    (check.wanted == SIG_1 ? "1" : "0"))
                            .second);
        }
        for (const Wish& wish : step.wishes) {
            const ModelDevice& device = model.devices[At(wish.device)];
            const ModelPin& pin = device.pins[At(wish.pin)];
            const bool level = wish.level == '1';
            const bool own_control = pin.control == pin.output && pin.control >= 0;
            const Drive seen = pin.receiver >= 0 ? Drive(device.Shown(pin))
                               : own_control     ? Drive(device.core[At(pin.output)])
                                                 : device.DriveOf(pin);
            if (seen == level) continue;
            wrong.insert("U" + std::to_string(wish.device + 1) + "." + pin.name + " shows " +
                         (!seen   ? "Z"
                          : *seen ? "1"
                                  : "0") +
                         ", not " + wish.level);
        }
        EXPECT_EQ(told, wrong);
    }

    Rig& rig_;
    std::vector<MadeStep> steps_;
    std::unique_ptr<Requests> requests_;
    bool under_extest_ = false;
    std::vector<bool> passed_;
    std::set<int> wrong_idcodes_;
};

// A command of SVF, such as SDR 4 TDI (F) TDO (1) MASK (3).
struct SvfCommand {
    std::vector<std::string> words;
    std::map<std::string, std::vector<bool>> bits;  // by the word in front of the parentheses
};

std::vector<bool> FromHex(const std::string& digits, int size) {
    std::vector<bool> bits;
    for (std::size_t i = digits.size(); i-- > 0;) {
        const unsigned value = static_cast<unsigned>(std::stoul(digits.substr(i, 1), nullptr, 16));
        for (unsigned bit = 0; bit < 4; ++bit) bits.push_back((value >> bit & 1U) != 0);
    }
    for (std::size_t i = At(size); i < bits.size(); ++i) EXPECT_FALSE(bits[i]);
    bits.resize(At(size));
    return bits;
}

std::vector<SvfCommand> ReadSvf(const std::string& text) {
    std::istringstream lines(text);
    std::string plain;
    for (std::string line; std::getline(lines, line);)
        plain += line.substr(0, line.find("//")) + ' ';
    std::vector<SvfCommand> commands;
    for (std::size_t begin = 0; begin < plain.size();) {
        const std::size_t end = std::min(plain.find(';', begin), plain.size());
        SvfCommand command;
        std::istringstream stream(plain.substr(begin, end - begin));
        for (std::string word; stream >> word;) {
            if (word.front() != '(') {
                command.words.push_back(word);
                continue;
            }
            for (std::string more; word.back() != ')' && stream >> more;) word += more;
            command.bits[command.words.back()] =
                FromHex(word.substr(1, word.size() - 2), std::stoi(command.words[1]));
        }
        if (!command.words.empty()) commands.push_back(command);
        begin = end + 1;
    }
    return commands;
}

// Plays SVF on the model. @return whether each scan that compares found what it wants.
std::vector<bool> PlaySvf(ModelChain& model, const std::vector<SvfCommand>& commands,
                          double& seconds, int& ticks) {
    std::vector<bool> passed;
    for (SvfCommand command : commands) {
        const std::string& word = command.words[0];
        if (word == "STATE" && command.words[1] == "RESET") model.Reset();
        if (word == "RUNTEST" && command.words.back() == "SEC")
            seconds += std::stod(command.words[2]);
        if (word == "RUNTEST" && command.words.back() == "TCK")
            ticks += std::stoi(command.words[2]);
        if (word != "SIR" && word != "SDR") continue;
        const std::vector<bool> in = model.Scan(word == "SIR", command.bits["TDI"]);
        if (command.bits.count("TDO") == 0) continue;
        bool right = true;
        for (std::size_t i = 0; i < in.size(); ++i) {
            right = right && (!command.bits["MASK"][i] || command.bits["TDO"][i] == in[i]);
        }
        passed.push_back(right);
    }
    return passed;
}

std::vector<MadeStep> MakeSteps(Rig& rig) {
    StepMaker maker(rig.dice, rig.model);
    std::vector<MadeStep> steps(At(rig.dice.Between(1, 12)));
    for (MadeStep& step : steps) step = maker.Next();
    return steps;
}

ScanProgram Plan(Rig& rig, const std::vector<MadeStep>& made) {
    std::string text;
    for (const MadeStep& step : made) text += step.text + "\n";
    const Steps steps = ParseSteps(rig.chain, text);
    EXPECT_TRUE(steps.result.Ok()) << steps.result.reason << "\n" << text;
    ScanProgram program = PlanSteps(rig.chain, steps.steps);
    EXPECT_TRUE(program.result.Ok()) << program.result.reason << "\n" << text;
    return program;
}

constexpr unsigned kChains = 150;

TEST(ChainSimulation, PinsDoWhatTheStepsAsk) {
    for (unsigned seed = 1; seed <= kChains && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Rig rig(seed);
        const std::vector<MadeStep> steps = MakeSteps(rig);
        const ScanProgram program = Plan(rig, steps);
        Player player(rig, steps);
        player.Play(program);
        EXPECT_TRUE(player.wrong_idcodes().empty());
    }
}

TEST(ChainSimulation, SvfDoesTheSame) {
    for (unsigned seed = 1; seed <= kChains && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Rig rig(seed);
        const std::vector<MadeStep> steps = MakeSteps(rig);
        const ScanProgram program = Plan(rig, steps);
        const std::vector<SvfCommand> commands = ReadSvf(WriteSvf(rig.chain, program));
        std::vector<std::vector<bool>> scans;
        for (const SvfCommand& command : commands) {
            if (command.bits.count("TDI") != 0) scans.push_back(command.bits.at("TDI"));
        }
        std::vector<std::vector<bool>> wanted;
        double seconds = 0;
        int ticks = 0;
        for (const ScanOperation& operation : program.operations) {
            if (!operation.out.Empty()) wanted.push_back(BitsOf(operation.out));
            if (operation.kind != OperationKind::kWait) continue;
            if (operation.wait.unit == WaitUnit::kTck) {
                ticks += 7;
            } else {
                seconds += 250e-6;
            }
        }
        EXPECT_EQ(scans, wanted);
        double played_seconds = 0;
        int played_ticks = 0;
        ModelChain model = rig.model;
        const std::vector<bool> passed = PlaySvf(model, commands, played_seconds, played_ticks);
        EXPECT_EQ(played_ticks, ticks);
        EXPECT_DOUBLE_EQ(played_seconds, seconds);
        Player player(rig, steps);
        player.Play(program);
        EXPECT_EQ(passed, player.passed());
        EXPECT_EQ(model.Drives(), rig.model.Drives());
    }
}

TEST(ChainSimulation, AnotherDeviceHasAnotherIdcode) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 15 && !testing::Test::HasFailure(); ++seed) {
        for (unsigned bit = 0; bit < 32; ++bit) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " bit " + std::to_string(bit));
            Rig rig(seed);
            const int device = rig.dice.Below(static_cast<int>(rig.model.devices.size()));
            ModelDevice& other = rig.model.devices[At(device)];
            if (!other.idcode) break;
            *other.idcode ^= 1U << bit;
            Player player(rig, {});
            player.Play(Plan(rig, {}));
            const bool counts = bit < 28 && rig.chain.Device(device).idcodes.at(0)[31 - bit] != 'X';
            EXPECT_EQ(player.wrong_idcodes(), counts ? std::set<int>{device} : std::set<int>());
            ++compared;
        }
    }
    EXPECT_GT(compared, 0);
}

}  // namespace
}  // namespace bscan
