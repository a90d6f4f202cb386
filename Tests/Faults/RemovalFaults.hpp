#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// What somebody else removes or changes while a run is under way.
std::vector<FaultRow> RemovalFaults();

} // namespace Varnholt::TestSupport
