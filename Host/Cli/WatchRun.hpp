#pragma once

#include "Host/Cli/Presenter.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Session/RunFollower.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

namespace Varnholt::Host {

/// Shows the download of another program, found by the folders that the settings know, as that one
/// shows it.
class WatchRun {
public:
    WatchRun(HostSettings const& p_Settings, Presenter& p_Output);

    /// Runs the event loop until the download ends. \return the exit status: that of the download,
    /// or that of an interruption
    int Run();

private:
    void OnEnded(RunResult const& p_Result, QString const& p_Game);

    HostSettings const& Settings;
    Presenter& Output;
    SignalWatch Signals;
    RunFollower Follower;
};

} // namespace Varnholt::Host
