#include "Host/Gateway/RateLimit.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

void RateLimit::Set(std::uint64_t p_BytesPerSecond, TimePoint p_Now)
{
    Rate = p_BytesPerSecond;
    Credit = 0;
    Filled = p_Now;
}

bool RateLimit::MayTake(TimePoint p_Now)
{
    Refill(p_Now);
    return Rate == 0 || Credit > 0;
}

void RateLimit::Take(std::uint64_t p_Bytes)
{
    if (Rate != 0)
        Credit -= static_cast<double>(p_Bytes);
}

TimePoint RateLimit::Next(TimePoint p_Now) const
{
    constexpr Milliseconds c_Shortest{5};

    auto const wait = Rate == 0 || Credit > 0
                          ? std::chrono::duration<double>(0)
                          : std::chrono::duration<double>(-Credit / static_cast<double>(Rate));
    return p_Now +
           std::max<Clock::duration>(c_Shortest, std::chrono::duration_cast<Clock::duration>(wait));
}

void RateLimit::Refill(TimePoint p_Now)
{
    constexpr double c_MostSeconds = 0.1; // what is not used is not saved up

    double const rate = static_cast<double>(Rate);
    Credit = std::min(Credit + rate * SecondsBetween(Filled, p_Now), rate * c_MostSeconds);
    Filled = p_Now;
}

} // namespace Varnholt::Gateway
