#include "Host/Core/RateMeter.hpp"

namespace Varnholt::Host {

void RateMeter::Add(qint64 p_Milliseconds, quint64 p_Bytes)
{
    constexpr qint64 c_WindowMilliseconds = 5'000;

    if (!Samples.empty() && p_Bytes < Samples.back().Bytes)
        Samples.clear();
    Samples.push_back({p_Milliseconds, p_Bytes});
    // One sample from before the window is kept: the window is then always covered.
    while (Samples.size() > 2 && p_Milliseconds - Samples[1].Milliseconds >= c_WindowMilliseconds)
        Samples.pop_front();
}

quint64 RateMeter::Rate() const
{
    if (Samples.size() < 2)
        return 0;
    qint64 const elapsed = Samples.back().Milliseconds - Samples.front().Milliseconds;
    if (elapsed <= 0)
        return 0;
    quint64 const gained = Samples.back().Bytes - Samples.front().Bytes;
    return gained * 1'000 / static_cast<quint64>(elapsed);
}

} // namespace Varnholt::Host
