#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"
#include "Host/Core/Jobs/InspectionJob.hpp"
#include "Host/Core/Jobs/JobTable.hpp"
#include "Host/Core/Jobs/RoomCheck.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// Finds out what an update would fetch, and asks servers how much that is; or the same of an
/// installation into a folder, and what speaks against that. Nothing need be installed then.
class CheckJob : public InspectionJob {
public:
    using InspectionJob::InspectionJob;

protected:
    std::optional<Failure> Prepare() override
    {
        if (!IsOfInstall())
            return InspectionJob::Prepare();
        Result.Folder = FolderCheck::Normalized(Request.Argument);
        return std::nullopt;
    }

    void OnBuildKnown() override
    {
        if (IsOfInstall()) {
            FindObjections();
            Result.Locales = Context.Module.GetAvailableLocales();
            MeasureSpace();
        }
        InspectionJob::OnBuildKnown();
    }

    QString Where() const override { return IsOfInstall() ? Result.Folder : Folder(); }

    bool LooksAtEveryFile() const override
    {
        return IsOfInstall() || Context.Record.IsUnfinished() ||
               Context.Record.CompletedBuild() != Context.Module.RemoteBuild;
    }

    FailureKind Verdict() const override { return FailureKind::UpdateAvailable; }

    void Judge() override
    {
        AsksSizes = !IsFromCopies(); // otherwise nobody is asked
        if (!AsksSizes)
            return Conclude();
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

    void Work() override
    {
        if (!AsksSizes)
            return InspectionJob::Work();
        if (AwaitsSizes())
            return;
        LearnSizes();
        Conclude();
    }

    /// Goes on with the sizes that are known.
    void OnGaveUp(Failure const& p_Failure) override
    {
        if (!AsksSizes)
            InspectionJob::OnGaveUp(p_Failure);
    }

    RunPhase Phase() const override
    {
        return AsksSizes ? RunPhase::AskingSizes : InspectionJob::Phase();
    }

    RunSnapshot Look() override
    {
        if (!AsksSizes)
            return InspectionJob::Look();
        RunSnapshot snapshot;
        snapshot.Phase = Phase();
        snapshot.FileNumber = Answered;
        snapshot.FileCount = static_cast<quint32>(Result.Findings.size());
        return snapshot;
    }

private:
    bool IsOfInstall() const { return Request.Kind == RunRequest::Type::PreviewInstall; }

    void FindObjections()
    {
        InstallRecord const& record = Context.Record;
        bool const isElsewhere = record.IsInstalled() && record.Folder() != Where();
        bool const isMoved =
            isElsewhere && !QFileInfo::exists(record.Folder()) &&
            HoldsGame(Context.Module.Manifest, Where(), Context.Module.GetAppLocale());
        Result.Warnings = FolderCheck::Objections(Where(), isMoved ? Where() : record.Folder());
        if (isElsewhere && !isMoved)
            Result.Warnings.push_back({FailureKind::InstalledElsewhere, record.Folder(), {}});
    }

    bool AwaitsSizes()
    {
        auto const snapshot = Context.Door->Snapshot();
        if (snapshot.SizesKnown != Answered)
            SinceAnswer.start();
        Answered = snapshot.SizesKnown;
        return Answered != Result.Findings.size() && !snapshot.GaveUp &&
               !SinceAnswer.hasExpired(Context.Options.StallMilliseconds);
    }

    /// What already lies there of a file is not fetched again and does not count.
    void LearnSizes()
    {
        for (FileFinding& finding : Result.Findings)
            if (auto const size = Context.Door.SizeOf(finding.Location)) {
                QString const part = Launcher::Helper::Paths::PartFile(Where() + finding.Path);
                finding.Bytes =
                    std::max<qint64>(0, static_cast<qint64>(*size) - QFileInfo(part).size());
            }
    }

    /// Puts the room for the findings into the result.
    void MeasureSpace()
    {
        Result.Space = GameVolumes::SpaceFor(
            Where(), EntriesOf(Result.Findings),
            [this](QString const& p_Location) { return Context.Door.SizeOf(p_Location); },
            Context.Options.FreeBytes);
    }

    void Conclude()
    {
        MeasureSpace();
        if (!IsOfInstall())
            return Fail({Verdict(), AmountText(AmountOf(Result.Findings)), Result.BuildText()});
        Result.Amount = AmountOf(Result.Findings);
        Result.Findings.clear(); // a whole build's would be no news
        if (auto const failure = RoomCheck::BeforeDownload(Result.Space))
            Result.Warnings.push_back(*failure);
        Finish();
    }

    bool AsksSizes = false;
    QElapsedTimer SinceAnswer;
    quint32 Answered = 0; ///< findings, with a size or without
};

} // namespace

JobMaker const MakeCheckJob = MakeJob<CheckJob>;

} // namespace Varnholt::Host
