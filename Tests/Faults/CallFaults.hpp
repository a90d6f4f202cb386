#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Each call by which the host program changes files strikes once: the host dies before it, dies in
/// the middle of it, or is told of an error.
std::vector<FaultRow> CallFaults();

} // namespace Varnholt::TestSupport
