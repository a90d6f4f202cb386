#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/ProgressView.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/HostSession.hpp"

#include <QObject>

#include <memory>

namespace Varnholt::Host {

class Console;

/// One command from the loading of the module to its result.
class Program : public QObject {
    Q_OBJECT

public:
    Program(Choice p_Choice, Console& p_Console);

    /// Runs the event loop. \return the exit status
    int Run();

private:
    void OnOpened(ModuleInfo const& p_Info);
    void OnStatus(InstallStatus const& p_Status);
    void OnEnded(RunResult const& p_Result);
    void OnEndRequested();
    void OnToggleRequested();
    /// Asks what must be asked; false when the program has come to its end with that.
    bool AskUser(InstallStatus const& p_Status);
    void StartRun();
    void PrintResults(QStringList const& p_Lines);
    void Fail(Failure const& p_Failure);
    void Quit(int p_Status);

    Choice Chosen;
    Console& Output;
    ProgressView View;
    SignalWatch Signals;
    std::unique_ptr<HostSession> Session;
    QString GameName;
    bool IsRunning = false;
    bool IsPaused = false;
};

} // namespace Varnholt::Host
