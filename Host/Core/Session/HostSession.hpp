#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Core/Session/InstallStatus.hpp"
#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

#include <QObject>
#include <QThread>

namespace Varnholt::Host {

class ModuleHost;

/// A module at work, as a program sees it. Requests return at once; what comes of them arrives by
/// signals on the thread of the session. One session at a time in a process.
///
/// While it is open, VARNHOLT_CONTENT_BASE_URL names the session's door to the network; it is as
/// before when the session has ended.
///
/// The process's current folder becomes the program's own: the module takes an installation in the
/// current folder for one beside the launcher and moves it one level down, which must not happen to
/// a user who stands in the game folder. Make relative paths absolute before.
class HostSession : public QObject {
    Q_OBJECT

public:
    explicit HostSession(HostOptions const& p_Options, QObject* p_Parent = nullptr);
    /// Stops a transfer, keeping what has arrived, and waits for the threads.
    ~HostSession() override;

    /// Loads the module; answered by `Opened` or `OpenFailed`.
    void Open();
    /// Answered by `StatusRead`, without network.
    void ReadStatus();
    /// Answered by any number of `Progressed` and `Noticed`, and one `Ended`.
    void Start(RunRequest const& p_Request);
    /// Stops the transfer of the run under way, or the first one it begins, until `Continue`.
    /// What has arrived is kept. The phase becomes `Suspended` when it holds.
    void Pause();
    /// Goes on with a paused run.
    void Continue();
    /// \param p_BytesPerSecond that content may arrive with, from now on; 0: as fast as it comes
    void SetRateLimit(quint64 p_BytesPerSecond);
    /// Ends the run under way with the failure `Interrupted`; what has arrived is kept.
    void Interrupt();

    /// Where the module lives: its event loop runs as long as the session lives. For one who
    /// watches whether it answers.
    QThread& Thread() { return ModuleThread; }

Q_SIGNALS:
    void Opened(ModuleInfo p_Info);
    void OpenFailed(Failure p_Failure);
    void StatusRead(InstallStatus p_Status);
    void Progressed(RunSnapshot p_Snapshot);
    void Noticed(QString p_Text);
    void Ended(RunResult p_Result);

private:
    HostSettings Settings;
    QThread ModuleThread;
    ModuleHost* Host; ///< lives on the module thread
};

} // namespace Varnholt::Host
