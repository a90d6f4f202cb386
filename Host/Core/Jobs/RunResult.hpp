#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Folder/VolumeSpace.hpp"
#include "Host/Core/Jobs/FileFinding.hpp"
#include "Host/Core/Jobs/MirrorReport.hpp"
#include "Host/Core/Jobs/RunTotals.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// How a run ended.
struct RunResult {
    std::optional<Failure> Problem; ///< empty: everything wanted is in place
    QString Build;                  ///< the build's identifier, empty when it is not known
    QString BuildName;              ///< the same in words, as far as its manifest was read
    QString Folder;
    quint32 Transfers = 0; ///< files fetched, repeated ones counted again
    RunTotals Totals;
    QString Locale;                                           ///< the chosen language
    std::vector<Launcher::ApplicationManifestLocale> Locales; ///< what the build offers
    std::vector<FileFinding> Findings; ///< files that are not as the build wants them
    std::vector<MirrorReport> Mirrors; ///< the default server first
    qint64 ProcessId = 0;              ///< of the game that was started; 0: none was
    QString OutputFile;                ///< that takes that game's output; empty: nothing does
    bool IsRepairStopped = false;      ///< not every file was looked at
    std::vector<VolumeSpace> Space;    ///< before the first byte; empty when nothing is to come
    FileAmount Amount;                 ///< of a preview: to fetch, or to delete
    QStringList Staying;               ///< of a preview: files that are not the game's
    std::vector<Failure> Warnings;     ///< of a preview: what speaks against it, the gravest first

    /// The build as people know it.
    QString BuildText() const { return BuildName.isEmpty() ? Build : BuildName; }
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::RunResult)
