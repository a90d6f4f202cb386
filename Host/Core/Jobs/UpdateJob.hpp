#pragma once

#include "Host/Core/Jobs/CompletionJob.hpp"

namespace Varnholt::Host {

/// Completes the installed game, trusting its pending lists where they can be.
class UpdateJob : public CompletionJob {
public:
    using CompletionJob::CompletionJob;

protected:
    std::optional<Failure> Prepare() override;
    void BeginFiles() override;
};

} // namespace Varnholt::Host
