#pragma once

#include "Host/Core/HostEnvironment.hpp"
#include "Launcher/Application/Application.hpp"

/// The host's side of the module's callback table.
///
/// The table holds plain functions without an argument for "whose", so that one environment serves
/// the whole process. Without an environment the callbacks answer what stops a module soonest.
namespace Varnholt::Host::HostCallbacks {

/// Makes the environment the process's own and fills in every callback.
/// \return false when another environment is in place already
bool Install(Launcher::Application& p_Application, HostEnvironment& p_Environment);

/// Returns when no callback uses the environment any more.
void Remove(HostEnvironment& p_Environment);

} // namespace Varnholt::Host::HostCallbacks
