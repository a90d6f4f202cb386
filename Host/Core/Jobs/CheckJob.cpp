#include "Host/Core/Jobs/CheckJob.hpp"

#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Jobs/JobTable.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

JobMaker const MakeCheckJob = MakeJob<CheckJob>;

bool CheckJob::LooksAtEveryFile() const
{
    return Context.Record.IsUnfinished() ||
           Context.Record.CompletedBuild() != Context.Module.RemoteBuild;
}

void CheckJob::Judge()
{
    AsksSizes = !IsFromCopies(); // otherwise nobody is asked
    if (!AsksSizes) {
        MeasureSpace();
        return Tell();
    }
    std::vector<Gateway::PlannedFile> asked;
    for (FileFinding const& finding : Result.Findings) {
        Gateway::PlannedFile file;
        file.Path = Context.Door.PathOf(finding.Location);
        file.OfDefaultServer = finding.IsDefaultServerOnly;
        asked.push_back(file);
    }
    Context.Door->AskSizes(asked);
    SinceAnswer.start();
}

void CheckJob::Work()
{
    if (!AsksSizes)
        return InspectionJob::Work();
    if (AwaitsSizes())
        return;
    LearnSizes();
    MeasureSpace();
    Tell();
}

bool CheckJob::AwaitsSizes()
{
    auto const snapshot = Context.Door->Snapshot();
    if (snapshot.SizesKnown != Answered)
        SinceAnswer.start();
    Answered = snapshot.SizesKnown;
    return Answered != Result.Findings.size() && !snapshot.GaveUp &&
           !SinceAnswer.hasExpired(Context.Options.StallMilliseconds);
}

/// What already lies there of a file is not fetched again and does not count.
void CheckJob::LearnSizes()
{
    for (FileFinding& finding : Result.Findings)
        if (auto const size = Context.Door.SizeOf(finding.Location)) {
            QString const part = Launcher::Helper::Paths::PartFile(Where() + finding.Path);
            finding.Bytes =
                std::max<qint64>(0, static_cast<qint64>(*size) - QFileInfo(part).size());
        }
}

/// Goes on with the sizes that are known.
void CheckJob::OnGaveUp(Failure const& p_Failure)
{
    if (!AsksSizes)
        InspectionJob::OnGaveUp(p_Failure);
}

RunPhase CheckJob::Phase() const
{
    return AsksSizes ? RunPhase::AskingSizes : InspectionJob::Phase();
}

RunSnapshot CheckJob::Look()
{
    if (!AsksSizes)
        return InspectionJob::Look();
    RunSnapshot snapshot;
    snapshot.Phase = Phase();
    snapshot.FileNumber = Answered;
    snapshot.FileCount = static_cast<quint32>(Result.Findings.size());
    return snapshot;
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
