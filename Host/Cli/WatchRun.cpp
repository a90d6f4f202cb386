#include "Host/Cli/WatchRun.hpp"

#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Session/RunFollower.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

int WatchRun(HostSettings const& p_Settings, Presenter& p_Output)
{
    SignalWatch signals;
    RunFollower follower;
    QObject::connect(&signals, &SignalWatch::EndRequested,
                     [] { QCoreApplication::exit(SignalWatch::c_Status); });
    QObject::connect(&follower, &RunFollower::Progressed,
                     [&](RunSnapshot const& p_Snapshot) { p_Output.ShowProgress(p_Snapshot); });
    QObject::connect(
        &follower, &RunFollower::Ended, [&](RunResult const& p_Result, QString const& p_Game) {
            // Shown as an update is: which command it was, the other program does not tell.
            QCoreApplication::exit(p_Output.ShowResult(RunRequest(), p_Result, p_Game));
        });
    if (follower.Follow(InstallRecord::Folders(p_Settings)))
        return QCoreApplication::exec();
    return p_Output.ShowFailure({FailureKind::NothingRunning, p_Settings.File(), {}});
}

} // namespace Varnholt::Host
