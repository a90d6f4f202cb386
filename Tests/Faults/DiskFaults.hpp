#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Disks that are full, from the beginning or from some moment on.
std::vector<FaultRow> DiskFaults();

} // namespace Varnholt::TestSupport
