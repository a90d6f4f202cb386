#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// Servers whose certificates are not in order: real ones, with certificates made here.
std::vector<FaultRow> TrustFaults();

} // namespace Varnholt::TestSupport
