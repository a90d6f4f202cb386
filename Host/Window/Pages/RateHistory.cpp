#include "Host/Window/Pages/RateHistory.hpp"

#include <algorithm>

namespace Varnholt::Host {

void RateHistory::Add(qint64 p_Now, quint64 p_Rate)
{
    constexpr qint64 c_StepMilliseconds = 500;

    while (!Samples.empty() && p_Now - Samples.front().Time > c_Milliseconds)
        Samples.pop_front();
    if (!Samples.empty() && p_Now - Samples.back().Time < c_StepMilliseconds)
        return;
    Samples.push_back({p_Now, p_Rate});
}

quint64 RateHistory::Highest() const
{
    quint64 highest = 0;
    for (Sample const& sample : Samples)
        highest = std::max(highest, sample.Rate);
    return highest;
}

} // namespace Varnholt::Host
