#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <vector>

namespace Varnholt::Host::GameVolumes {

using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

/// What a volume holds, or will hold, of a list of files.
struct Share {
    QString Folder; ///< one that exists on the volume
    Entries Files;
};

/// The files by volume: a player may have moved folders to other disks and left links to them. The
/// game folder's own volume comes first and is always there. \param p_Folder ends in "/"
std::vector<Share> Of(QString const& p_Folder, Entries const& p_Files);

} // namespace Varnholt::Host::GameVolumes
