#include "Host/Core/Jobs/CheckJob.hpp"

namespace Varnholt::Host {

bool CheckJob::LooksAtEveryFile() const
{
    return Context.Record.IsUnfinished() ||
           Context.Record.CompletedBuild() != Context.Module.RemoteBuild;
}

void CheckJob::Judge()
{
    if (IsFromCopies()) // nobody is asked
        return TellUpdate();
    Survey = std::make_unique<SizeSurvey>(Result.Findings, Context.Door, Folder(),
                                          Context.Options.StallMilliseconds);
}

void CheckJob::Work()
{
    if (!Survey)
        return InspectionJob::Work();
    if (!Survey->Look())
        return;
    Result.Findings = Survey->Findings();
    TellUpdate();
}

/// The sizes that are known do.
void CheckJob::OnGaveUp(Failure const& p_Failure)
{
    if (!Survey)
        InspectionJob::OnGaveUp(p_Failure);
}

RunPhase CheckJob::Phase() const
{
    return Survey ? RunPhase::AskingSizes : InspectionJob::Phase();
}

RunSnapshot CheckJob::Look()
{
    if (!Survey)
        return InspectionJob::Look();
    RunSnapshot snapshot;
    snapshot.Phase = Phase();
    snapshot.FileNumber = Survey->Answered();
    snapshot.FileCount = static_cast<quint32>(Survey->Findings().size());
    return snapshot;
}

void CheckJob::TellUpdate()
{
    Fail({Verdict(), AmountText(AmountOf(Result.Findings)), Result.BuildText()});
}

} // namespace Varnholt::Host
