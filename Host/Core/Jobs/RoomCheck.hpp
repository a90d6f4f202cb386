#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace Varnholt::Host {

/// Sees to it that a download does not run into a full disk: the module would fetch each file again
/// and again without keeping it.
class RoomCheck {
public:
    using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

    explicit RoomCheck(std::function<qint64(QString const&)> p_FreeBytes);

    /// Before the first byte. Counts what lies there already, and the room of all volumes that the
    /// files lie on, so that it never refuses what fits. \param p_TotalBytes of all files of the
    /// list
    std::optional<Failure> BeforeDownload(QString const& p_Folder, Entries const& p_Files,
                                          quint64 p_TotalBytes) const;
    /// While bytes arrive. \param p_Folder on the volume that they arrive on
    /// \param p_RemainingBytes still to come
    std::optional<Failure> WhileDownloading(QString const& p_Folder,
                                            quint64 p_RemainingBytes) const;

private:
    std::function<qint64(QString const&)> FreeBytes;
};

} // namespace Varnholt::Host
