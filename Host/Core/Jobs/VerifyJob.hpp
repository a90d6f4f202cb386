#pragma once

#include "Host/Core/Jobs/InspectionJob.hpp"

namespace Varnholt::Host {

/// Compares every file.
class VerifyJob : public InspectionJob {
public:
    using InspectionJob::InspectionJob;

protected:
    RunPhase WorkPhase() const override { return RunPhase::Verifying; }
    bool LooksAtEveryFile() const override { return true; }
    FailureKind Verdict() const override { return FailureKind::FilesWrong; }
    void Judge() override;
    bool ProvesGame() const override { return true; }
};

} // namespace Varnholt::Host
