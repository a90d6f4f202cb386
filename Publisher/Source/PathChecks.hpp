#pragma once

#include "Publisher/Tree/BuildFile.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

#include <QByteArray>
#include <QString>

#include <vector>

namespace Varnholt::Publisher::PathChecks {

/// Refuses a relative path that a client could not take over, or would take for a file of its own.
/// \param p_Path the name as the file system gives it
/// \throws Failure that names the path and the cause
void CheckPath(QByteArray const& p_Path);

/// Refuses a path that no file of that system can have.
/// \throws Failure that names the path and the cause
void CheckPlatform(QString const& p_Path, ContentPlatform p_Platform);

/// Refuses files and folders that would be one and the same on a file system that ignores letter
/// case, as those of all clients do.
/// \throws Failure that names both
void CheckCollisions(std::vector<BuildFile> const& p_Files);

} // namespace Varnholt::Publisher::PathChecks
