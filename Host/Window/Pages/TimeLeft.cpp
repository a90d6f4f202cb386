#include "Host/Window/Pages/TimeLeft.hpp"

#include <algorithm>
#include <cmath>

namespace Varnholt::Host {

namespace {

constexpr double c_RateSeconds = 15;  ///< in which a new rate counts for two thirds
constexpr double c_FollowSeconds = 8; ///< in which what is told follows what is computed
constexpr double c_LeastKnownSeconds = 3;
constexpr double c_MostSilentSeconds = 10;

} // namespace

void TimeLeft::Add(qint64 p_Now, quint64 p_Done, quint64 p_Total)
{
    constexpr qint64 c_ShortestMilliseconds = 200;
    constexpr double c_Second = 1'000;

    if (!HasBegun || p_Done < Done || p_Total != Total) {
        Reset();
        HasBegun = true;
        Latest = p_Now;
        Done = p_Done;
        Total = p_Total;
        return;
    }
    qint64 const passed = p_Now - Latest;
    if (passed < c_ShortestMilliseconds)
        return;
    Follow(static_cast<double>(passed) / c_Second, static_cast<double>(p_Done - Done));
    Latest = p_Now;
    Done = p_Done;
}

void TimeLeft::Follow(double p_Seconds, double p_Bytes)
{
    Silent = p_Bytes > 0 ? 0 : Silent + p_Seconds;
    Known += p_Seconds;
    // At first the mean of all, so that the first bytes do not count for more than the others.
    double const share = std::max(1 - std::exp(-p_Seconds / c_RateSeconds), p_Seconds / Known);
    Rate += (p_Bytes / p_Seconds - Rate) * share;
    double const computed = Rate > 0 ? (static_cast<double>(Total - Done) - p_Bytes) / Rate : -1;
    if (computed < 0 || Known < c_LeastKnownSeconds) {
        Left = computed;
        return;
    }
    if (Left < 0)
        Left = computed;
    double const run = std::max(0.0, Left - p_Seconds);
    Left = run + (computed - run) * (1 - std::exp(-p_Seconds / c_FollowSeconds));
}

std::optional<qint64> TimeLeft::Seconds() const
{
    if (Left < 0 || Known < c_LeastKnownSeconds || Silent > c_MostSilentSeconds)
        return std::nullopt;
    return static_cast<qint64>(std::ceil(Left));
}

} // namespace Varnholt::Host
