#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// The host program killed at any moment of an install or an update.
std::vector<FaultRow> KillFaults();

} // namespace Varnholt::TestSupport
