#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Jobs/FileFinding.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Session/InstallStatus.hpp"

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// What is known of the chosen game at one moment, gathered from what its session has said.
struct GameState {
    enum class Stage {
        Opening, ///< or being let go
        Open,
        Failed, ///< the module cannot be used; `Problem` tells why
    };

    Stage Session = Stage::Opening;
    std::optional<InstallStatus> Status; ///< none until it was read
    std::optional<RunRequest> Job;       ///< under way, but for a quiet one; without its password
    RunSnapshot Snapshot;                ///< of that job
    bool IsPaused = false;               ///< though it may not hold yet
    bool IsGameRunning = false;
    bool IsUpdateKnown = false;       ///< a check has found a newer build, or wrong files
    std::optional<Failure> Problem;   ///< of the latest job, or of the opening
    RunRequest Failed;                ///< the job that has that problem; without its password
    std::vector<FileFinding> GivenUp; ///< files that this job could not bring, or found wrong
};

} // namespace Varnholt::Host
