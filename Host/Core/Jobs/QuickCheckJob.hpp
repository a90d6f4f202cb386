#pragma once

#include "Host/Core/Jobs/Job.hpp"

namespace Varnholt::Host {

/// Asks for the version file only: one small file, and no work for the module.
class QuickCheckJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return GameFailure(); }
    void Start() override;
    void OnBuildKnown() override {}
    void Work() override;
    void Release() override { Asking.reset(); }

private:
    std::optional<Gateway::FetchProblem>
    ProblemOf(OfflineCopies::Documents::value_type const& p_Version) const;
    void OnVersion(std::string const& p_Version);

    std::unique_ptr<QObject> Asking = std::make_unique<QObject>(); ///< its end is the question's
};

} // namespace Varnholt::Host
