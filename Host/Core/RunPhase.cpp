#include "Host/Core/RunPhase.hpp"

namespace Varnholt::Host {

QString PhaseText(RunPhase p_Phase)
{
    switch (p_Phase) {
    case RunPhase::Idle:
        return QStringLiteral("idle");
    case RunPhase::Connecting:
        return QStringLiteral("connecting");
    case RunPhase::AskingMirrors:
        return QStringLiteral("asking the mirrors");
    case RunPhase::Comparing:
        return QStringLiteral("comparing files");
    case RunPhase::WaitingForHost:
        return QStringLiteral("waiting for permission to download");
    case RunPhase::WaitingForGame:
        return QStringLiteral("waiting for the game to quit");
    case RunPhase::AskingSizes:
        return QStringLiteral("asking for file sizes");
    case RunPhase::DownloadingBase:
        return QStringLiteral("downloading base files");
    case RunPhase::ComparingStreamed:
        return QStringLiteral("comparing streamed files");
    case RunPhase::DownloadingStreamed:
        return QStringLiteral("downloading streamed files");
    case RunPhase::Suspended:
        return QStringLiteral("suspended");
    case RunPhase::Finished:
        return QStringLiteral("finished");
    case RunPhase::Failed:
        return QStringLiteral("failed");
    }
    return {};
}

bool IsDownloading(RunPhase p_Phase)
{
    return p_Phase == RunPhase::DownloadingBase || p_Phase == RunPhase::DownloadingStreamed;
}

} // namespace Varnholt::Host
