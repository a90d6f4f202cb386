#pragma once

#include "Host/Core/Jobs/FileFinding.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QSet>
#include <QString>

#include <atomic>
#include <vector>

namespace Varnholt::Host {

/// Compares a game folder with a build and changes nothing. `Run` on one thread, the rest on any;
/// the findings once `IsFinished`.
class Inspection {
public:
    /// \param p_Folder ends in "/"
    /// \param p_EveryFile false: as an ordinary update, which trusts what earlier runs have
    /// verified
    ///        and listed
    Inspection(Launcher::ApplicationManifest p_Manifest, QString p_Folder, QString p_Locale,
               bool p_EveryFile);

    void Run();
    void Stop() { Stopped = true; }
    bool IsFinished() const { return Finished; }
    /// In the manifest's order, each path once; incomplete after `Stop`.
    std::vector<FileFinding> const& Findings() const { return Found; }

    quint32 FileNumber() const { return Number; }
    quint32 FileCount() const { return Count; }

private:
    using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

    void Add(Entries const& p_Entries, FileFinding::Cause p_WhenThere);

    Launcher::ApplicationManifest Manifest;
    QString Folder;
    QString Locale;
    bool EveryFile;
    quint32 Count;
    std::atomic<quint32> Number{0};
    std::atomic<bool> Stopped{false};
    std::atomic<bool> Finished{false};
    std::vector<FileFinding> Found;
    QSet<QString> Told; ///< paths in `Found`
};

} // namespace Varnholt::Host
