#pragma once

#include "GameModules/LinkGuard.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// The files, base and streamed, that an installation in a language wants and that are not there.
/// A file counts as missing when a folder stands in its place, or a link that the module replaces,
/// but not when it lies behind a link that the module does not follow. Looks at existence only: the
/// module verifies what it puts in place. \param p_Folder ends in "/"
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
