#pragma once

#include "Host/Core/Jobs/CompletionJob.hpp"

namespace Varnholt::Host {

/// Brings the build into a folder of the user's choice, and records that as the installation.
class InstallJob : public CompletionJob {
public:
    using CompletionJob::CompletionJob;

protected:
    std::optional<Failure> Prepare() override;
    void BeginFiles() override;

private:
    bool MayBeMoved = false; ///< out of its recorded folder into this one
};

} // namespace Varnholt::Host
