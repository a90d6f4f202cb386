#pragma once

#include "Host/Core/Folder/VolumeSpace.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace Varnholt::Host::GameVolumes {

using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;
/// Size of a file by its location on a server; none when it is not known.
using SizeOf = std::function<std::optional<quint64>(QString const&)>;

/// What a volume holds, or will hold, of a list of files.
struct Share {
    QString Folder; ///< one that exists on the volume
    Entries Files;
};

/// The files by volume: a player may have moved folders to other disks and left links to them. The
/// game folder's own volume comes first and is always there. \param p_Folder ends in "/"; it need
/// not exist
std::vector<Share> Of(QString const& p_Folder, Entries const& p_Files);

/// The room that files still need, by volume in the same order. What lies there of a file need not
/// come any more, and the old file that it replaces makes room. \param p_FreeBytes see
/// `HostOptions`
std::vector<VolumeSpace> SpaceFor(QString const& p_Folder, Entries const& p_Files,
                                  SizeOf const& p_SizeOf,
                                  std::function<qint64(QString const&)> const& p_FreeBytes);

} // namespace Varnholt::Host::GameVolumes
