#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Session/HostSession.hpp"

#include <QObject>

#include <memory>
#include <vector>

namespace Varnholt::Host {

/// One command from the loading of the module to its result.
class Program : public QObject {
    Q_OBJECT

public:
    Program(Choice p_Choice, Presenter& p_Output);

    /// Runs the event loop. \return the exit status
    int Run();

private:
    void CloseSession();
    void OnOpened(ModuleInfo const& p_Info);
    /// \return the exit status: that of the last one that cannot be loaded
    int ShowModulesBeside(QString const& p_File);
    void OnStatus(InstallStatus const& p_Status);
    void TellSpace(std::vector<VolumeSpace> const& p_Space);
    /// Called with what an uninstallation would delete. \return whether that shall be
    bool ConfirmDeletion(RunResult const& p_Preview);
    void OnEnded(RunResult const& p_Result);
    void OnGameEnded(GameEnd const& p_End);
    void Conclude();
    void OnEndRequested();
    void OnToggleRequested();
    /// Asks what must be asked; false when the program has come to its end with that.
    bool AskUser(InstallStatus const& p_Status);
    void StartRun();
    void Fail(Failure const& p_Failure);
    void Quit(int p_Status);

    Choice Chosen;
    Presenter& Output;
    QString const Server; ///< that the game's account is of
    SignalWatch Signals;
    std::unique_ptr<HostSession> Session;
    QString GameName;
    std::vector<VolumeSpace> ToldSpace;
    RunResult Result;
    bool IsRunning = false;
};

} // namespace Varnholt::Host
