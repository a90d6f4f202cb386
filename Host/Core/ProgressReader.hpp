#pragma once

#include "GameModules/StandartApplication.hpp"
#include "Host/Core/NetworkJournal.hpp"
#include "Host/Core/RateMeter.hpp"
#include "Host/Core/RunSnapshot.hpp"

#include <cstddef>

namespace Varnholt::Host {

/// Turns the module's raw record into a snapshot. Module thread.
class ProgressReader {
public:
    ProgressReader(Launcher::StandartApplication& p_Module, NetworkJournal const& p_Journal);

    /// The phase of a run that is under way.
    RunPhase Phase() const;
    /// \param p_Phase as the host knows it
    /// \param p_Now a monotonic clock, milliseconds
    RunSnapshot Read(RunPhase p_Phase, qint64 p_Now);
    /// Bytes that the current phase has still to fetch, as of the last snapshot.
    quint64 RemainingBytes() const { return TotalBytes - DoneBytes; }

private:
    void ReadComparison(RunSnapshot& p_Snapshot) const;
    void ReadDownload(RunSnapshot& p_Snapshot, qint64 p_Now);
    quint64 FinishedBytes();

    Launcher::StandartApplication& Module;
    NetworkJournal const& Journal;
    RateMeter Meter;
    RunPhase LastPhase = RunPhase::Idle;
    std::size_t CountedFiles = 0; ///< of the list, whose sizes are in `CountedBytes`
    quint64 CountedBytes = 0;
    quint64 DoneBytes = 0;
    quint64 TotalBytes = 0;
};

} // namespace Varnholt::Host
