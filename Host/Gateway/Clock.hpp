#pragma once

#include <chrono>

namespace Varnholt::Gateway {

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;
using WallClock = std::chrono::system_clock; ///< for what others have dated
using Milliseconds = std::chrono::milliseconds;

inline double SecondsBetween(TimePoint p_Begin, TimePoint p_End)
{
    return std::chrono::duration<double>(p_End - p_Begin).count();
}

inline Milliseconds MillisecondsBetween(TimePoint p_Begin, TimePoint p_End)
{
    return std::chrono::duration_cast<Milliseconds>(p_End - p_Begin);
}

} // namespace Varnholt::Gateway
