#include "Host/Core/Jobs/FaultWatch.hpp"

#include "Host/Core/Jobs/RoomCheck.hpp"

#include <algorithm>

namespace Varnholt::Host {

FaultWatch::FaultWatch(RunContext const& p_Context, ProgressReader const& p_Reader)
    : Context(p_Context)
    , Reader(p_Reader)
{
}

std::optional<Failure> FaultWatch::LookAtRoom(QString const& p_Folder)
{
    constexpr qint64 c_IntervalMilliseconds = 1'000;

    RunPhase const phase = Reader.Phase();
    bool const begins = phase != LastPhase;
    LastPhase = phase;
    if (!IsDownloading(phase) || (!begins && !SinceLook.hasExpired(c_IntervalMilliseconds)))
        return std::nullopt;
    SinceLook.start();
    if (begins) {
        Spaces = GameVolumes::SpaceFor(
            p_Folder, Context.View.Listed(),
            [this](QString const& p_Location) { return Context.Door.SizeOf(p_Location); },
            Context.Options.FreeBytes);
        return RoomCheck::BeforeDownload(Spaces);
    }
    Entries current;
    if (auto const entry = Context.View.Current())
        current.push_back(*entry);
    QString const volume = GameVolumes::Of(p_Folder, current).back().Folder;
    return RoomCheck::WhileDownloading(volume, Context.Options.FreeBytes(volume),
                                       Reader.RemainingBytes());
}

std::size_t FaultWatch::ServersBehind() const
{
    auto const servers = Context.Door->Snapshot().Servers;
    auto const behind = static_cast<std::size_t>(std::count_if(
        servers.begin(), servers.end(), [](auto const& p_Server) { return p_Server.IsBehind; }));
    return behind < Context.Door->Servers().size() ? behind : 0;
}

} // namespace Varnholt::Host
