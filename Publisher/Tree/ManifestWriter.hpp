#pragma once

#include "Publisher/Tree/BuildFile.hpp"
#include "Publisher/Tree/BuildIdentity.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

#include <QByteArray>

#include <map>
#include <vector>

namespace Varnholt::Publisher::ManifestWriter {

/// The manifest of a build. The same arguments give the same bytes.
/// \param p_Locales display names by tag
/// \param p_Files in the order in which clients are to fetch them; all of them hashed
QByteArray Write(BuildIdentity const& p_Build, std::map<QString, QString> const& p_Locales,
                 std::vector<BuildFile> const& p_Files, ContentPlatform p_Platform);

} // namespace Varnholt::Publisher::ManifestWriter
