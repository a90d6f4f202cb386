#pragma once

#include "Publisher/BuildFile.hpp"
#include "Publisher/BuildIdentity.hpp"
#include "Publisher/ContentPlatform.hpp"

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
