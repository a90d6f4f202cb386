#pragma once

#include "Host/Core/Jobs/CheckJob.hpp"

namespace Varnholt::Host {

/// Finds out what an installation into a folder would fetch, and what speaks against it. Nothing
/// need be installed.
class PreviewInstallJob : public CheckJob {
public:
    using CheckJob::CheckJob;

protected:
    std::optional<Failure> Prepare() override;
    void OnBuildKnown() override;
    bool LooksAtEveryFile() const override { return true; }
    QString Where() const override { return Result.Folder; }
    void Tell() override;
};

} // namespace Varnholt::Host
