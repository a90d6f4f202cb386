#pragma once

#include "Host/Core/Failure.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>
#include <QStringList>

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
                                          quint64 p_TotalBytes);
    /// While bytes arrive. \param p_RemainingBytes still to come
    std::optional<Failure> WhileDownloading(QString const& p_Folder,
                                            quint64 p_RemainingBytes) const;

private:
    qint64 Free(QString const& p_Folder) const;

    std::function<qint64(QString const&)> FreeBytes;
    QStringList Elsewhere; ///< a folder on each other volume that files of the list lie on
};

} // namespace Varnholt::Host
