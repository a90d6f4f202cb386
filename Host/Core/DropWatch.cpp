#include "Host/Core/DropWatch.hpp"

namespace Varnholt::Host {

bool DropWatch::Observe(quint32 p_Restarts, std::vector<quint64> const& p_Figures)
{
    // A dropped transfer that goes on well needs two of them: one at its end, one from its start.
    constexpr quint32 c_TooMany = 3;

    if (p_Figures != Figures) {
        Figures = p_Figures;
        First = p_Restarts;
    }
    if (p_Restarts - First < c_TooMany)
        return false;
    Figures.clear();
    return true;
}

} // namespace Varnholt::Host
