#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Servers that send a host elsewhere.
std::vector<FaultRow> RedirectFaults();

} // namespace Varnholt::TestSupport
