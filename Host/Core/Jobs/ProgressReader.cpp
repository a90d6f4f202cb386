#include "Host/Core/Jobs/ProgressReader.hpp"

#include "Host/Core/Network/FetchFailure.hpp"

#include <QUrl>

#include <algorithm>

namespace Varnholt::Host {

namespace {

std::optional<ServerWait> WaitOf(std::optional<Gateway::GatewaySnapshot::Wait> const& p_Wait)
{
    constexpr qint64 c_Second = 1'000;

    if (!p_Wait)
        return std::nullopt;
    ServerWait wait;
    wait.Server = QUrl(QString::fromStdString(p_Wait->Problem.Url)).authority();
    wait.Cause = CauseText(p_Wait->Problem);
    wait.Silent = p_Wait->Silent.count() / c_Second;
    wait.NextAttempt = (p_Wait->NextAttempt.count() + c_Second - 1) / c_Second;
    wait.Attempt = p_Wait->Attempt;
    wait.Attempts = p_Wait->Attempts;
    return wait;
}

} // namespace

ProgressReader::ProgressReader(ModuleView const& p_View,
                               Launcher::ApplicationManifest const& p_Manifest,
                               NetworkDoor const& p_Door, RunGate const& p_Gate)
    : View(p_View)
    , Manifest(p_Manifest)
    , Door(p_Door)
    , Gate(p_Gate)
{
}

RunPhase ProgressReader::Phase() const
{
    using Launcher::ApplicationUISetting;

    switch (View.Mode()) {
    case ApplicationUISetting::ModeWaitingForHost:
        return RunPhase::WaitingForHost;
    case ApplicationUISetting::ModeWaitingForGame:
        return RunPhase::WaitingForGame;
    case ApplicationUISetting::ModeAskingSizes:
        return RunPhase::AskingSizes;
    case ApplicationUISetting::ModeDownloading:
        return View.FetchesBase() ? RunPhase::DownloadingBase : RunPhase::DownloadingStreamed;
    case ApplicationUISetting::ModeSuspended:
        return RunPhase::Suspended;
    default:
        return View.ComparesBase() ? RunPhase::Comparing : RunPhase::ComparingStreamed;
    }
}

RunSnapshot ProgressReader::Read(RunPhase p_Phase)
{
    if (p_Phase != LastPhase) {
        LastPhase = p_Phase;
        CountedFiles = 0;
        CountedBytes = DoneBytes = TotalBytes = 0;
        Comparison.emplace(View, Gate);
    }
    RunSnapshot snapshot;
    snapshot.Phase = p_Phase;
    quint64 const held = ReadDoor(snapshot);
    if (p_Phase == RunPhase::Comparing || p_Phase == RunPhase::ComparingStreamed) {
        Comparison->Tell(snapshot,
                         p_Phase == RunPhase::Comparing ? Manifest.Files : Manifest.StreamedFiles);
    } else if (p_Phase == RunPhase::AskingSizes) {
        snapshot.FileNumber = View.SizesAnswered();
        snapshot.FileCount = static_cast<quint32>(View.Progress().Count);
    } else if (IsDownloading(p_Phase)) {
        ReadDownload(snapshot, held);
    }
    return snapshot;
}

quint64 ProgressReader::ReadDoor(RunSnapshot& p_Snapshot) const
{
    Gateway::GatewaySnapshot const door = Door->Snapshot();
    p_Snapshot.BytesReceived = door.Received;
    if (p_Snapshot.Phase != RunPhase::Suspended)
        p_Snapshot.Wait = WaitOf(door.Waits);
    if (!IsDownloading(p_Snapshot.Phase))
        return door.Held;
    p_Snapshot.Rate = door.Rate;
    p_Snapshot.Mirror = QString::fromStdString(door.Server);
    for (auto const& server : door.Servers)
        if (server.Received > 0)
            p_Snapshot.Servers.push_back({QString::fromStdString(server.Name), server.Rate});
    return door.Held;
}

void ProgressReader::ReadDownload(RunSnapshot& p_Snapshot, quint64 p_Held)
{
    ModuleView::Download const download = View.Progress();
    p_Snapshot.FileCount = static_cast<quint32>(download.Count);
    p_Snapshot.FileNumber = static_cast<quint32>(std::min(download.Index + 1, download.Count));
    p_Snapshot.File = download.File;

    quint64 const done = FinishedBytes(download.Index) + download.BytesOnDisk;
    // The module's own figure falls back on a resumed file, of which it counts the last attempt
    // only; and a file that is fetched again grows the total after its bytes have been counted.
    TotalBytes = std::max(TotalBytes, download.BytesTotal);
    DoneBytes = std::min(std::max(DoneBytes, done), TotalBytes);
    p_Snapshot.BytesDone = DoneBytes;
    p_Snapshot.BytesTotal = TotalBytes;
    if (IsVerified(download))
        p_Snapshot.Phase = RunPhase::Verifying;
    if (p_Snapshot.Rate > 0)
        p_Snapshot.Remaining = static_cast<qint64>(
            (RemainingBytes() - std::min(RemainingBytes(), p_Held)) / p_Snapshot.Rate);
}

bool ProgressReader::IsVerified(ModuleView::Download const& p_Download)
{
    constexpr qint64 c_NoticeableMilliseconds = 50; // two looks of a phase

    quint64 const size = Door.SizeOf(p_Download.Location).value_or(0);
    bool const isWhole = View.HasTransfer() && size > 0 && p_Download.BytesOnDisk >= size;
    if (!isWhole || WholeFile != p_Download.File)
        WholeSince.start();
    WholeFile = isWhole ? p_Download.File : QString();
    return isWhole && WholeSince.hasExpired(c_NoticeableMilliseconds);
}

quint64 ProgressReader::FinishedBytes(std::size_t p_Finished)
{
    if (p_Finished < CountedFiles)
        CountedFiles = CountedBytes = 0;
    for (QString const& location : View.Locations(CountedFiles, p_Finished))
        CountedBytes += Door.SizeOf(location).value_or(0);
    CountedFiles = p_Finished;
    return CountedBytes;
}

} // namespace Varnholt::Host
