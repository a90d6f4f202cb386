#include "Host/Core/Jobs/InspectionJob.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

namespace Varnholt::Host {

namespace {

/// Compares every file.
class VerifyJob : public InspectionJob {
public:
    using InspectionJob::InspectionJob;

protected:
    RunPhase WorkPhase() const override { return RunPhase::Verifying; }
    bool LooksAtEveryFile() const override { return true; }
    FailureKind Verdict() const override { return FailureKind::FilesWrong; }
    void Judge() override
    {
        Fail({Verdict(), FileCountText(Result.Findings.size()), Result.BuildText()});
    }
    bool ProvesGame() const override { return true; }
};

} // namespace

JobMaker const MakeVerifyJob = MakeJob<VerifyJob>;

} // namespace Varnholt::Host
