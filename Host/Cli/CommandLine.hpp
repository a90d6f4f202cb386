#pragma once

namespace Varnholt::Host {

/// The program varnholt-host. Needs a QCoreApplication.
/// \return the exit status
int RunCommandLine(int p_Count, char const* const* p_Arguments);

} // namespace Varnholt::Host
