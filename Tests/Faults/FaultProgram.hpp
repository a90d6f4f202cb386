#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// A program that runs rows: all, those whose names hold its arguments, or one in this process.
/// \return its exit status: 0 when nothing was lost, 1 when something was, 2 when there is nothing
/// to run, 77 when nothing was lost and a row's fault never struck
int RunFaultProgram(int p_Count, char** p_Arguments, std::vector<FaultRow> const& p_Rows);

} // namespace Varnholt::TestSupport
