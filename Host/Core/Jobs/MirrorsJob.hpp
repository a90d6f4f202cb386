#pragma once

#include "Host/Core/Jobs/Job.hpp"
#include "Host/Core/Jobs/MirrorCheck.hpp"

#include <memory>

namespace Varnholt::Host {

/// Finds out which servers of content are in order.
class MirrorsJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return std::nullopt; }
    void OnBuildKnown() override;
    RunPhase Phase() const override;
    void Release() override { Mirrors.reset(); }

private:
    void AskMirrors();
    void OnMirrorsAsked();

    std::unique_ptr<MirrorCheck> Mirrors;
};

} // namespace Varnholt::Host
