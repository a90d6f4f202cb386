#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// What goes wrong between a host and its server: outages, proxies, redirects; and what a limit of
/// the rate makes of all that.
std::vector<FaultRow> LineFaults();

} // namespace Varnholt::TestSupport
