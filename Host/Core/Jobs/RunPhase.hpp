#pragma once

#include <QString>

namespace Varnholt::Host {

/// Where a run stands.
enum class RunPhase {
    Idle,
    Connecting,
    AskingMirrors,
    Comparing,
    Verifying,
    WaitingForHost,
    WaitingForGame,
    WaitingToRetry, ///< nothing arrives, and a server is to be asked again
    AskingSizes,
    DownloadingBase,
    ComparingStreamed,
    DownloadingStreamed,
    StartingGame,
    Suspended,
    Uninstalling,
    Finished,
    Failed,
};

/// The phase as a word for programs, the same in every version: "downloading-base".
QString PhaseName(RunPhase p_Phase);

/// The phase of a name; `Idle` when there is none.
RunPhase PhaseNamed(QString const& p_Name);

/// The phase in words, "downloading base files".
QString PhaseText(RunPhase p_Phase);

/// True while files arrive.
bool IsDownloading(RunPhase p_Phase);

} // namespace Varnholt::Host
