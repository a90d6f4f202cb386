#include "Host/Core/DropWatch.hpp"

namespace Varnholt::Host {

bool DropWatch::Observe(quint32 p_Restarts, quint32 p_Transfer, quint64 p_Bytes)
{
    if (!IsBegun || p_Transfer != Transfer) {
        *this = {};
        IsBegun = true;
        Transfer = p_Transfer;
        Bytes = Most = p_Bytes;
        First = p_Restarts;
    }
    if (p_Bytes != Bytes)
        First = p_Restarts;
    if (p_Bytes > Most) {
        Most = p_Bytes;
        Losses = 0;
    } else if (p_Bytes < Bytes) {
        ++Losses;
    }
    Bytes = p_Bytes;
    if (!IsTooMany(p_Restarts))
        return false;
    IsBegun = false;
    return true;
}

bool DropWatch::IsTooMany(quint32 p_Restarts) const
{
    // A dropped transfer that goes on well needs two of them: one at its end, one from its start.
    constexpr quint32 c_TooManyWithoutAByte = 3;
    // The module begins a file from its start three times and then keeps what it has.
    constexpr quint32 c_TooManyLosses = 4;

    return p_Restarts - First >= c_TooManyWithoutAByte || Losses >= c_TooManyLosses;
}

} // namespace Varnholt::Host
