// Requests on the pins of one device, all or none of them.
#pragma once

#include <bscan/pin_driver.h>

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bscan::python {

/// A port element by its position, and SIG_0, SIG_1 or SIG_Z.
using PinRequest = std::pair<int, eSignal>;

class PinRequests {
public:
    using Label = std::function<std::string(int element)>;

    /// @param driver  must live as long.
    /// @param label  names an element in what is thrown.
    PinRequests(PinDriver& driver, Label label);

    /// Does all of the requests or, when one cannot be done, none of them, and throws Problem.
    void Drive(const std::vector<PinRequest>& requests);
    /// Takes the requests of the last Drive() back.
    void Undo();
    /// Turns off all drivers and forgets all requests.
    ///
    /// @param sample  levels of a capture that outputs go on with; empty for the preset.
    void Preset(std::vector<eSignal> sample);

private:
    // The last request on an element, and when it came.
    struct Done {
        std::uint64_t turn = 0;
        eSignal level = SIG_X;
    };

    void StartAnew();
    void Redo();

    PinDriver& driver_;
    Label label_;
    std::vector<eSignal> sample_;
    std::unordered_map<int, Done> done_;
    std::unordered_map<int, Done> before_;  // what the last Drive() changed; turn 0 for nothing
    std::uint64_t turn_ = 1;
};

}  // namespace bscan::python
