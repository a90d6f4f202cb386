#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// What goes wrong between a host and its server: outages and proxies; and what a limit of the rate
/// makes of it.
std::vector<FaultRow> LineFaults();

} // namespace Varnholt::TestSupport
