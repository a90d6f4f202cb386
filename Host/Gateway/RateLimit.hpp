#pragma once

#include "Host/Gateway/Clock.hpp"

#include <cstdint>

namespace Varnholt::Gateway {

/// Says how many bytes may be taken from the network at a moment. One thread.
class RateLimit {
public:
    /// \param p_BytesPerSecond 0: no limit
    void Set(std::uint64_t p_BytesPerSecond, TimePoint p_Now);
    bool IsSet() const { return Rate != 0; }

    bool MayTake(TimePoint p_Now);
    /// May take more than there is: what follows waits for it.
    void Take(std::uint64_t p_Bytes);
    /// When something may be taken again.
    TimePoint Next(TimePoint p_Now) const;

private:
    void Refill(TimePoint p_Now);

    std::uint64_t Rate = 0;
    double Credit = 0; ///< bytes
    TimePoint Filled;
};

} // namespace Varnholt::Gateway
