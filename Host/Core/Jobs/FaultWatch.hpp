#pragma once

#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Jobs/ProgressReader.hpp"
#include "Host/Core/Module/RunContext.hpp"

#include <QElapsedTimer>

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// Sees what would keep a job from its end, before and while files arrive. Module thread.
class FaultWatch {
public:
    using Entries = GameVolumes::Entries;

    FaultWatch(RunContext const& p_Context, ProgressReader const& p_Reader);

    /// Called in each turn before the module's closures are run, so that a list that does not fit
    /// is refused before its first file is begun. \param p_Folder of the game
    std::optional<Failure> LookAtRoom(QString const& p_Folder);
    /// The room as it was before the first byte of the latest list; empty until then.
    std::vector<VolumeSpace> const& Space() const { return Spaces; }
    /// Servers that the door asks after the others; none when there are no others.
    std::size_t ServersBehind() const;

private:
    RunContext Context;
    ProgressReader const& Reader;
    std::vector<VolumeSpace> Spaces;
    RunPhase LastPhase = RunPhase::Idle;
    QElapsedTimer SinceLook;
};

} // namespace Varnholt::Host
