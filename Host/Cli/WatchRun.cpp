#include "Host/Cli/WatchRun.hpp"

#include "Host/Core/Settings/InstallRecord.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

WatchRun::WatchRun(HostSettings const& p_Settings, Presenter& p_Output)
    : Settings(p_Settings)
    , Output(p_Output)
{
    QObject::connect(&Signals, &SignalWatch::EndRequested, &Follower,
                     [] { QCoreApplication::exit(SignalWatch::c_Status); });
    QObject::connect(&Follower, &RunFollower::Progressed, &Follower,
                     [this](RunSnapshot const& p_Snapshot) { Output.ShowProgress(p_Snapshot); });
    QObject::connect(
        &Follower, &RunFollower::Ended, &Follower,
        [this](RunResult const& p_Result, QString const& p_Game) { OnEnded(p_Result, p_Game); });
}

int WatchRun::Run()
{
    if (Follower.Follow(InstallRecord::Folders(Settings)))
        return QCoreApplication::exec();
    Failure const failure{FailureKind::NothingRunning, Settings.File(), {}};
    Output.ShowFailure(failure);
    return failure.ExitStatus();
}

void WatchRun::OnEnded(RunResult const& p_Result, QString const& p_Game)
{
    Output.ShowResult(RunRequest(), p_Result, p_Game); // of an update, as it was one
    if (p_Result.Problem)
        Output.ShowFailure(*p_Result.Problem);
    QCoreApplication::exit(p_Result.Problem ? p_Result.Problem->ExitStatus() : EXIT_SUCCESS);
}

} // namespace Varnholt::Host
