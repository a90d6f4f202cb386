#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

namespace Varnholt::Host {

/// The command "config": shows, keeps and forgets options. \return the exit status
int ConfigRun(Choice const& p_Choice, HostSettings& p_Settings, Presenter& p_Output);

} // namespace Varnholt::Host
