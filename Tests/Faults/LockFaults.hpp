#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Two host programs at work on one folder.
std::vector<FaultRow> LockFaults();

} // namespace Varnholt::TestSupport
