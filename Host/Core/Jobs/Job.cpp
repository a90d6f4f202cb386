#include "Host/Core/Jobs/Job.hpp"

#include "Host/Core/Folder/MissingFiles.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QFileInfo>

#include <utility>

namespace Varnholt::Host {

Job::Job(RunContext const& p_Context, RunRequest p_Request, unsigned p_Traits)
    : Context(p_Context)
    , Request(std::move(p_Request))
    , Reader(p_Context.View, p_Context.Module.Manifest, p_Context.Door, p_Context.Gate)
    , Traits(p_Traits)
{
    Clock.start();
}

Job::~Job() = default;

void Job::Begin()
{
    TransfersBefore = Context.Ledger.Count();
    Context.View.DiscardQueue();
    // An installation begins in another folder, which the module must not take for the old one.
    Context.Gate.SetPreview(Is(IsPreview));
    if (Is(NeedsServers) && Context.Options.Offline)
        return Fail({FailureKind::OptionInvalid, QStringLiteral("offline"),
                     tr("this command asks servers")});
    auto failure = Prepare();
    if (!failure && Is(Records))
        failure = Context.Record.WriteRefusal();
    if (failure)
        return Fail(*failure);
    // This run verifies nothing: a later one with a key must look at the game again.
    if (!Context.Trust.IsOn() && (Is(Records) || !Is(IsPreview)))
        Context.Trust.ForgetGame();
    OpenDoor();
    Start();
}

void Job::AfterQueue()
{
    if (!Over && Context.Gate.IsInterrupted())
        Interrupt();
    if (auto const problem = Context.Door->Snapshot().GaveUp; problem && !Over)
        problem->IsDistrust() ? Distrust(ExplainFetch(*problem)) : OnGaveUp(ExplainFetch(*problem));
    if (!Over)
        Go();
    if (Over)
        return;
    Measure();
    ShowProgress();
}

void Job::Go()
{
    switch (State) {
    case Step::StartingUp:
        if (!Context.View.IsStartingUp())
            OnConnected();
        else if (IsSilent())
            OnStartUpFailed(StartUpFailure());
        return;
    case Step::Settling:
        if (!IsSilent())
            return;
        AwaitSilence();
        State = Step::Working;
        return std::exchange(AfterSettling, nullptr)();
    case Step::Working:
        return Work();
    }
}

bool Job::IsSilent()
{
    constexpr int c_TurnsToBelieve = 2;

    // The worker first: once it rests, only this thread can give it something to do.
    bool const isSilent = Context.Worker.IsIdle() && Context.View.Queued() == 0 &&
                          !Context.View.HasTransfer() && Context.Ledger.IsEmpty() &&
                          !Context.View.AwaitsReply();
    SilentTurns = isSilent ? SilentTurns + 1 : 0;
    return SilentTurns >= c_TurnsToBelieve;
}

void Job::OnGaveUp(Failure const& p_Failure)
{
    if (State == Step::StartingUp)
        OnStartUpFailed(p_Failure);
    else
        Fail(p_Failure);
}

void Job::Settle(std::function<void()> p_Next)
{
    AwaitSilence();
    AfterSettling = std::move(p_Next);
    State = Step::Settling;
}

void Job::Interrupt()
{
    if (!Over)
        Fail({FailureKind::Interrupted, {}, {}});
}

void Job::Finish()
{
    // A module that was told to stop falls silent as one that is done.
    if (Context.Gate.IsInterrupted())
        return Interrupt();
    if (ProvesGame())
        Context.Trust.MarkGame();
    if (auto const unkept = Is(Records) ? Context.Record.Save() : std::nullopt)
        return Fail(*unkept);
    End();
}

void Job::Distrust(Failure const& p_Failure)
{
    Context.Trust.ForgetGame();
    Fail(p_Failure);
}

void Job::Fail(Failure const& p_Failure)
{
    Result.Problem = p_Failure;
    Context.Gate.Close();
    Context.Module.SuspendDownload();
    Context.View.AbandonReplies();
    End();
}

void Job::End()
{
    Over = true;
    Measure();
    Release();
    Result.Transfers = Context.Ledger.Count() - TransfersBefore;
    if (Result.Folder.isEmpty())
        Result.Folder = Folder();
    Result.Locale = Context.Module.GetAppLocale();
    Context.Gate.Close();
    Context.Gate.Release();
    Context.Gate.SetPreview(false);
    Context.Door->EndRun();
    if (Trusted)
        Context.Trust.Remember(*Trusted);
    Lock.reset();
    RunSnapshot last;
    last.Phase = Result.Problem ? RunPhase::Failed : RunPhase::Finished;
    Q_EMIT Progressed(last);
    Q_EMIT Ended(Result);
}

RunTotals Job::Count() const
{
    RunTotals totals;
    totals.Files = Context.Ledger.Count() - TransfersBefore;
    totals.Bytes = Context.Door->Snapshot().Received;
    return totals;
}

void Job::Measure()
{
    constexpr quint64 c_Second = 1'000;

    RunTotals totals = Count();
    totals.Milliseconds = Clock.elapsed();
    // Small files come while the module still asks for sizes.
    if (MovesBytes() || totals.Bytes > Result.Totals.Bytes)
        Moving += totals.Milliseconds - Measured;
    Measured = totals.Milliseconds;
    if (Moving > 0)
        totals.Rate = totals.Bytes * c_Second / static_cast<quint64>(Moving);
    Result.Totals = totals;
}

void Job::ShowProgress()
{
    constexpr qint64 c_IntervalMilliseconds = 100;

    qint64 const now = Clock.elapsed();
    RunPhase const phase = Phase();
    if (phase == LastPhase && now - LastShown < c_IntervalMilliseconds)
        return;
    LastPhase = phase;
    LastShown = now;
    Context.Module.UISettingChanged = false;
    RunSnapshot snapshot = Look();
    if (snapshot.Wait && snapshot.Wait->IsRetry())
        snapshot.Phase = RunPhase::WaitingToRetry;
    if (snapshot == LastSnapshot)
        return;
    LastSnapshot = snapshot;
    Q_EMIT Progressed(snapshot);
}

void Job::NoticeOnce(Notice const& p_Notice)
{
    if (Told.insert(p_Notice.Text()).second)
        Q_EMIT Noticed(p_Notice);
}

std::optional<Failure> Job::GameFailure() const
{
    InstallRecord const& record = Context.Record;
    if (!record.IsInstalled())
        return Failure{FailureKind::NotInstalled, Context.Info.Name, {}};
    // An absent drive must not lead to a second installation at its mount point.
    if (!QFileInfo(record.Folder()).isDir())
        return Failure{FailureKind::FolderMissing, record.Folder(), {}};
    return std::nullopt;
}

std::optional<Failure> Job::LockFolder(QString const& p_Folder)
{
    Lock = std::make_unique<FolderLock>(p_Folder);
    auto failure = Lock->Take();
    if (failure) {
        Lock.reset();
        return failure;
    }
    if (auto const warning = Lock->Warning())
        NoticeOnce(*warning);
    Q_EMIT FolderTaken(p_Folder);
    return std::nullopt;
}

void Job::RemoveLockFile()
{
    if (Lock)
        Lock->Remove();
}

std::optional<Failure> Job::LinkFailure(QString const& p_Folder) const
{
    Launcher::StandartApplication& module = Context.Module;
    auto const link = LinkOnTheWay(module.Manifest, p_Folder, module.GetAppLocale());
    if (!link)
        return std::nullopt;
    return Failure{FailureKind::LinkLeadsOut, link->Path, link->Target};
}

} // namespace Varnholt::Host
