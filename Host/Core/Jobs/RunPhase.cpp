#include "Host/Core/Jobs/RunPhase.hpp"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

namespace {

struct PhaseRow {
    RunPhase Phase;
    char const* Name;
    char const* Text;
};

struct PhaseTable {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::RunPhase)

public:
    static constexpr PhaseRow c_Rows[] = {
        {RunPhase::Idle, "idle", QT_TR_NOOP("idle")},
        {RunPhase::Connecting, "connecting", QT_TR_NOOP("connecting")},
        {RunPhase::AskingMirrors, "asking-mirrors", QT_TR_NOOP("asking the mirrors")},
        {RunPhase::Comparing, "comparing", QT_TR_NOOP("comparing files")},
        {RunPhase::Verifying, "verifying", QT_TR_NOOP("verifying files")},
        {RunPhase::WaitingForHost, "waiting-for-host",
         QT_TR_NOOP("waiting for permission to download")},
        {RunPhase::WaitingForGame, "waiting-for-game", QT_TR_NOOP("waiting for the game to quit")},
        {RunPhase::WaitingToRetry, "waiting-to-retry", QT_TR_NOOP("waiting to try again")},
        {RunPhase::AskingSizes, "asking-sizes", QT_TR_NOOP("asking for file sizes")},
        {RunPhase::DownloadingBase, "downloading-base", QT_TR_NOOP("downloading base files")},
        {RunPhase::ComparingStreamed, "comparing-streamed", QT_TR_NOOP("comparing streamed files")},
        {RunPhase::DownloadingStreamed, "downloading-streamed",
         QT_TR_NOOP("downloading streamed files")},
        {RunPhase::StartingGame, "starting-game", QT_TR_NOOP("starting the game")},
        {RunPhase::Suspended, "suspended", QT_TR_NOOP("suspended")},
        {RunPhase::Uninstalling, "uninstalling", QT_TR_NOOP("removing files")},
        {RunPhase::Finished, "finished", QT_TR_NOOP("finished")},
        {RunPhase::Failed, "failed", QT_TR_NOOP("failed")},
    };
};

PhaseRow const& RowOf(RunPhase p_Phase)
{
    auto const* const row =
        std::find_if(std::begin(PhaseTable::c_Rows), std::end(PhaseTable::c_Rows),
                     [p_Phase](PhaseRow const& p_Row) { return p_Row.Phase == p_Phase; });
    return row == std::end(PhaseTable::c_Rows) ? PhaseTable::c_Rows[0] : *row;
}

} // namespace

QString PhaseName(RunPhase p_Phase)
{
    return QString::fromLatin1(RowOf(p_Phase).Name);
}

RunPhase PhaseNamed(QString const& p_Name)
{
    auto const* const row =
        std::find_if(std::begin(PhaseTable::c_Rows), std::end(PhaseTable::c_Rows),
                     [&](PhaseRow const& p_Row) { return p_Name == QLatin1String(p_Row.Name); });
    return row == std::end(PhaseTable::c_Rows) ? RunPhase::Idle : row->Phase;
}

QString PhaseText(RunPhase p_Phase)
{
    return PhaseTable::tr(RowOf(p_Phase).Text);
}

bool IsDownloading(RunPhase p_Phase)
{
    return p_Phase == RunPhase::DownloadingBase || p_Phase == RunPhase::DownloadingStreamed;
}

} // namespace Varnholt::Host
