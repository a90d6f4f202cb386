#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Folder/VolumeSpace.hpp"
#include "Host/Core/Jobs/FileFinding.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// What was found out about one server of content.
struct MirrorReport {
    QString Host; ///< with port
    bool IsReachable = false;
    qint64 Milliseconds = -1;  ///< from the request for the manifest to its last byte
    bool GivesRanges = false;  ///< a download can be resumed there
    bool HasSameBuild = false; ///< its manifest is the default server's, byte for byte
    QString Cause;             ///< what is wrong, empty when nothing is

    bool IsInOrder() const { return IsReachable && GivesRanges && HasSameBuild; }
};

/// What a run has fetched, or, of one that only looks, compared.
struct RunTotals {
    quint32 Files = 0;       ///< repeated ones counted again
    quint64 Bytes = 0;       ///< from the network, or of the files that were read
    qint64 Milliseconds = 0; ///< from the run's begin to its end
    quint64 Rate = 0;        ///< bytes per second on average of the time in which bytes moved
};

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
