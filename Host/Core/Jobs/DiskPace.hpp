#pragma once

#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Gateway/RateMeter.hpp"

namespace Varnholt::Host {

/// How quickly files are looked at. Module thread.
class DiskPace {
public:
    /// Adds rate and time left to a snapshot that counts the bytes of such files.
    void Tell(RunSnapshot& p_Snapshot);

private:
    Gateway::RateMeter Meter;
    quint64 Counted = 0; ///< by the meter
};

} // namespace Varnholt::Host
