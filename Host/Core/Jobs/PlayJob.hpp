#pragma once

#include "Host/Core/Jobs/Job.hpp"

namespace Varnholt::Host {

/// Starts the game, logged in when account and password are given.
class PlayJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override;
    void OnBuildKnown() override;

private:
    void Play();
    std::optional<Failure> FailureOf(QString const& p_Program) const;
    void JudgeLogin(bool p_WasRunning);
};

} // namespace Varnholt::Host
