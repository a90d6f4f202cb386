#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// What cannot be written: read-only folders, immutable files, folders in the place of files and
/// files in the place of folders.
std::vector<FaultRow> FolderFaults();

} // namespace Varnholt::TestSupport
