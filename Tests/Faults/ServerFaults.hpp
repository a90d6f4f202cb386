#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// What servers of content and the lines to them do wrong.
std::vector<FaultRow> ServerFaults();

} // namespace Varnholt::TestSupport
