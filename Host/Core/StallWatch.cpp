#include "Host/Core/StallWatch.hpp"

namespace Varnholt::Host {

bool StallWatch::Observe(qint64 p_Now, std::vector<quint64> const& p_Figures)
{
    if (p_Figures != Figures) {
        Figures = p_Figures;
        Since = p_Now;
        return false;
    }
    if (p_Now - Since < Limit)
        return false;
    Reset();
    return true;
}

} // namespace Varnholt::Host
