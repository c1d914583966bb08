// Work in processes of its own, so that one file cannot stop the rest.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tool {

/// Calls @p work for 0 to @p count - 1, each in a process of its own, up to @p jobs at a time, and
/// @p done in this process as each ends: with what the work returned, or with nothing when its
/// process ended otherwise. When this process ends, by a signal too, the others end with it.
void RunInProcesses(std::size_t count, int jobs,
                    const std::function<std::string(std::size_t)>& work,
                    const std::function<void(std::size_t, std::optional<std::string>)>& done);

}  // namespace tool
