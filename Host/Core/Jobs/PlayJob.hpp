#pragma once

#include "Host/Core/Jobs/GameStart.hpp"
#include "Host/Core/Jobs/Job.hpp"

#include <memory>

namespace Varnholt::Host {

/// Starts the game, logged in when account and password are given.
class PlayJob : public Job {
public:
    using Job::Job;

    void Interrupt() override;

protected:
    std::optional<Failure> Prepare() override;
    void OnBuildKnown() override;
    void Work() override;
    RunPhase Phase() const override;
    void Release() override { Starter.reset(); }

private:
    void Play();

    std::unique_ptr<GameStart> Starter;
};

} // namespace Varnholt::Host
