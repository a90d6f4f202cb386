#include "Host/Gateway/RateMeter.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

namespace {

constexpr Milliseconds c_Window{5'000};
constexpr Milliseconds c_Slot{100};

} // namespace

void RateMeter::Add(std::uint64_t p_Bytes, TimePoint p_Now)
{
    while (!Slots.empty() && p_Now - Slots.front().Begin > c_Window)
        Slots.pop_front();
    if (Slots.empty())
        First = p_Now;
    if (Slots.empty() || p_Now - Slots.back().Begin >= c_Slot)
        Slots.push_back({p_Now, 0});
    Slots.back().Bytes += p_Bytes;
}

std::uint64_t RateMeter::Rate(TimePoint p_Now) const
{
    std::uint64_t bytes = 0;
    for (Slot const& slot : Slots)
        if (p_Now - slot.Begin <= c_Window)
            bytes += slot.Bytes;
    auto const time = std::clamp<Clock::duration>(p_Now - First, c_Slot, c_Window);
    return static_cast<std::uint64_t>(static_cast<double>(bytes) /
                                      std::chrono::duration<double>(time).count());
}

} // namespace Varnholt::Gateway
