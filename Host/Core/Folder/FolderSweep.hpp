#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

/// What an uninstallation leaves behind although nobody wants it.
namespace Varnholt::Host::FolderSweep {

/// Removes the module's lists, partial files of the build, the login screen with its credentials,
/// and the folders of the build that have become empty. Everything else stays.
/// \param p_Folder ends in "/"; stays itself
void Run(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder);

} // namespace Varnholt::Host::FolderSweep
