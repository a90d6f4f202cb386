#pragma once

#include "Host/Core/Folder/GameRemoval.hpp"
#include "Host/Core/Jobs/Job.hpp"

#include <memory>

namespace Varnholt::Host {

/// Finds out what an uninstallation would delete, and what would stay.
class PreviewUninstallJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return GameFailure(); }
    void OnBuildKnown() override;
    void Work() override;
    RunPhase Phase() const override;
    void Release() override;

private:
    std::shared_ptr<GameRemoval> Removal; ///< shared with the worker
};

} // namespace Varnholt::Host
