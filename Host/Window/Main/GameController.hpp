#pragma once

#include "Host/Core/Session/HostSession.hpp"
#include "Host/Window/Main/GameState.hpp"
#include "Host/Window/Main/HistoryEntry.hpp"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>
#include <set>

namespace Varnholt::Host {

/// The one session of the program: opens it for the game that is chosen, sends it requests and
/// keeps what it says. Nothing here waits. Everything on the thread of the window.
class GameController : public QObject {
    Q_OBJECT

public:
    /// \param p_Options of every session; the module file is that of the chosen game
    explicit GameController(HostOptions p_Options, QObject* p_Parent = nullptr);
    ~GameController() override;

    GameState const& State() const { return Known; }
    /// Of the chosen game, once its module is loaded.
    ModuleInfo const& Info() const { return Module; }
    HostOptions const& Options() const { return Chosen; }
    /// Of the next run at the latest, unless the game runs; the rate limit holds at once.
    /// \param p_NeedsSession whether more is another one than the rate limit
    void SetOptions(HostOptions const& p_Options, bool p_NeedsSession);

    /// Lets the present game go and opens that of another module.
    /// \return why not, a sentence; none when it is so
    std::optional<QString> Choose(QString const& p_ModuleFile);
    /// The same module once more: after a failure, or with other options. Not during a job.
    void Reopen();
    /// A job is under way that ends only when it is done or the user says so.
    bool IsBusy() const { return Known.Job.has_value(); }

    /// Answered by `RunEnded`, also when it is refused.
    void Start(RunRequest const& p_Request);
    void Start(RunRequest::Type p_Kind);
    void Pause();
    void Continue();
    void StopRepair();
    /// Ends the job under way; what has arrived is kept.
    void Interrupt();
    void SetLanguage(QString const& p_Code);
    void ReadStatus();
    /// Has a notice told as those of the session are.
    void TellNotice(Notice const& p_Notice);
    /// The user has read of the problem.
    void ForgetProblem();
    /// Lets the game go for good; answered by `Closed`.
    void Close();

Q_SIGNALS:
    /// `State()` is another one.
    void Changed();
    /// The module is loaded; `Info()` tells of it.
    void Opened();
    void Told(Varnholt::Host::HistoryEntry p_Entry);
    void RunEnded(Varnholt::Host::RunRequest p_Request, Varnholt::Host::RunResult p_Result);
    void GameEnded(Varnholt::Host::GameEnd p_End);
    void Closed();

private:
    // _Session
    void OpenChosen();
    void Listen();
    void LetGo();
    void Renew();
    void RefuseNext(Failure const& p_Failure);
    /// Without losing what is under way, or the end of the game.
    bool CanReopen() const { return !IsBusy() && !Known.IsGameRunning; }
    void OnClosed();

    void OnStatus(InstallStatus const& p_Status);
    void OnEnded(quint64 p_Id, RunResult const& p_Result);
    void OnGameEnded(GameEnd const& p_End);
    void Conclude(RunRequest const& p_Request, RunResult const& p_Result);
    void Begin(RunRequest const& p_Request, bool p_IsQuiet);
    void LookForUpdate(InstallStatus const& p_Status);
    void Tell(QString const& p_Text, Notice::Level p_Severity = Notice::Level::Information);

    HostOptions Chosen;
    ModuleInfo Module;
    GameState Known;
    std::unique_ptr<HostSession> Session;
    QTimer StatusTimer;    ///< another program may begin or end its work in the folder
    RunRequest Running;    ///< the latest one that was started; without its password
    quint64 RunningId = 0; ///< 0: none
    bool IsQuiet = false;  ///< it is one that the user has not asked for
    bool HasLooked = false;
    bool IsClosing = false;
    bool IsStale = false; ///< the session has other options than were chosen since it began
    std::optional<RunRequest> Next; ///< once the quiet one has ended, or the session is open
    std::set<qint64> Games;
    QString OutputFile;
};

} // namespace Varnholt::Host
