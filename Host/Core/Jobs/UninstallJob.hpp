#pragma once

#include "Host/Core/Folder/GameRemoval.hpp"
#include "Host/Core/Jobs/Job.hpp"

#include <memory>

namespace Varnholt::Host {

/// Forgets the installation, with or without its files. The files go first, those with secrets
/// before all others; what is known of the game goes last: whoever stops it in between, gives the
/// same command again.
class UninstallJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override;
    void Start() override;
    void OnBuildKnown() override;
    void Work() override;
    void OnGaveUp(Failure const& p_Failure) override;
    RunPhase Phase() const override;
    RunSnapshot Look() override;
    void Release() override;

private:
    void RemoveFiles();
    void Forget();
    void Judge(QString const& p_Folder);

    std::shared_ptr<GameRemoval> Removal; ///< shared with the worker
};

} // namespace Varnholt::Host
