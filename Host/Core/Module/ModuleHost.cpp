#include "Host/Core/Module/ModuleHost.hpp"

#include "GameModules/PendingList.hpp"
#include "Host/Core/Jobs/JobTable.hpp"
#include "Host/Core/Session/RunFollower.hpp"

#include <QDir>
#include <QLocale>

namespace Varnholt::Host {

namespace {

/// The launcher language nearest to the system's.
Launcher::LauncherLocale SystemLocale()
{
    QString const system = QLocale::system().name().left(2);
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available())
        if (locale.Code.startsWith(system))
            return locale;
    return Launcher::LauncherLocale::Table()[0];
}

int PendingCount(QString const& p_List)
{
    return Launcher::PendingList::Read(p_List, [] { return true; }).Paths.size();
}

} // namespace

ModuleHost::ModuleHost(HostOptions p_Options, HostSettings& p_Settings)
    : Options(std::move(p_Options))
    , Settings(p_Settings)
    , Environment{p_Settings, Gate, Options.UseDevChannel, SystemLocale(), {}, {}}
    , Copies(p_Settings.File())
    , Games(this)
    , TurnTimer(this)
{
    constexpr int c_TurnMilliseconds = 15; // the module's queue cannot wake anybody

    // Here and not on the module thread: others may read the environment once that runs.
    if (HostCallbacks::Claim(Environment))
        Door = std::make_unique<NetworkDoor>(Options, *this);
    TurnTimer.setInterval(c_TurnMilliseconds);
    connect(&TurnTimer, &QTimer::timeout, this, [this] { Turn(); });
    connect(&Games, &GameWatch::Started, this, &ModuleHost::GameStarted);
    connect(&Games, &GameWatch::Ended, this, &ModuleHost::GameEnded);
}

ModuleHost::~ModuleHost() = default;

void ModuleHost::Load()
{
    if (IsLoaded())
        return;
    if (auto const& failure = Settings.ReadFailure()) {
        Q_EMIT LoadFailed(*failure);
        return;
    }
    if (auto const failure = LoadModule()) {
        Q_EMIT LoadFailed(*failure);
        return;
    }
    Assemble();
    HostCallbacks::Install(*Loader.Application());
    Worker->start();
    TurnTimer.start();
    Q_EMIT Loaded(Info);
}

QString ModuleHost::ModuleFile() const
{
    return Options.ModuleFile.isEmpty() ? HostOptions::DefaultModuleFile() : Options.ModuleFile;
}

std::optional<Failure> ModuleHost::LoadModule()
{
    QString const file = ModuleFile();
    if (!Door)
        return Failure{FailureKind::ModuleUnloadable, file,
                       tr("another session of this program uses a module")};
    if (!Door->IsOpen())
        return Failure{FailureKind::Other, tr("the start"),
                       tr("the system lets nobody listen on 127.0.0.1")};
    if (QString const why = TrustRecord::WhyNoKey(Options.TrustKey);
        !Options.TrustKey.isEmpty() && !why.isEmpty())
        return Failure{FailureKind::OptionInvalid, QStringLiteral("trust-key"), why};
    return Loader.Load(file);
}

void ModuleHost::Assemble()
{
    Launcher::StandartApplication& module = *Loader.Application();
    Info = Loader.Info();
    View = std::make_unique<ModuleView>(module);
    Door->Serve(module.AppId);
    Record = std::make_unique<InstallRecord>(Settings, module.AppId);
    Trust = std::make_unique<TrustRecord>(
        Settings, module.AppId, Options.TrustKey.isEmpty() ? Info.TrustKey : Options.TrustKey,
        Options.UseDevChannel);
    Info.TrustKey = Trust->KeyText();
    Worker = std::make_unique<AsyncWorker>(module);
    Ledger = std::make_unique<TransferLedger>(
        module, [this](QString const& p_Url) { (*Door)->Reject(Door->PathIn(p_Url)); });
    // The next file need not wait for the turn timer.
    connect(Ledger.get(), &TransferLedger::Handled, this, [this] { Turn(); });
    Context =
        std::make_unique<RunContext>(RunContext{module, *View, Info, Options, *Record, *Trust, Gate,
                                                *Door, Copies, *Ledger, *Worker, Games});

    Environment.OnError = [this](QString const& p_Message) {
        QMetaObject::invokeMethod(
            this, [this, p_Message] { OnError(p_Message); }, Qt::QueuedConnection);
    };
    // The last moment before the first byte: from here on a kill leaves things half done.
    Environment.OnDownloadStarting = [this] { Record->MarkUnfinished(); };
}

void ModuleHost::OnError(QString const& p_Message)
{
    if (p_Message.startsWith(QLatin1String("File ")))
        Q_EMIT Noticed({NoticeKind::ModuleMessage, p_Message}); // the door knows the others better
}

