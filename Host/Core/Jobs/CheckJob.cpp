#include "Host/Core/Jobs/CheckJob.hpp"

#include "Host/Core/Folder/GameVolumes.hpp"

namespace Varnholt::Host {

bool CheckJob::LooksAtEveryFile() const
{
    return Context.Record.IsUnfinished() ||
           Context.Record.CompletedBuild() != Context.Module.RemoteBuild;
}

void CheckJob::Judge()
{
    if (IsFromCopies()) // nobody is asked
        return Conclude();
    Survey = std::make_unique<SizeSurvey>(Result.Findings, Context.Door, Where(),
                                          Context.Options.StallMilliseconds);
}

void CheckJob::Work()
{
    if (!Survey)
        return InspectionJob::Work();
    if (!Survey->Look())
        return;
    Result.Findings = Survey->Findings();
    Conclude();
}

/// Goes on with the sizes that are known.
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

void CheckJob::Conclude()
{
    MeasureSpace();
    Tell();
}

void CheckJob::MeasureSpace()
{
    Result.Space = GameVolumes::SpaceFor(
        Where(), EntriesOf(Result.Findings),
        [this](QString const& p_Location) { return Context.Door.SizeOf(p_Location); },
        Context.Options.FreeBytes);
}

void CheckJob::Tell()
{
    Fail({Verdict(), AmountText(AmountOf(Result.Findings)), Result.BuildText()});
}

} // namespace Varnholt::Host
