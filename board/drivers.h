// What can drive the nets of a board, and how it is turned on.
#pragma once

#include <bscan/board/board.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace bscan::detail {

// A pin that drives its net while its control is on.
struct NetDriver {
    int pin = -1;  // of the board
    int net = -1;
    int control = -1;              // -1: always on
    int output_bit = -1;           // of a data scan
    bool can_code = false;         // the test decides about its level
    std::optional<bool> pulls_to;  // while it is off
    // Of an output that is its own control: the level at which it lets go.
    std::optional<bool> lets_go_at;
};

// What turns drivers on together.
struct DriverControl {
    std::vector<int> drivers;
    int bit = -1;  // of a data scan
    bool on_level = false;
    bool usable = true;
    bool permanent = false;  // on in every vector, to hold a level
};

// A level that a bit keeps in every vector.
struct FixedBit {
    int bit = -1;
    bool level = false;
};

class DriverTable {
public:
    // The chain has EXTEST selected and its drivers preset.
    DriverTable(const Chain& chain, const Board& board);

    const std::vector<std::string>& Problems() const { return problems_; }
    const std::vector<NetDriver>& Drivers() const { return drivers_; }
    const std::vector<DriverControl>& Controls() const { return controls_; }
    const std::vector<int>& DriversOf(int net) const {
        return by_net_[static_cast<std::size_t>(net)];
    }
    // The driver that is on in every vector; -1 without one.
    int PermanentDriver(int net) const { return permanent_[static_cast<std::size_t>(net)]; }
    // Whether a driver may be turned on, or is on anyway, and gives both levels.
    bool CanTest(int driver) const;
    // The level of a net that nobody drives, by its pulls and those within devices; nothing where
    // there is no pull or they disagree.
    std::optional<bool> ReleasedLevel(int net) const;
    // Whether a pin shows what is on its net.
    bool Receives(int pin) const { return receiver_bits_[static_cast<std::size_t>(pin)] >= 0; }
    int ReceiverBit(int pin) const { return receiver_bits_[static_cast<std::size_t>(pin)]; }
    // Levels to hold, with what turns their drivers on.
    const std::vector<FixedBit>& FixedBits() const { return fixed_; }

private:
    void FindShared();
    void AddPin(int pin);
    int ControlOf(ChainPin element, const PinCells& cells);
    void RuleOutControls();
    void CheckAlwaysOn();
    void Hold(int net);
    int FindHolder(int net) const;
    bool CanGive(const NetDriver& driver, bool level) const;
    void RuleOutBesidePermanent();
    const BoardNet& Net(int net) const { return board_.nets[static_cast<std::size_t>(net)]; }
    NetDriver& At(int driver) { return drivers_[static_cast<std::size_t>(driver)]; }

    const Chain& chain_;
    const Board& board_;
    std::vector<std::string> problems_;
    std::vector<NetDriver> drivers_;
    std::vector<DriverControl> controls_;
    std::vector<std::vector<int>> by_net_;
    std::vector<int> permanent_;
    std::vector<int> receiver_bits_;
    std::vector<FixedBit> fixed_;
    std::unordered_map<const LBScanCell*, int> control_numbers_;
    std::unordered_map<const LBScanCell*, int> outputs_;  // how many pins a cell gives its level
};

}  // namespace bscan::detail
