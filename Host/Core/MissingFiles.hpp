#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <vector>

namespace Varnholt::Host {

/// The files, base and streamed, that an installation in a language wants and that are not there.
/// A folder in a file's place counts as missing. Looks at existence only: the module verifies what
/// it puts in place, and removes what it replaces.
/// \param p_Folder ends in "/"
std::vector<Launcher::ApplicationManifestFileEntry>
MissingFiles(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale);

} // namespace Varnholt::Host
