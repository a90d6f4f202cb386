#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Varnholt::LineProxy {

using Clock = std::chrono::steady_clock;

/// Bytes that are read at once.
constexpr std::uint64_t c_LargestPortion = 64ULL * 1024;

/// When a line that carries so many bytes a second is free for the next ones. A time without bytes
/// is lost, except for the few milliseconds by which this program may wake too late.
class LineRate {
public:
    /// \param p_BytesPerSecond 0: without limit
    explicit LineRate(std::uint64_t p_BytesPerSecond)
        : BytesPerSecond(p_BytesPerSecond)
    {
    }

    /// In the past when it is free.
    Clock::time_point FreeAt() const { return Free; }

    /// How many bytes to put on it at once: enough not to wake for each packet.
    std::size_t Portion() const
    {
        constexpr std::uint64_t c_Least = 512;
        constexpr std::uint64_t c_PortionsPerSecond = 500;

        if (BytesPerSecond == 0)
            return c_LargestPortion;
        return std::clamp(BytesPerSecond / c_PortionsPerSecond, c_Least, c_LargestPortion);
    }

    void Put(std::size_t p_Bytes, Clock::time_point p_Now)
    {
        constexpr std::chrono::milliseconds c_Late{10};

        if (BytesPerSecond == 0)
            return;
        std::chrono::duration<double> const time(static_cast<double>(p_Bytes) /
                                                 static_cast<double>(BytesPerSecond));
        Free = std::max(Free, p_Now - c_Late) + std::chrono::duration_cast<Clock::duration>(time);
    }

private:
    std::uint64_t BytesPerSecond;
    Clock::time_point Free; // long ago at first
};

} // namespace Varnholt::LineProxy
