#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QString>

#include <functional>
#include <vector>

namespace Varnholt::Publisher {

/// How a file, named by its relative path, is published; asked once for each. What is excluded is
/// not looked at any further, so that anything that is refused can be excluded.
using Treat = std::function<FileTreatment(QString const& p_Path)>;

/// Lists the files of a source folder. Symbolic links are followed as long as they stay inside it.
/// \return the published files, ordered by the UTF-8 bytes of their paths; never empty
/// \throws Failure for a folder or a file that cannot be published
std::vector<BuildFile> ScanSource(QString const& p_Folder, Treat const& p_Treat);

} // namespace Varnholt::Publisher
