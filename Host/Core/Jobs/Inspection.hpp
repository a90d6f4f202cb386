#pragma once

#include "Host/Core/Jobs/DiskPace.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Module/RunContext.hpp"

#include <QSet>
#include <QString>

#include <atomic>
#include <memory>
#include <vector>

namespace Varnholt::Host {

/// Compares a game folder with a build and changes nothing, on the module's worker. Module thread.
class Inspection {
public:
    /// Begins one, which is stopped when the pointer returned is gone. \param p_Folder ends in "/"
    /// \param p_EveryFile false: as an ordinary update, which trusts what earlier runs have
    /// verified and listed
    static std::shared_ptr<Inspection> Begin(RunContext const& p_Context, QString const& p_Folder,
                                             bool p_EveryFile);

    bool IsFinished() const { return Finished; }
    /// In the manifest's order, each path once. Once it is finished.
    std::vector<FileFinding> const& Findings() const { return Found; }
    /// Counts the bytes that have been looked at, of those that lie there; files that need no look
    /// count too. \param p_Phase as which the job has it
    RunSnapshot Look(RunPhase p_Phase);
    /// Files that were read, to their end, and their bytes.
    RunTotals Totals() const;

private:
    using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

    Inspection(RunContext const& p_Context, QString p_Folder, bool p_EveryFile);
    QString FileAt(quint32 p_Number) const;

    // On the worker.
    void Run();
    void Measure();
    void Enter();
    bool GoOn();
    void Leave();
    void Add(Entries const& p_Entries, FileFinding::Cause p_WhenThere);

    Launcher::ApplicationManifest Manifest;
    QString Folder;
    QString Locale;
    bool EveryFile;
    DiskPace Pace;
    quint32 Count;                  ///< of base and streamed files together
    std::atomic<quint32> Number{0}; ///< of the file in hand, from 1; 0 before the first
    std::atomic<quint64> Done{0};
    std::atomic<quint64> Total{0};
    std::atomic<quint32> ComparedFiles{0};
    std::atomic<quint64> ComparedBytes{0};
    int Asked = 0;               ///< calls of `GoOn` since the comparison entered the file in hand
    std::vector<quint64> Before; ///< bytes of the files before each, and of all; of `Run`
    std::atomic<bool> Stopped{false};
    std::atomic<bool> Finished{false};
    std::vector<FileFinding> Found;
    QSet<QString> Told; ///< paths in `Found`
};

} // namespace Varnholt::Host
