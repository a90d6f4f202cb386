#include "Host/Core/Jobs/RunPhase.hpp"

#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

namespace {

struct Row {
    RunPhase Phase;
    char const* Name;
    char const* Text;
};

constexpr Row c_Table[] = {
    {RunPhase::Idle, "idle", "idle"},
    {RunPhase::Connecting, "connecting", "connecting"},
    {RunPhase::AskingMirrors, "asking-mirrors", "asking the mirrors"},
    {RunPhase::Comparing, "comparing", "comparing files"},
    {RunPhase::Verifying, "verifying", "verifying files"},
    {RunPhase::WaitingForHost, "waiting-for-host", "waiting for permission to download"},
    {RunPhase::WaitingForGame, "waiting-for-game", "waiting for the game to quit"},
    {RunPhase::WaitingToRetry, "waiting-to-retry", "waiting to try again"},
    {RunPhase::AskingSizes, "asking-sizes", "asking for file sizes"},
    {RunPhase::DownloadingBase, "downloading-base", "downloading base files"},
    {RunPhase::ComparingStreamed, "comparing-streamed", "comparing streamed files"},
    {RunPhase::DownloadingStreamed, "downloading-streamed", "downloading streamed files"},
    {RunPhase::StartingGame, "starting-game", "starting the game"},
    {RunPhase::Suspended, "suspended", "suspended"},
    {RunPhase::Uninstalling, "uninstalling", "removing files"},
    {RunPhase::Finished, "finished", "finished"},
    {RunPhase::Failed, "failed", "failed"},
};

Row const& RowOf(RunPhase p_Phase)
{
    auto const* const row =
        std::find_if(std::begin(c_Table), std::end(c_Table),
                     [p_Phase](Row const& p_Row) { return p_Row.Phase == p_Phase; });
    return row == std::end(c_Table) ? c_Table[0] : *row;
}

} // namespace

QString PhaseName(RunPhase p_Phase)
{
    return QString::fromLatin1(RowOf(p_Phase).Name);
}

QString PhaseText(RunPhase p_Phase)
{
    return QString::fromLatin1(RowOf(p_Phase).Text);
}

bool IsDownloading(RunPhase p_Phase)
{
    return p_Phase == RunPhase::DownloadingBase || p_Phase == RunPhase::DownloadingStreamed;
}

} // namespace Varnholt::Host
