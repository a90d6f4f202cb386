#pragma once

#include <cstddef>
#include <functional>

namespace Varnholt::Publisher {

/// Calls p_Work(0) … p_Work(p_Count - 1) on p_Jobs threads, or 0: on all cores, in that order of
/// starting, and returns when all have ended. After a call has thrown, no further one starts and
/// the exception is thrown here; of several, the one of the lowest index.
void ParallelFor(std::size_t p_Count, std::function<void(std::size_t)> const& p_Work,
                 int p_Jobs = 0);

} // namespace Varnholt::Publisher
