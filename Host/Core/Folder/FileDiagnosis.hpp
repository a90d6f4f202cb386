#pragma once

#include "Host/Core/Jobs/FileFinding.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QCoreApplication>
#include <QString>

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace Varnholt::Host {

/// Finds out why files are not in place. Module thread.
class FileDiagnosis {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::FileDiagnosis)

public:
    using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

    /// \param p_Folder ends in "/"
    FileDiagnosis(QString p_Folder, NetworkDoor const& p_Door,
                  std::function<qint64(QString const&)> p_FreeBytes);

    struct Diagnosis {
        Failure Whole; ///< the one that sums up all files
        std::vector<FileFinding> Files;
    };

    /// \param p_Missing not empty
    Diagnosis Explain(Entries const& p_Missing) const;

private:
    std::optional<Failure> WhatStandsInTheWay(QString const& p_Path) const;
    std::map<QString, Failure> OnFullDisks(Entries const& p_Missing) const;
    Failure NotFetched(Entries const& p_Missing) const;

    QString Folder;
    NetworkDoor const& Door;
    std::function<qint64(QString const&)> FreeBytes;
};

} // namespace Varnholt::Host
