#include "Host/Core/Jobs/DiskPace.hpp"

#include <utility>

namespace Varnholt::Host {

void DiskPace::Tell(RunSnapshot& p_Snapshot)
{
    auto const now = Gateway::Clock::now();
    Meter.Add(p_Snapshot.BytesDone - std::exchange(Counted, p_Snapshot.BytesDone), now);
    p_Snapshot.Rate = Meter.Rate(now);
    if (p_Snapshot.Rate > 0)
        p_Snapshot.Remaining =
            static_cast<qint64>((p_Snapshot.BytesTotal - p_Snapshot.BytesDone) / p_Snapshot.Rate);
}

} // namespace Varnholt::Host
