#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Jobs/GameProcess.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Core/Session/ControlSocket.hpp"
#include "Host/Core/Session/InstallStatus.hpp"
#include "Host/Core/Settings/HostOptions.hpp"

#include <QObject>
#include <QString>

#include <set>

class QThread;

namespace Varnholt::Host {

class ModuleThread;

/// A module at work, as a program sees it. Requests return at once; what comes of them arrives by
/// signals on the thread of the session. One session at a time in a process: another one's `Open`
/// fails without harm.
///
/// While it lives, VARNHOLT_CONTENT_BASE_URL names the session's door to the network, and the
/// process's current folder is the program's own: the module takes an installation in the current
/// folder for one beside the launcher and moves it one level down, which must not happen to a user
/// who stands in the game folder. Make relative paths absolute before. Both are as before when it
/// has closed.
///
/// While a run that can be paused has its folder, the user's other programs find it there, see
/// `RunFollower`: they may follow it, pause it, let it go on and limit its rate as the owner may.
class HostSession : public QObject {
    Q_OBJECT

public:
    explicit HostSession(HostOptions const& p_Options, QObject* p_Parent = nullptr);
    /// Stops what is under way, keeping what has arrived. A module that is too busy to hear of it
    /// within a tenth of a second is left to end by itself, on its own thread.
    ~HostSession() override;

    /// Whether a module that was left is still at work. A program that ends then must do so by
    /// `std::_Exit`: what its libraries tear down at an ordinary end is still in use.
    static bool HasLeftModule();

    /// Loads the module; answered by `Opened` or `OpenFailed`.
    void Open();
    /// Answered by `StatusRead`, without network.
    void ReadStatus();
    /// Answered by any number of `Progressed` and `Noticed`, and by exactly one `Ended`, a moment
    /// later at the soonest; also when it is refused, because another request is under way or no
    /// module is loaded. \return the request's own number, from 1
    quint64 Start(RunRequest const& p_Request);
    /// Stops the transfer of the run under way, or the first one it begins, until `Continue`.
    /// What has arrived is kept. The phase becomes `Suspended` when it holds.
    void Pause();
    /// Goes on with a paused run.
    void Continue();
    /// Whether the run under way is paused, by whomever, though it may not hold yet.
    bool IsPaused() const { return Paused; }
    /// \param p_BytesPerSecond that content may arrive with, from now on; 0: as fast as it comes
    void SetRateLimit(quint64 p_BytesPerSecond);
    /// The launcher's own language, which the game has too as long as none was chosen for it.
    /// \param p_Code one of `Launcher::LauncherLocale::Available`; another one changes nothing
    void SetLanguage(QString const& p_Code);
    /// Ends the repair under way, whose result says so. What is missing by the ordinary comparison
    /// is still fetched, and the installation counts as unfinished: some files were not looked at.
    void StopRepair();
    /// Ends what is under way with the failure `Interrupted`; what has arrived is kept. Its `Ended`
    /// comes soon, whatever the module is busy with.
    void Interrupt();
    /// Interrupts, lets the module go and takes its traces in the process back; answered by
    /// `Closed`.
    void Close();

    /// Where the module lives: its event loop runs as long as the session lives. For one who
    /// watches whether it answers.
    QThread& Thread();

Q_SIGNALS:
    void Opened(ModuleInfo p_Info);
    void OpenFailed(Failure p_Failure);
    void StatusRead(InstallStatus p_Status);
    void Progressed(RunSnapshot p_Snapshot);
    void Noticed(Notice p_Notice);
    void Ended(quint64 p_Id, RunResult p_Result);
    /// The game that a request has started runs, or has run already: `GameEnded` follows, unless
    /// the session closes before.
    void GameStarted(qint64 p_ProcessId);
    void GameEnded(GameEnd p_End);
    void Closed();

private:
    void OnMessage(ControlMessage const& p_Message);
    void OnEnded(quint64 p_Id, RunResult const& p_Result);
    void EndWithoutModule(std::set<quint64> const& p_Ids, Failure const& p_Why);

    ModuleThread* Module; ///< deletes itself when it has ended
    std::set<quint64> UnderWay;
    quint64 LastId = 0;
    bool Paused = false;
    QString Game;
    ControlSocket Control{this};
    quint64 Controlled = 0; ///< the request that `Control` is open for
};

} // namespace Varnholt::Host
