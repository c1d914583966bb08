// Ctrl-C and its like as something to ask for, so that pins are freed before the program ends.
#pragma once

#include <chrono>

namespace tool {

/// Catches SIGINT, SIGTERM and SIGHUP from now on.
void CatchInterrupts();

/// @return whether one has come.
bool Interrupted();

/// Waits. @return false when an interrupt came first.
bool SleepUnlessInterrupted(std::chrono::milliseconds time);

}  // namespace tool
