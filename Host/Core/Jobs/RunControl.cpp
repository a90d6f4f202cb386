#include "Host/Core/Jobs/RunControl.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>

#include <algorithm>
#include <limits>
#include <utility>

namespace Varnholt::Host {

namespace {

bool IsAboutLocales(RunRequest const& p_Request)
{
    return p_Request.Kind == RunRequest::Type::ListLocales ||
           p_Request.Kind == RunRequest::Type::ChooseLocale;
}

} // namespace

RunControl::RunControl(RunContext const& p_Context)
    : Context(p_Context)
    , Reader(p_Context.Module, p_Context.Door)
    , Room(p_Context.Options.FreeBytes)
    , Plan(p_Context.Module, p_Context.Door)
{
    Clock.start();
}

RunControl::~RunControl()
{
    if (Examiner)
        Examiner->Stop();
}

void RunControl::Begin(RunRequest const& p_Request)
{
    if (CurrentStep != Step::Idle)
        return;
    Request = p_Request;
    Result = {};
    Result.Transfers = Context.Ledger.Count();
    DiscardQueue();
    PumpHeld = false;
    HasInstalled = false;
    WantsEveryFile = p_Request.Kind == RunRequest::Type::Repair || Context.Record.IsUnfinished();
    Paused = false;
    // An installation begins in another folder, which the module must not take for the old one.
    Context.Gate.SetPreview(IsInspection(Request) ||
                            Request.Kind == RunRequest::Type::ListLocales ||
                            Request.Kind == RunRequest::Type::Install);
    Passes = 0;
    LastMissing = std::numeric_limits<std::size_t>::max();
    Blocked.reset();
    PassedOver.clear();
    Told.clear();
    if (auto failure = Preconditions())
        return Fail(*failure);
    OpenDoor();
    if (Request.Kind == RunRequest::Type::Uninstall && !Request.DeletesFiles)
        BeginUninstall();
    else if (UsesKept && Kept.empty())
        Fail(NothingKept());
    else if (Request.Kind == RunRequest::Type::Check && Request.Quick)
        AskForVersion();
    else
        StartUp();
}

bool RunControl::Completes(RunRequest const& p_Request)
{
    return p_Request.Kind == RunRequest::Type::Install ||
           p_Request.Kind == RunRequest::Type::Update || p_Request.Kind == RunRequest::Type::Repair;
}

std::optional<Failure> RunControl::Preconditions()
{
    InstallRecord const& record = Context.Record;
    if (auto failure = OfflinePreconditions())
        return failure;
    if (Request.Kind == RunRequest::Type::ListLocales)
        return std::nullopt;
    if (Request.Kind == RunRequest::Type::ChooseLocale && !record.IsInstalled())
        return std::nullopt;
    if (IsInspection(Request))
        return InspectionPreconditions();
    if (Request.Kind == RunRequest::Type::Play)
        return PlayPreconditions();
    if (Request.Kind == RunRequest::Type::Uninstall)
        return UninstallPreconditions();
    if (Request.Kind == RunRequest::Type::Install) {
        QString const folder = FolderCheck::Normalized(Request.Argument);
        bool const isMoved = !QFileInfo::exists(record.Folder()) && FolderCheck::HoldsGame(folder);
        if (record.IsInstalled() && record.Folder() != folder && !isMoved && !Request.Confirmed)
            return Failure{FailureKind::InstalledElsewhere, record.Folder(), {}};
        return FolderCheck::ForInstall(folder, record.Folder(), Request.Confirmed);
    }
    if (!record.IsInstalled())
        return Failure{FailureKind::NotInstalled, Context.Module.GetName(), {}};
    // An absent drive must not lead to a second installation at its mount point.
    if (!QFileInfo(record.Folder()).isDir())
        return Failure{FailureKind::FolderMissing, record.Folder(), {}};
    if (auto failure = FolderCheck::ForWriting(record.Folder()))
        return failure;
    return LockFolder(record.Folder());
}

std::optional<Failure> RunControl::LockFolder(QString const& p_Folder)
{
    Lock = std::make_unique<FolderLock>(p_Folder);
    if (Lock->Take())
        return std::nullopt;
    Lock.reset();
    return Failure{FailureKind::FolderLocked, p_Folder, {}};
}

void RunControl::OnConnected()
{
    Launcher::StandartApplication& module = Context.Module;
    Result.Build = module.Manifest.BuildStr;
    Context.Watch.Reset();
    NoticeCopies();
    NoticeHostList();
    if (IsAboutLocales(Request))
        return AnswerLocales();
    if (Request.Kind == RunRequest::Type::Uninstall)
        return BeginUninstall();
    if (Request.Kind == RunRequest::Type::AskMirrors)
        return Settle([this] { AskMirrors(); });
    if (module.Manifest.Files.empty() && module.Manifest.StreamedFiles.empty())
        return Fail({FailureKind::BuildEmpty, module.RemoteBuild, {}});
    QString const locale = module.GetAppLocale();
    if (!module.Manifest.Locales.empty() && module.Manifest.Locales.count(locale) == 0)
        NoticeOnce(QStringLiteral("The build does not offer the language %1; its files are left "
                                  "out until another one is chosen.")
                       .arg(locale));
    if (Request.Kind == RunRequest::Type::Play)
        return Settle([this] { Play(); });
    if (IsInspection(Request))
        return Settle([this] { BeginInspection(); });

    CurrentStep = Step::Running;
    if (Request.Kind == RunRequest::Type::Install && !HasInstalled) {
        if (auto failure = BeginInstall())
            Fail(*failure);
    } else if (WantsEveryFile || Context.Record.CompletedBuild() != module.RemoteBuild) {
        // The ordinary comparison trusts the pending lists for streamed files and for those of a
        // first build only; they know nothing of another build's.
        BeginRepair();
    }
}

std::optional<Failure> RunControl::BeginInstall()
{
    QString const folder = FolderCheck::Normalized(Request.Argument);
    if (!QDir().mkpath(folder))
        return Failure{FailureKind::FolderUnwritable, folder,
                       QStringLiteral("it cannot be created")};
    if (auto failure = FolderCheck::ForWriting(folder))
        return failure;
    if (auto failure = LockFolder(folder))
        return failure;
    Context.Gate.SetPreview(false);
    HasInstalled = true;
    WantsEveryFile = true;
    Context.Record.MarkUnfinished();
    Context.Gate.Open();
    Context.Module.Install(folder, false);
    return std::nullopt;
}

void RunControl::BeginRepair()
{
    WantsEveryFile = true;
    Context.Record.MarkUnfinished();
    Context.Gate.Open();
    Context.Module.Repair();
}

void RunControl::BeforePump()
{
    if (CurrentStep != Step::Running)
        return;
    // Before the first file is asked for: the door is ahead of the module.
    Plan.Look(Folder());
    CheckRoom(Reader.Phase());
    if (Paused)
        StopTransfer();
}

void RunControl::AfterPump()
{
    if (CurrentStep != Step::Idle)
        if (auto const problem = Context.Door->Snapshot().GaveUp)
            OnGaveUp(ExplainFetch(*problem));
    if (CurrentStep == Step::StartingUp) {
        if (Context.Module.UISetting.State != Launcher::ApplicationUISetting::StateStartingUp)
            OnConnected();
        else if (Context.Watch.Observe())
            OnStartUpFailed(StartUpFailure());
    } else if (CurrentStep == Step::Settling && Context.Watch.Observe()) {
        Context.Watch.Reset();
        std::exchange(AfterSettling, nullptr)();
    } else if (CurrentStep == Step::Inspecting && Survey) {
        LookAtSizes();
    } else if (CurrentStep == Step::Inspecting && Examiner && Examiner->IsFinished()) {
        OnInspected();
    } else if (CurrentStep == Step::Running && !IsSuspended() && Context.Watch.Observe()) {
        OnQuiet();
    }
    // After a drop a refused file would be asked for without end. It is passed over.
    if (CurrentStep == Step::Running && !Paused && Context.Ledger.ComesNoFurther())
        StopTransfer();
    ShowProgress();
}

void RunControl::Settle(std::function<void()> p_Next)
{
    Context.Watch.Reset();
    AfterSettling = std::move(p_Next);
    CurrentStep = Step::Settling;
}

void RunControl::Finish()
{
    bool const completes = Completes(Request);
    if (completes)
        if (auto const failure = LinkFailure())
            return Fail(*failure);
    // Of the other runs only this one leaves the game with a realm list to use.
    if (completes || Request.Kind == RunRequest::Type::Play)
        NoticeRealmList();
    // After a power cut only the mark would tell of files that were still on their way to the disk.
    if (completes && Context.Record.IsUnfinished()) {
        auto files = Context.Module.Manifest.Files;
        auto const& streamed = Context.Module.Manifest.StreamedFiles;
        files.insert(files.end(), streamed.begin(), streamed.end());
        for (GameVolumes::Share const& share : GameVolumes::Of(Folder(), files))
            Context.Options.Flush(share.Folder);
    }
    if (completes && !Context.Record.MarkComplete(Context.Module.RemoteBuild))
        return Fail({FailureKind::SettingsUnwritable, Context.Record.File(), {}});
    if (completes &&
        !Context.Copies.Keep(Context.Door->Fetched(), Context.Door.PathOf(VersionFile())))
        NoticeOnce(QStringLiteral("What starts the game without a server cannot be kept in %1.")
                       .arg(Context.Copies.Folder()));
    End();
}

/// What is left in the queue of a run that was stopped would begin it anew.
void RunControl::DiscardQueue()
{
    std::queue<std::function<void()>> closures; // destroyed without the lock
    QMutexLocker const lock(&Context.Module.SyncQueueMutex);
    closures.swap(Context.Module.SyncQueue);
}

void RunControl::Fail(Failure const& p_Failure)
{
    Result.Problem = p_Failure;
    // What the module has queued must not begin behind the user's back.
    PumpHeld = true;
    Context.Gate.Close();
    Context.Module.SuspendDownload();
    AbandonReplies();
    End();
}

void RunControl::End()
{
    Result.Transfers = Context.Ledger.Count() - Result.Transfers;
    Result.Folder = Folder();
    Result.Locale = Context.Module.GetAppLocale();
    Context.Gate.Close();
    Context.Gate.Release();
    Context.Door->EndRun();
    Paused = false;
    AfterSettling = nullptr;
    if (Examiner)
        Examiner->Stop();
    Examiner.reset();
    Survey.reset();
    Mirrors.reset();
    Asking.reset();
    Context.Gate.SetPreview(false);
    Lock.reset();
    CurrentStep = Step::Idle;
    RunSnapshot last;
    last.Phase = Result.Problem ? RunPhase::Failed : RunPhase::Finished;
    LastSnapshot = last;
    Q_EMIT Progressed(last);
    Q_EMIT Ended(Result);
}

RunPhase RunControl::CurrentPhase() const
{
    if (CurrentStep == Step::Idle)
        return RunPhase::Idle;
    if (CurrentStep == Step::Inspecting)
        return InspectionSnapshot().Phase;
    RunPhase const phase = CurrentStep == Step::Running ? Reader.Phase() : RunPhase::Connecting;
    // Through a door that is shut nothing comes, even where a transfer has not been stopped yet.
    bool const usesDoor =
        phase == RunPhase::WaitingForHost || phase == RunPhase::AskingSizes || IsDownloading(phase);
    return Paused && usesDoor ? RunPhase::Suspended : phase;
}

void RunControl::ShowProgress()
{
    constexpr qint64 c_IntervalMilliseconds = 100;

    if (CurrentStep == Step::Idle)
        return;
    RunPhase const phase = CurrentPhase();
    qint64 const now = Clock.elapsed();
    if (phase == LastSnapshot.Phase && now - LastShown < c_IntervalMilliseconds)
        return;
    LastShown = now;
    Context.Module.UISettingChanged = false;
    RunSnapshot const snapshot =
        CurrentStep == Step::Inspecting ? InspectionSnapshot() : Reader.Read(phase);
    if (snapshot == LastSnapshot)
        return;
    LastSnapshot = snapshot;
    Q_EMIT Progressed(snapshot);
}

} // namespace Varnholt::Host
