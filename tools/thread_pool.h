// Work in several threads, with a progress bar when it takes a while.
#pragma once

#include <cstddef>
#include <functional>

namespace tool {

/// How many things to do at a time: as many as asked for; one for each processor for 0.
int JobCount(int asked);

/// Calls @p work for 0 to @p count - 1 in up to @p jobs threads, see JobCount(), and waits for all.
/// What a call throws is thrown again at the end.
void RunInThreads(std::size_t count, int jobs, const std::function<void(std::size_t)>& work);

}  // namespace tool