void ModuleHost::ReadStatus()
{
    if (!IsLoaded())
        return;
    if (!Current) // in the midst of a run the module's own values must not change
        Settings.ReadAgain();
    InstallStatus status;
    status.Name = Loader.Application()->GetName();
    status.IsInstalled = Record->IsInstalled();
    status.Folder = Record->Folder();
    status.FolderExists = !status.Folder.isEmpty() && QDir(status.Folder).exists();
    status.Locale = Loader.Application()->GetAppLocale();
    status.Build = Record->CompletedBuild();
    status.IsUnfinished = Record->IsUnfinished();
    if (status.FolderExists) {
        status.PendingBase = PendingCount(status.Folder + Launcher::PendingList::c_Base);
        status.PendingStreamed = PendingCount(status.Folder + Launcher::PendingList::c_Streamed);
    }
    if (status.FolderExists && !Current)
        status.Download = RunFollower::Look(status.Folder);
    Q_EMIT StatusRead(status);
}

void ModuleHost::Start(quint64 p_Id, RunRequest const& p_Request)
{
    if (!IsLoaded() || Closing)
        return Refuse(p_Id, {FailureKind::ModuleNotLoaded, ModuleFile(), {}});
    if (Current)
        return Refuse(p_Id, {FailureKind::SessionBusy, Info.Name, {}});
    QueueHeld = false;
    Settings.ReadAgain();
    Gate.Begin();
    CurrentId = p_Id;
    Current = MakeJobFor(*Context, p_Request);
    connect(Current.get(), &Job::Progressed, this, &ModuleHost::Progressed);
    connect(Current.get(), &Job::Noticed, this, &ModuleHost::Noticed);
    connect(Current.get(), &Job::Ended, this, &ModuleHost::OnEnded);
    if (Current->Is(Job::CanPause))
        connect(Current.get(), &Job::FolderTaken, this,
                [this, p_Id](QString const& p_Folder) { Q_EMIT FolderTaken(p_Id, p_Folder); });
    Current->Begin();
}

void ModuleHost::Refuse(quint64 p_Id, Failure const& p_Failure)
{
    RunResult result;
    result.Problem = p_Failure;
    Q_EMIT Ended(p_Id, result);
}

/// Called by the job itself, which goes when that has returned.
void ModuleHost::OnEnded(RunResult const& p_Result)
{
    QueueHeld = p_Result.Problem.has_value();
    Current.release()->deleteLater();
    Q_EMIT Ended(CurrentId, p_Result);
}

void ModuleHost::Pause()
{
    if (Current && Current->Is(Job::CanPause))
        Current->Pause();
    else
        Gate.Release(); // there is no transfer to pause
}

void ModuleHost::SetRateLimit(quint64 p_BytesPerSecond)
{
    if (Door)
        (*Door)->SetRateLimit(p_BytesPerSecond);
    else
        Options.BytesPerSecond = p_BytesPerSecond;
}

void ModuleHost::Tell(void (Job::*p_What)())
{
    if (Current)
        (Current.get()->*p_What)();
}

void ModuleHost::SetLanguage(QString const& p_Code)
{
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available())
        if (locale.Code == p_Code)
            HostCallbacks::SetLocale(Environment, locale);
}

void ModuleHost::Turn()
{
    if (Closing)
        return CloseWhenRested();
    // Counted before the job looks: what the module's own thread queues meanwhile belongs to a
    // state that the job has not seen.
    std::size_t const queued = View->Queued();
    if (Current)
        Current->BeforeQueue();
    if (!QueueHeld && !(Current && Current->HoldsQueue()))
        View->RunQueue(queued);
    if (Current)
        Current->AfterQueue();
    Games.Look();
}

void ModuleHost::Close()
{
    constexpr int c_MostMilliseconds = 10'000;

    if (Closing)
        return;
    Closing = true;
    Gate.Close();
    if (!TurnTimer.isActive())
        return FinishClose();
    CloseDeadline.setRemainingTime(c_MostMilliseconds);
    Tell(&Job::Interrupt);
    Loader.Application()->SuspendDownload();
    View->AbandonReplies(); // a fetch that is cut off leaves its record behind
}

void ModuleHost::CloseWhenRested()
{
    bool const rested = Loader.Application()->CurrentDownload == nullptr && Ledger->IsEmpty();
    if (!rested && !CloseDeadline.hasExpired())
        return;
    TurnTimer.stop();
    // Queued behind the last clean-up. Waiting for an empty queue would not end: while the module
    // waits for the game to quit, it queues itself again and again.
    Loader.Application()->EnqueueAsync([this] {
        QMetaObject::invokeMethod(
            this, [this] { FinishClose(); }, Qt::QueuedConnection);
    });
}

void ModuleHost::FinishClose()
{
    Context.reset();
    if (Worker)
        Worker->Stop();
    HostCallbacks::Remove(Environment);
    if (IsLoaded()) {
        Loader.Application()->OnDownloadRetired = nullptr;
        Ledger.reset();
        Worker.reset();
        Loader.Release();
    }
    Door.reset();
    Q_EMIT Closed();
}

} // namespace Varnholt::Host
