#include "Publisher/Serving/ByteRange.hpp"

#include <algorithm>

namespace Varnholt::Publisher {

std::optional<ByteRange> ByteRange::Of(qint64 p_First, qint64 p_Last, qint64 p_Size)
{
    qint64 first = p_First;
    qint64 last = p_Last;
    if (first < 0) {
        if (last <= 0)
            return std::nullopt;
        first = std::max<qint64>(0, p_Size - last);
        last = -1;
    }
    if (last < 0 || last >= p_Size)
        last = p_Size - 1;
    if (first > last)
        return std::nullopt;
    return ByteRange{first, last - first + 1};
}

} // namespace Varnholt::Publisher
