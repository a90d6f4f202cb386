#pragma once

#include <QString>
#include <QtGlobal>

#include <iterator>
#include <numeric>

namespace Varnholt::Launcher {

/// The progress record that a host reads to draw an application's state.
///
/// Written without a lock by whichever thread runs the current phase, read by the host after it has
/// seen `Application::UISettingChanged`. Figures are advisory; texts that a worker writes are
/// static literals, so a reader never meets freed memory.
struct ApplicationUISetting {
    enum StateValue : qint32 {
        StateStartingUp = 0,
        StateNotInstalled = 1,
        StateInstalled = 2, ///< comparing, downloading or up to date
    };
    enum ModeValue : qint32 {
        ModeWaitingForHost = 0,
        ModeWaitingForGame = 1, ///< to quit
        ModeAskingSizes = 2,
        ModeDownloading = 3,
        ModeSuspended = 4,
        ModeComparing = 5, ///< files with the manifest
    };

    qint32 State = StateStartingUp;

    struct DownloadState {
        qint32 Mode = ModeWaitingForHost;
        bool ModeFlag = false;   ///< a mode is running
        quint32 Percent = 0;     ///< 0 to 100
        quint64 Current = 0;     ///< item number (while comparing) or bytes done
        quint64 Total = 0;       ///< item count (while comparing) or bytes to fetch
        quint64 AverageRate = 0; ///< bytes per second, mean of `RateLog`
        QString StatusText;
        quint32 StatusFlags = 0;
        bool StatusFlag = false;
        QString DetailText = QStringLiteral("");
        quint64 RateLog[20] = {}; ///< ring of the last samples, bytes per second
        qint32 RateLogIndex = 0;  ///< next slot of the ring

        /// Adds a sample (bytes per second) to the ring and renews `AverageRate`.
        void LogDownloadRate(quint64 p_BytesPerSecond)
        {
            auto const slots = static_cast<qint32>(std::size(RateLog));
            if (RateLogIndex >= slots)
                RateLogIndex = 0;
            RateLog[RateLogIndex++] = p_BytesPerSecond;
            // Divided by all slots while the ring fills too: the shown rate ramps up at the start.
            AverageRate = std::accumulate(std::begin(RateLog), std::end(RateLog), quint64{0}) /
                          std::size(RateLog);
        }
    } Download;
};

} // namespace Varnholt::Launcher
