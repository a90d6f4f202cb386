#include "Host/Core/Jobs/InspectionJob.hpp"

namespace Varnholt::Host {

void InspectionJob::OnBuildKnown()
{
    if (CanUseBuild())
        Settle([this] {
            Examined = std::make_unique<Examination>(Context, Where(), LooksAtEveryFile());
        });
}

void InspectionJob::Work()
{
    if (IsJudged || !Examined || !Examined->IsFinished())
        return;
    IsJudged = true;
    Result.Findings = Examined->Findings();
    if (auto const failure = LinkFailure(Where()))
        return Fail(*failure);
    if (Result.Findings.empty())
        return Finish();
    Judge();
}

RunPhase InspectionJob::Phase() const
{
    return Examined ? WorkPhase() : RunPhase::Connecting;
}

RunSnapshot InspectionJob::Look()
{
    return Examined ? Examined->Look(WorkPhase()) : Job::Look();
}

} // namespace Varnholt::Host
