#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Mirrors that are gone, go away or hold what they should not.
std::vector<FaultRow> MirrorFaults();

} // namespace Varnholt::TestSupport
