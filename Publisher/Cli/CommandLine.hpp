#pragma once

namespace Varnholt::Publisher {

/// Runs the command that the arguments name and reports failures on standard error.
/// \param p_Arguments as main() gets them, UTF-8
/// \return exit status: 0 done, 1 failed, 2 called in a wrong way, 128 + signal when interrupted
int RunCommandLine(int p_Count, char const* const* p_Arguments);

} // namespace Varnholt::Publisher
