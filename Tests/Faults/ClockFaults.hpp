#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// The clock set by a day while the host program is at work.
std::vector<FaultRow> ClockFaults();

} // namespace Varnholt::TestSupport
