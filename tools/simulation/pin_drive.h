// What a pin does to its net.
#pragma once

namespace tool {

enum class Strength { kOff, kWeak, kStrong };

struct PinDrive {
    Strength strength = Strength::kOff;
    bool level = false;

    bool operator==(const PinDrive&) const = default;
};

}  // namespace tool
