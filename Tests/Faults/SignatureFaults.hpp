#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Somebody on the line of a host that has the publisher's key.
std::vector<FaultRow> SignatureFaults();

} // namespace Varnholt::TestSupport
