#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"

namespace Varnholt::Host {

/// One command from the loading of the module to its result. Runs the event loop. \return the exit
/// status
int RunProgram(Choice p_Choice, Presenter& p_Output);

} // namespace Varnholt::Host
