#include "board/drivers.h"

#include <algorithm>

namespace bscan::detail {
namespace {

bool MayBeDriven(NetClass net_class) {
    return net_class == NetClass::kSignal || net_class == NetClass::kHeld;
}

// The level to which a driver pulls its pin while it is off.
std::optional<bool> LevelOf(eSignal signal) {
    switch (signal) {
        case SIG_PULL0:
        case SIG_WEAK0:
            return false;
        case SIG_PULL1:
        case SIG_WEAK1:
            return true;
        default:
            return std::nullopt;
    }
}

}  // namespace

DriverTable::DriverTable(const Chain& chain, const Board& board)
    : chain_(chain),
      board_(board),
      by_net_(board.nets.size()),
      permanent_(board.nets.size(), -1),
      receiver_bits_(board.pins.size(), -1) {
    FindShared();
    for (std::size_t pin = 0; pin < board.pins.size(); ++pin) AddPin(static_cast<int>(pin));
    CheckAlwaysOn();
    RuleOutControls();
    RuleOutBesidePermanent();
    for (std::size_t net = 0; net < board.nets.size(); ++net) {
        if (board.nets[net].net_class == NetClass::kHeld) Hold(static_cast<int>(net));
    }
}

// A port element may have several pins, and a cell several port elements.
void DriverTable::FindShared() {
    for (const BoardPin& pin : board_.pins) {
        const PinDriver* const driver = chain_.Driver(pin.element.device);
        if (driver == nullptr) continue;
        const LBScanCell* const output = driver->Cells(pin.element.element).output;
        if (output != nullptr) ++outputs_[output];
    }
}

void DriverTable::AddPin(int pin) {
    const BoardPin& placed = board_.pins[static_cast<std::size_t>(pin)];
    const int device = placed.element.device;
    const PinDriver* const driver = chain_.Driver(device);
    if (driver == nullptr || !board_.devices[static_cast<std::size_t>(device)].takes_part) return;
    const bool led = placed.leader.device >= 0;
    const int element = led ? placed.leader.element : placed.element.element;
    const PinCells cells = driver->Cells(element);
    const bool alone = cells.output == nullptr || outputs_[cells.output] <= 1;
    if (!led && alone) {
        receiver_bits_[static_cast<std::size_t>(pin)] = chain_.ReceiverBit(placed.element);
    }
    // The negative leg of a pair that receives drives nothing.
    if (cells.output == nullptr) return;
    NetDriver made;
    made.pin = pin;
    made.net = placed.net;
    made.output_bit = chain_.BitOf(device, cells.output->GetBoundaryCellPosition());
    made.can_code = !led && alone && made.output_bit >= 0;
    const bool always_on = cells.control == nullptr || driver->IsDriving(element);
    if (cells.control != nullptr) {
        const int control = ControlOf(placed.element, cells);
        DriverControl& known = controls_[static_cast<std::size_t>(control)];
        // A cell that turns one driver on by turning another off stays as it is.
        const bool on_level = cells.output->disableValue != SIG_1;
        if (always_on || on_level != known.on_level || known.bit < 0) known.usable = false;
        if (!always_on) {
            made.control = control;
            known.drivers.push_back(static_cast<int>(drivers_.size()));
        }
        made.pulls_to = LevelOf(cells.output->disableResult);
        if (cells.control == cells.output) made.lets_go_at = !on_level;
    }
    by_net_[static_cast<std::size_t>(placed.net)].push_back(static_cast<int>(drivers_.size()));
    drivers_.push_back(made);
}

int DriverTable::ControlOf(ChainPin element, const PinCells& cells) {
    const int next = static_cast<int>(controls_.size());
    const auto [found, is_new] = control_numbers_.emplace(cells.control, next);
    if (is_new) {
        DriverControl& made = controls_.emplace_back();
        made.bit = chain_.BitOf(element.device, cells.control->GetBoundaryCellPosition());
        made.on_level = cells.output->disableValue != SIG_1;
    }
    return found->second;
}

// A driver that nothing turns off has to be alone on its net, and its net has to bear it.
void DriverTable::CheckAlwaysOn() {
    for (std::size_t i = 0; i < drivers_.size(); ++i) {
        const NetDriver& driver = drivers_[i];
        if (driver.control >= 0) continue;
        const BoardNet& net = Net(driver.net);
        const std::string name = board_.pins[static_cast<std::size_t>(driver.pin)].Name();
        int& permanent = permanent_[static_cast<std::size_t>(driver.net)];
        if (permanent >= 0) {
            const int other = drivers_[static_cast<std::size_t>(permanent)].pin;
            problems_.push_back(board_.pins[static_cast<std::size_t>(other)].Name() + " and " +
                                name + " always drive under EXTEST, and both are on net " +
                                net.name + ".");
            continue;
        }
        permanent = static_cast<int>(i);
        const bool keeps_level = net.level.has_value() && driver.can_code;
        if (net.net_class == NetClass::kCompliance && keeps_level) {
            fixed_.push_back({driver.output_bit, *net.level});
        } else if (!MayBeDriven(net.net_class)) {
            problems_.push_back(name + " always drives under EXTEST, and net " + net.name +
                                " must not be driven (" + NameOf(net.net_class) + ").");
        }
    }
}

// A control is never turned on that would drive a net that must not be driven, or one twice.
void DriverTable::RuleOutControls() {
    for (DriverControl& control : controls_) {
        std::vector<int> nets;
        for (const int number : control.drivers) {
            const NetDriver& driver = At(number);
            nets.push_back(driver.net);
            const auto& pin = board_.pins[static_cast<std::size_t>(driver.pin)];
            const bool shared = !driver.can_code && pin.leader.device < 0;
            if (shared || !MayBeDriven(Net(driver.net).net_class)) control.usable = false;
        }
        std::sort(nets.begin(), nets.end());
        if (std::adjacent_find(nets.begin(), nets.end()) != nets.end()) control.usable = false;
    }
}

void DriverTable::RuleOutBesidePermanent() {
    for (DriverControl& control : controls_) {
        if (control.permanent) continue;
        for (const int number : control.drivers) {
            if (permanent_[static_cast<std::size_t>(At(number).net)] >= 0) control.usable = false;
        }
    }
}

bool DriverTable::CanGive(const NetDriver& driver, bool level) const {
    if (!driver.can_code) return false;
    if (!driver.lets_go_at || *driver.lets_go_at != level) return true;
    return ReleasedLevel(driver.net) == level;
}

std::optional<bool> DriverTable::ReleasedLevel(int net) const {
    std::optional<bool> level = Net(net).PulledTo();
    if (!level && !Net(net).pulls.empty()) return std::nullopt;
    for (const int number : DriversOf(net)) {
        const NetDriver& driver = drivers_[static_cast<std::size_t>(number)];
        if (!driver.pulls_to) continue;
        if (level && *level != *driver.pulls_to) return std::nullopt;
        level = driver.pulls_to;
    }
    return level;
}

bool DriverTable::CanTest(int driver) const {
    const NetDriver& asked = drivers_[static_cast<std::size_t>(driver)];
    const bool reachable =
        asked.control < 0 || controls_[static_cast<std::size_t>(asked.control)].usable;
    return reachable && CanGive(asked, false) && CanGive(asked, true);
}

// The pin that can hold a net with the fewest others beside it.
int DriverTable::FindHolder(int net) const {
    int best = -1;
    std::size_t fewest = 0;
    for (const int number : DriversOf(net)) {
        const NetDriver& driver = drivers_[static_cast<std::size_t>(number)];
        if (driver.control < 0 || !CanGive(driver, *Net(net).level)) continue;
        const DriverControl& control = controls_[static_cast<std::size_t>(driver.control)];
        if (!control.usable) continue;
        if (best >= 0 && control.drivers.size() >= fewest) continue;
        best = number;
        fewest = control.drivers.size();
    }
    return best;
}

void DriverTable::Hold(int net) {
    int holder = PermanentDriver(net);
    if (holder < 0) holder = FindHolder(net);
    const bool level = *Net(net).level;
    if (holder < 0 || !CanGive(At(holder), level)) {
        problems_.push_back("No pin can hold net " + Net(net).name + " at " +
                            (level ? "1." : "0."));
        return;
    }
    fixed_.push_back({At(holder).output_bit, level});
    const int number = At(holder).control;
    if (number < 0 || controls_[static_cast<std::size_t>(number)].permanent) return;
    DriverControl& control = controls_[static_cast<std::size_t>(number)];
    control.permanent = true;
    // An output that is its own control has its level already.
    if (!At(holder).lets_go_at) fixed_.push_back({control.bit, control.on_level});
    for (const int driver : control.drivers) {
        permanent_[static_cast<std::size_t>(At(driver).net)] = driver;
    }
    RuleOutBesidePermanent();
}

}  // namespace bscan::detail
