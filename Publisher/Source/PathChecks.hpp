#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QByteArray>
#include <QString>

#include <vector>

namespace Varnholt::Publisher::PathChecks {

/// Refuses a relative path that a client could not take over, or would take for a file of its own.
/// \param p_Path the name as the file system gives it
/// \throws Failure that names the path and the cause
void CheckPath(QByteArray const& p_Path);

/// Refuses files that would be one and the same on a file system that ignores letter case, and a
/// file where such a system has a folder.
/// \throws Failure that names both
void CheckCollisions(std::vector<BuildFile> const& p_Files);

} // namespace Varnholt::Publisher::PathChecks
