#pragma once

#include "Host/Core/Jobs/Job.hpp"

namespace Varnholt::Host {

/// Asks the build for its languages; fetches no file.
class ListLocalesJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return std::nullopt; }
    void OnBuildKnown() override;
};

/// Chooses one of them.
class ChooseLocaleJob : public ListLocalesJob {
public:
    using ListLocalesJob::ListLocalesJob;

protected:
    std::optional<Failure> Prepare() override;
    void OnBuildKnown() override;
};

} // namespace Varnholt::Host
