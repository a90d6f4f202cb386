#pragma once

#include "GameModules/LinkGuard.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// The files, base and streamed, that an installation in a language wants and that are not there.
/// A folder in a file's place counts as missing, as does a link that gives way to the file; a file
/// that a link keeps out of reach does not: the module leaves it alone. Looks at existence only:
/// the module verifies what it puts in place, and removes what it replaces. \param p_Folder ends in
/// "/"
std::vector<Launcher::ApplicationManifestFileEntry>
MissingFiles(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale);

/// Whether the folder holds the game, as far as names tell: the pending lists of a run, or at least
/// half of the wanted files. \param p_Folder ends in "/"
bool HoldsGame(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
               QString const& p_Locale);

/// A symbolic link that keeps one of the wanted files out of reach.
std::optional<Launcher::LinkGuard::Link>
LinkOnTheWay(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale);

} // namespace Varnholt::Host
