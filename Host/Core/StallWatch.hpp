#pragma once

#include <QtGlobal>

#include <vector>

namespace Varnholt::Host {

/// Tells when figures that should change have stood still for too long.
class StallWatch {
public:
    explicit StallWatch(int p_Milliseconds)
        : Limit(p_Milliseconds)
    {
    }

    /// \param p_Now a monotonic clock, milliseconds
    /// \return true once the figures have been the same for the limit; the clock then starts anew
    bool Observe(qint64 p_Now, std::vector<quint64> const& p_Figures);
    /// Begins anew at the next observation.
    void Reset() { Figures.clear(); }

private:
    qint64 Limit;
    qint64 Since = 0;
    std::vector<quint64> Figures;
};

} // namespace Varnholt::Host
