#pragma once

#include "Host/Core/Jobs/UpdateJob.hpp"

namespace Varnholt::Host {

/// Completes the installed game, looking at every file.
class RepairJob : public UpdateJob {
public:
    RepairJob(RunContext const& p_Context, RunRequest p_Request, unsigned p_Traits)
        : UpdateJob(p_Context, std::move(p_Request), p_Traits)
    {
        DistrustLists();
    }

    void StopRepair() override
    {
        if (IsWorking())
            return AbortRepair();
        Result.IsRepairStopped = true; // nothing has been looked at
        Interrupt();
    }
};

} // namespace Varnholt::Host
