#pragma once

#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Module/ModuleView.hpp"
#include "Host/Core/Module/RunGate.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"

#include <QElapsedTimer>

#include <cstddef>
#include <memory>

namespace Varnholt::Host {

/// Turns the module's raw record and the door's figures into a snapshot. Module thread.
class ProgressReader {
public:
    ProgressReader(ModuleView const& p_View, Launcher::ApplicationManifest const& p_Manifest,
                   NetworkDoor const& p_Door, RunGate const& p_Gate);
    ~ProgressReader();

    /// The phase of a run that is under way.
    RunPhase Phase() const;
    /// \param p_Phase as the host knows it
    RunSnapshot Read(RunPhase p_Phase);
    /// Bytes that the current phase has still to write, as of the last snapshot.
    quint64 RemainingBytes() const { return TotalBytes - DoneBytes; }

private:
    class Comparison;

    /// Adds what the door tells: rate, servers, waits. \return what it holds for the module
    quint64 ReadDoor(RunSnapshot& p_Snapshot) const;
    /// \param p_Held bytes that have come through the network and are not on the disk yet
    void ReadDownload(RunSnapshot& p_Snapshot, quint64 p_Held);
    /// Whether all of the current file has been there for a moment: the module verifies it.
    bool IsVerified(ModuleView::Download const& p_Download);
    quint64 FinishedBytes(std::size_t p_Finished);

    ModuleView const& View;
    Launcher::ApplicationManifest const& Manifest;
    NetworkDoor const& Door;
    RunGate const& Gate;
    std::unique_ptr<Comparison> Compared; ///< in this phase
    RunPhase LastPhase = RunPhase::Idle;
    std::size_t CountedFiles = 0; ///< of the list, whose sizes are in `CountedBytes`
    quint64 CountedBytes = 0;
    quint64 DoneBytes = 0;
    quint64 TotalBytes = 0;
    QString WholeFile; ///< the current one, once all of it lies in its part file
    QElapsedTimer WholeSince;
};

} // namespace Varnholt::Host
