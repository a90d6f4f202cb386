#include "Host/Core/Jobs/InspectionJob.hpp"

namespace Varnholt::Host {

void InspectionJob::OnBuildKnown()
{
    if (CanUseBuild())
        Settle([this] { Examined = Inspection::Begin(Context, Where(), LooksAtEveryFile()); });
}

void InspectionJob::Work()
{
    if (IsJudged || !Examined || !Examined->IsFinished())
        return;
    IsJudged = true;
    Result.Findings = Examined->Findings();
    for (FileFinding& finding : Result.Findings)
        Explain(finding);
    if (auto const failure = LinkFailure(Where()))
        return Fail(*failure);
    if (Result.Findings.empty())
        return Finish();
    Judge();
}

void InspectionJob::Explain(FileFinding& p_Finding) const
{
    if (p_Finding.Why == FileFinding::Cause::Blocked)
        p_Finding.Problem = {FailureKind::FolderBlocksFile, Folder() + p_Finding.Path, {}};
    else
        p_Finding.Problem = {Verdict(), p_Finding.Path, Result.BuildText()};
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
