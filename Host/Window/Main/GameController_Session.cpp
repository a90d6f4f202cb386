#include "Host/Window/Main/GameController.hpp"
#include "Host/Window/Main/RunText.hpp"

#include <utility>

namespace Varnholt::Host {

namespace {

/// A paused run measures nothing: it stands where it stood.
RunSnapshot Measured(RunSnapshot p_Now, RunSnapshot const& p_Before)
{
    if (p_Now.Phase != RunPhase::Suspended || p_Now.BytesTotal > 0)
        return p_Now;
    p_Now.FileNumber = p_Before.FileNumber;
    p_Now.FileCount = p_Before.FileCount;
    p_Now.File = p_Before.File;
    p_Now.BytesDone = p_Before.BytesDone;
    p_Now.BytesTotal = p_Before.BytesTotal;
    return p_Now;
}

} // namespace

void GameController::SetOptions(HostOptions const& p_Options, bool p_NeedsSession)
{
    bool const isOther = p_Options.BytesPerSecond != Chosen.BytesPerSecond;
    QString const file = Chosen.ModuleFile;
    Chosen = p_Options;
    Chosen.ModuleFile = file;
    if (Session && isOther)
        Session->SetRateLimit(Chosen.BytesPerSecond);
    IsStale = Session && (IsStale || p_NeedsSession);
    if (IsStale && CanReopen())
        Renew();
}

/// What is to be begun in the new session stays.
void GameController::Renew()
{
    auto next = std::exchange(Next, std::nullopt);
    Reopen();
    Next = std::move(next);
}

std::optional<QString> GameController::Choose(QString const& p_ModuleFile)
{
    if (p_ModuleFile == Chosen.ModuleFile && Known.Session != GameState::Stage::Failed && Session)
        return std::nullopt;
    if (IsBusy())
        return tr("%1 is being worked on. Stop that, or wait for its end, before you choose "
                  "another game.")
            .arg(Module.Name);
    Chosen.ModuleFile = p_ModuleFile;
    Reopen();
    return std::nullopt;
}

void GameController::Reopen()
{
    StatusTimer.stop();
    Known = {};
    Module = {};
    Games.clear();
    Next.reset();
    Q_EMIT Changed();
    if (Session)
        LetGo();
    else
        OpenChosen();
}

/// Called when the session that it waits for does not open.
void GameController::RefuseNext(Failure const& p_Failure)
{
    auto next = std::exchange(Next, std::nullopt);
    if (!next)
        return;
    next->Password.clear();
    RunResult result;
    result.Problem = p_Failure;
    Q_EMIT RunEnded(*next, result);
}

void GameController::OpenChosen()
{
    HasLooked = IsStale = false;
    RunningId = 0;
    Session = std::make_unique<HostSession>(Chosen);
    Listen();
    Session->Open();
}

void GameController::Listen()
{
    HostSession* const session = Session.get();
    connect(session, &HostSession::Opened, this, [this](ModuleInfo const& p_Info) {
        Module = p_Info;
        Q_EMIT Opened();
        ReadStatus();
        if (auto const next = std::exchange(Next, std::nullopt))
            Begin(*next, false);
    });
    connect(session, &HostSession::OpenFailed, this, [this](Failure const& p_Failure) {
        Known.Session = GameState::Stage::Failed;
        Known.Problem = p_Failure;
        Tell(RunText::Sentence(p_Failure), Notice::Level::Warning);
        Q_EMIT Changed();
        RefuseNext(p_Failure);
    });
    connect(session, &HostSession::StatusRead, this, &GameController::OnStatus);
    connect(session, &HostSession::Progressed, this, [this](RunSnapshot const& p_Snapshot) {
        if (!IsBusy())
            return;
        Known.Snapshot = Measured(p_Snapshot, Known.Snapshot);
        Known.IsPaused = Session->IsPaused();
        Q_EMIT Changed();
    });
    connect(session, &HostSession::Noticed, this, &GameController::TellNotice);
    connect(session, &HostSession::Ended, this, &GameController::OnEnded);
    connect(session, &HostSession::GameStarted, this, [this](qint64 p_ProcessId) {
        Games.insert(p_ProcessId);
        Known.IsGameRunning = true;
        Tell(tr("The game runs."));
        Q_EMIT Changed();
    });
    connect(session, &HostSession::GameEnded, this, &GameController::OnGameEnded);
    connect(session, &HostSession::Closed, this, &GameController::OnClosed, Qt::QueuedConnection);
}

void GameController::LetGo()
{
    // It tells nothing more than that it has closed.
    Session->disconnect(this);
    connect(Session.get(), &HostSession::Closed, this, &GameController::OnClosed,
            Qt::QueuedConnection);
    Session->Close();
}

void GameController::OnClosed()
{
    if (!Session)
        return; // told twice
    Session.reset();
    if (IsClosing)
        Q_EMIT Closed();
    else
        OpenChosen();
}

void GameController::Close()
{
    if (std::exchange(IsClosing, true))
        return;
    StatusTimer.stop();
    if (Session)
        LetGo();
    else
        QMetaObject::invokeMethod(this, &GameController::Closed, Qt::QueuedConnection);
}

} // namespace Varnholt::Host
