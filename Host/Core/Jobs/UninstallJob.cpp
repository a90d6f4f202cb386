#include "Host/Core/Jobs/UninstallJob.hpp"

#include "Host/Core/Jobs/GameOutput.hpp"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

std::optional<Failure> UninstallJob::Prepare()
{
    auto failure = GameFailure();
    if (failure && failure->Kind == FailureKind::FolderMissing) {
        Request.DeletesFiles = false; // nothing is left to delete, and no build is needed for that
        return std::nullopt;
    }
    if (failure)
        return failure;
    if (Request.DeletesFiles) {
        Context.View.SetFolder(Folder());
        if (Context.Module.IsGameRunning())
            return Failure{FailureKind::GameRunning, Folder(), {}};
    }
    return LockFolder(Folder());
}

void UninstallJob::Start()
{
    if (Request.DeletesFiles)
        StartUp();
    else
        Forget();
}

void UninstallJob::OnBuildKnown()
{
    Settle([this] { RemoveFiles(); });
}

void UninstallJob::RemoveFiles()
{
    Context.Record.MarkUnfinished(); // an update after a half removal looks at every file
    Removal =
        std::make_shared<GameRemoval>(Context.Module.Manifest, Folder(), Context.Info.LoginFiles);
    Context.Module.EnqueueAsync([removal = Removal] { removal->Run(); });
}

void UninstallJob::Work()
{
    if (Removal && Removal->IsFinished())
        Forget();
}

/// Nothing more is wanted of a server once the build is known.
void UninstallJob::OnGaveUp(Failure const& p_Failure)
{
    if (!IsWorking())
        Job::OnGaveUp(p_Failure);
}

/// What is left of the files, the module tries once more, and tells why they stay.
void UninstallJob::Forget()
{
    QString const folder = Folder();
    Context.Module.Uninstall(Request.DeletesFiles);
    Context.Record.Forget();
    Context.Trust.ForgetGame();
    Context.Copies.Forget();
    GameOutput(Context.Record.File(), Context.Module.AppId, folder).Forget();
    // What could not be deleted is reported by messages that are still on their way.
    Settle([this, folder] { Judge(folder); });
}

void UninstallJob::Judge(QString const& p_Folder)
{
    constexpr int c_MostNamed = 3;

    QStringList remaining;
    if (Removal) {
        RemoveLockFile();
        remaining = GameRemoval::Remaining(Context.Module.Manifest, p_Folder);
    }
    if (remaining.isEmpty())
        return Finish();
    QString named = QStringList(remaining.mid(0, c_MostNamed)).join(QStringLiteral(", "));
    if (remaining.size() > c_MostNamed)
        named += QCoreApplication::translate("Varnholt::Host::UninstallJob", " and %1 more")
                     .arg(remaining.size() - c_MostNamed);
    Fail({FailureKind::FilesNotRemoved, p_Folder, named});
}

RunPhase UninstallJob::Phase() const
{
    return Removal ? RunPhase::Uninstalling : RunPhase::Connecting;
}

RunSnapshot UninstallJob::Look()
{
    if (!Removal)
        return Job::Look();
    RunSnapshot snapshot;
    snapshot.Phase = Phase();
    snapshot.FileCount = Removal->FileCount();
    snapshot.FileNumber = std::min(Removal->FileNumber(), snapshot.FileCount);
    snapshot.BytesTotal = Removal->BytesTotal();
    snapshot.BytesDone = std::min(Removal->BytesDone(), snapshot.BytesTotal);
    return snapshot;
}

void UninstallJob::Release()
{
    if (Removal)
        Removal->Stop();
}

} // namespace Varnholt::Host
