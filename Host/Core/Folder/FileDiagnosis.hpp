#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>

#include <functional>
#include <vector>

namespace Varnholt::Host {

/// Finds out why files are not in place. Module thread.
class FileDiagnosis {
public:
    using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

    /// \param p_Folder ends in "/"
    FileDiagnosis(QString p_Folder, NetworkDoor const& p_Door,
                  std::function<qint64(QString const&)> p_FreeBytes);

    /// \param p_Missing not empty
    Failure Explain(Entries const& p_Missing) const;

private:
    std::optional<Failure> WhatStandsInTheWay(QString const& p_Path) const;
    std::optional<Failure> FullDisk(Entries const& p_Missing) const;

    QString Folder;
    NetworkDoor const& Door;
    std::function<qint64(QString const&)> FreeBytes;
};

} // namespace Varnholt::Host
