#pragma once

#include "Host/Cli/Presenter.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

namespace Varnholt::Host {

/// Shows the download of another program, found by the folders that the settings know, as that one
/// shows it. Runs the event loop until the download ends. \return the exit status: that of the
/// download, or that of an interruption
int WatchRun(HostSettings const& p_Settings, Presenter& p_Output);

} // namespace Varnholt::Host
