#pragma once

#include "Host/Gateway/Clock.hpp"

#include <cstdint>
#include <deque>

namespace Varnholt::Gateway {

/// Bytes per second over the last seconds. One thread at a time.
class RateMeter {
public:
    void Add(std::uint64_t p_Bytes, TimePoint p_Now);
    void Clear() { Slots.clear(); }
    std::uint64_t Rate(TimePoint p_Now) const;

private:
    struct Slot {
        TimePoint Begin;
        std::uint64_t Bytes;
    };

    std::deque<Slot> Slots;
    TimePoint First; ///< of what is measured without a rest
};

} // namespace Varnholt::Gateway
