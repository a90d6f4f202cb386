#include "Host/Window/Main/GameController.hpp"

#include "Host/Window/Main/RunText.hpp"

#include <utility>

namespace Varnholt::Host {

namespace {

using Type = RunRequest::Type;

RunRequest WithoutPassword(RunRequest p_Request)
{
    p_Request.Password.clear();
    return p_Request;
}

/// Whether a dialog shows how it ends.
bool IsPreview(Type p_Kind)
{
    return p_Kind == Type::PreviewInstall || p_Kind == Type::PreviewUninstall;
}

/// Whether it leaves another installation than it has found.
bool Changes(Type p_Kind)
{
    return p_Kind == Type::Install || p_Kind == Type::Update || p_Kind == Type::Repair ||
           p_Kind == Type::Uninstall;
}

} // namespace

GameController::GameController(HostOptions p_Options, QObject* p_Parent)
    : QObject(p_Parent)
    , Chosen(std::move(p_Options))
{
    constexpr int c_StatusMilliseconds = 2'000;

    StatusTimer.setInterval(c_StatusMilliseconds);
    connect(&StatusTimer, &QTimer::timeout, this, [this] {
        if (RunningId == 0) // nobody else can be at work then
            ReadStatus();
    });
}

GameController::~GameController() = default;

void GameController::Start(Type p_Kind)
{
    RunRequest request;
    request.Kind = p_Kind;
    Start(request);
}

void GameController::Start(RunRequest const& p_Request)
{
    if (RunningId != 0 && IsQuiet) { // the user comes first
        Next = p_Request;
        Session->Interrupt();
        return;
    }
    Begin(p_Request, false);
}

void GameController::Begin(RunRequest const& p_Request, bool p_IsQuiet)
{
    if (!Session)
        return;
    if (IsStale && !p_IsQuiet && CanReopen()) {
        Next = p_Request;
        return Renew();
    }
    if (!IsBusy()) {
        IsQuiet = p_IsQuiet;
        Running = WithoutPassword(p_Request);
        RunningId = Session->Start(p_Request);
    } else { // which the session refuses, and what is under way goes on
        Session->Start(p_Request);
        return;
    }
    if (p_IsQuiet)
        return;
    Known.Job = Running;
    Known.Snapshot = {};
    Known.IsPaused = false;
    if (!IsPreview(Running.Kind)) {
        Known.Problem.reset();
        Known.GivenUp.clear();
        Tell(RunText::Begun(Running));
    }
    Q_EMIT Changed();
}

void GameController::OnEnded(quint64 p_Id, RunResult const& p_Result)
{
    if (p_Id != RunningId)
        return;
    RunningId = 0;
    if (IsQuiet) {
        Known.IsUpdateKnown =
            p_Result.Problem && p_Result.Problem->Kind == FailureKind::UpdateAvailable;
        if (p_Result.Problem && p_Result.Problem->Kind != FailureKind::Interrupted)
            Tell(RunText::Sentence(*p_Result.Problem));
    } else {
        Known.Job.reset();
        Known.IsPaused = false;
        if (!IsPreview(Running.Kind))
            Conclude(Running, p_Result);
    }
    RunRequest const ended = Running;
    bool const wasQuiet = IsQuiet;
    if (std::optional<RunRequest> const next = std::exchange(Next, std::nullopt))
        Begin(*next, false);
    else
        ReadStatus();
    Q_EMIT Changed();
    if (!wasQuiet)
        Q_EMIT RunEnded(ended, p_Result);
}

void GameController::Conclude(RunRequest const& p_Request, RunResult const& p_Result)
{
    Known.Problem = p_Result.Problem;
    Known.Failed = p_Request;
    Known.GivenUp = p_Result.Findings;
    if (!p_Result.OutputFile.isEmpty())
        OutputFile = p_Result.OutputFile;
    if (!p_Result.Problem) {
        Known.IsUpdateKnown = Known.IsUpdateKnown && !Changes(p_Request.Kind);
        return Tell(RunText::Done(p_Request, p_Result));
    }
    FailureKind const kind = p_Result.Problem->Kind;
    if (kind == FailureKind::UpdateAvailable)
        Known.IsUpdateKnown = true;
    bool const isWanted = kind == FailureKind::Interrupted || kind == FailureKind::UpdateAvailable;
    if (kind == FailureKind::Interrupted)
        Known.Problem.reset();
    Tell(RunText::Sentence(*p_Result.Problem),
         isWanted ? Notice::Level::Information : Notice::Level::Warning);
}

void GameController::OnStatus(InstallStatus const& p_Status)
{
    // The other program may have brought the update that was found.
    if (Known.Status && Known.Status->Download && !p_Status.Download)
        Known.IsUpdateKnown = HasLooked = false;
    Known.Session = GameState::Stage::Open;
    Known.Status = p_Status;
    StatusTimer.start();
    Q_EMIT Changed();
    LookForUpdate(p_Status);
}

/// Asks once, quietly, whether there is a newer build of a game that is complete.
void GameController::LookForUpdate(InstallStatus const& p_Status)
{
    bool const isComplete = p_Status.IsInstalled && p_Status.FolderExists &&
                            !p_Status.IsUnfinished && !p_Status.Build.isEmpty();
    if (!isComplete || p_Status.Download || RunningId != 0 || std::exchange(HasLooked, true))
        return;
    RunRequest request;
    request.Kind = Type::Check;
    request.Quick = true;
    Begin(request, true);
}

void GameController::OnGameEnded(GameEnd const& p_End)
{
    Games.erase(p_End.ProcessId);
    Known.IsGameRunning = !Games.empty();
    if (QString const error = p_End.ErrorText(); error.isEmpty()) {
        Tell(tr("The game has ended."));
    } else {
        Failure const failure{FailureKind::GameFailed, OutputFile, error};
        if (!IsBusy()) {
            Known.Problem = failure;
            Known.Failed = {};
            Known.Failed.Kind = Type::Play;
        }
        Tell(RunText::Sentence(failure), Notice::Level::Warning);
    }
    Q_EMIT Changed();
    Q_EMIT GameEnded(p_End);
}

void GameController::Pause()
{
    if (!Session || !IsBusy())
        return;
    Session->Pause();
    Known.IsPaused = true;
    Q_EMIT Changed();
}

void GameController::Continue()
{
    if (!Session)
        return;
    Session->Continue();
    Known.IsPaused = false;
    Q_EMIT Changed();
}

void GameController::StopRepair()
{
    if (Session)
        Session->StopRepair();
}

void GameController::Interrupt()
{
    if (Session)
        Session->Interrupt();
}

void GameController::SetLanguage(QString const& p_Code)
{
    if (Session)
        Session->SetLanguage(p_Code);
}

void GameController::ReadStatus()
{
    if (Session)
        Session->ReadStatus();
}

void GameController::ForgetProblem()
{
    Known.Problem.reset();
    Known.GivenUp.clear();
    Q_EMIT Changed();
}

void GameController::TellNotice(Notice const& p_Notice)
{
    Q_EMIT Told({p_Notice.Text(), p_Notice.Severity(), p_Notice.Time});
}

void GameController::Tell(QString const& p_Text, Notice::Level p_Severity)
{
    Q_EMIT Told({p_Text, p_Severity});
}

} // namespace Varnholt::Host
