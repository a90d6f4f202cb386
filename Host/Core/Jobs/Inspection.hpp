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
    /// verified and listed
    Inspection(Launcher::ApplicationManifest p_Manifest, QString p_Folder, QString p_Locale,
               bool p_EveryFile);

    void Run();
    void Stop() { Stopped = true; }
    bool IsFinished() const { return Finished; }
    /// In the manifest's order, each path once; incomplete after `Stop`.
    std::vector<FileFinding> const& Findings() const { return Found; }

    /// From 1, of base and streamed files together; 0 before the first.
    quint32 FileNumber() const { return Number; }
    quint32 FileCount() const { return Count; }
    /// Path of the file of a number.
    QString FileAt(quint32 p_Number) const;
    /// Bytes that have been looked at, of those that lie there; files that need no look count too.
    quint64 BytesDone() const { return Done; }
    quint64 BytesTotal() const { return Total; }
    /// Files that were read, to their end, and their bytes.
    quint32 FilesCompared() const { return ComparedFiles; }
    quint64 BytesCompared() const { return ComparedBytes; }

private:
    using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

    void Measure();
    void Enter();
    bool GoOn();
    void Leave();
    void Add(Entries const& p_Entries, FileFinding::Cause p_WhenThere);

    Launcher::ApplicationManifest Manifest;
    QString Folder;
    QString Locale;
    bool EveryFile;
    quint32 Count;
    std::atomic<quint32> Number{0};
    std::atomic<quint64> Done{0};
    std::atomic<quint64> Total{0};
    std::atomic<quint32> ComparedFiles{0};
    std::atomic<quint64> ComparedBytes{0};
    int Asked = 0; ///< how often the comparison has asked whether to go on, since it entered a file
    std::vector<quint64> Before; ///< bytes of the files before each, and of all; of `Run`
    std::atomic<bool> Stopped{false};
    std::atomic<bool> Finished{false};
    std::vector<FileFinding> Found;
    QSet<QString> Told; ///< paths in `Found`
};

} // namespace Varnholt::Host
