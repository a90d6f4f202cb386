#include "Host/Core/Folder/GameRemoval.hpp"
#include "Host/Core/Jobs/GameOutput.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

#include <QCoreApplication>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// Forgets the installation, with or without its files, or finds out which of them would go. The
/// files go first, those with secrets before all others; what is known of the game goes last:
/// whoever stops it in between, gives the same command again.
class UninstallJob : public Job {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::UninstallJob)

public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override
    {
        auto failure = GameFailure();
        if (Is(IsPreview))
            return failure;
        if (failure && failure->Kind == FailureKind::FolderMissing) {
            Request.DeletesFiles = false; // nothing is left to delete, and no build is needed
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

    void Start() override
    {
        if (Is(IsPreview) || Request.DeletesFiles)
            StartUp();
        else
            Forget();
    }

    void OnBuildKnown() override
    {
        Settle([this] { BeginRemoval(); });
    }

    void Work() override
    {
        if (!Removal || !Removal->IsFinished())
            return;
        if (!Is(IsPreview))
            return Forget();
        Result.Amount = Removal->Going();
        Result.Staying = Removal->Staying();
        Finish();
    }

    /// Nothing more is wanted of a server once the build is known.
    void OnGaveUp(Failure const& p_Failure) override
    {
        if (!IsWorking())
            Job::OnGaveUp(p_Failure);
    }

    RunPhase Phase() const override
    {
        if (!Removal)
            return RunPhase::Connecting;
        return Is(IsPreview) ? RunPhase::Comparing : RunPhase::Uninstalling;
    }

    RunSnapshot Look() override
    {
        if (!Removal || Is(IsPreview))
            return Job::Look();
        RunSnapshot snapshot;
        snapshot.Phase = Phase();
        snapshot.FileCount = Removal->FileCount();
        snapshot.FileNumber = std::min(Removal->FileNumber(), snapshot.FileCount);
        snapshot.BytesTotal = Removal->BytesTotal();
        snapshot.BytesDone = std::min(Removal->BytesDone(), snapshot.BytesTotal);
        return snapshot;
    }

    void Release() override
    {
        if (Removal)
            Removal->Stop();
    }

private:
    void BeginRemoval()
    {
        Removal = std::make_shared<GameRemoval>(Context.Module.Manifest, Folder(),
                                                Context.Info.LoginFiles);
        if (Is(IsPreview))
            return Context.Module.EnqueueAsync([removal = Removal] { removal->Look(); });
        Context.Record.MarkUnfinished(); // an update after a half removal looks at every file
        Context.Module.EnqueueAsync([removal = Removal] { removal->Run(); });
    }

    /// What is left of the files, the module tries once more, and tells why they stay.
    void Forget()
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

    void Judge(QString const& p_Folder)
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
            named += tr(" and %1 more").arg(remaining.size() - c_MostNamed);
        Fail({FailureKind::FilesNotRemoved, p_Folder, named});
    }

    std::shared_ptr<GameRemoval> Removal; ///< shared with the worker
};

} // namespace

JobMaker const MakeUninstallJob = MakeJob<UninstallJob>;

} // namespace Varnholt::Host
