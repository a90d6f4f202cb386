#include "Host/Core/ProgressReader.hpp"

#include <QMutexLocker>
#include <QUrl>

#include <algorithm>

namespace Varnholt::Host {

ProgressReader::ProgressReader(Launcher::StandartApplication& p_Module,
                               NetworkJournal const& p_Journal)
    : Module(p_Module)
    , Journal(p_Journal)
{
}

RunPhase ProgressReader::Phase() const
{
    using Launcher::ApplicationUISetting;

    QMutexLocker const lock(&Module.RunMutex);
    switch (Module.UISetting.Download.Mode) {
    case ApplicationUISetting::ModeWaitingForHost:
        return RunPhase::WaitingForHost;
    case ApplicationUISetting::ModeWaitingForGame:
        return RunPhase::WaitingForGame;
    case ApplicationUISetting::ModeAskingSizes:
        return RunPhase::AskingSizes;
    case ApplicationUISetting::ModeDownloading:
        return Module.IsDownloadingBase ? RunPhase::DownloadingBase : RunPhase::DownloadingStreamed;
    case ApplicationUISetting::ModeSuspended:
        return RunPhase::Suspended;
    default: // comparing
        // Raised for the base files and cleared for the streamed ones.
        return Module.UISetting.Download.StatusFlag ? RunPhase::Comparing
                                                    : RunPhase::ComparingStreamed;
    }
}

RunSnapshot ProgressReader::Read(RunPhase p_Phase, qint64 p_Now)
{
    if (p_Phase != LastPhase) {
        LastPhase = p_Phase;
        Meter.Clear();
        CountedFiles = 0;
        CountedBytes = DoneBytes = TotalBytes = 0;
    }
    RunSnapshot snapshot;
    snapshot.Phase = p_Phase;
    QMutexLocker const lock(&Module.RunMutex);
    if (p_Phase == RunPhase::Comparing || p_Phase == RunPhase::ComparingStreamed) {
        ReadComparison(snapshot);
    } else if (p_Phase == RunPhase::AskingSizes) {
        snapshot.FileNumber = Module.SizeRepliesReceived;
        snapshot.FileCount = static_cast<quint32>(Module.FilesToDownload.size());
    } else if (IsDownloading(p_Phase)) {
        ReadDownload(snapshot, p_Now);
    }
    return snapshot;
}

void ProgressReader::ReadComparison(RunSnapshot& p_Snapshot) const
{
    auto const& files = p_Snapshot.Phase == RunPhase::Comparing ? Module.Manifest.Files
                                                                : Module.Manifest.StreamedFiles;
    std::size_t const number =
        std::min<std::size_t>(Module.UISetting.Download.Current, files.size());
    p_Snapshot.FileNumber = static_cast<quint32>(number);
    p_Snapshot.FileCount = static_cast<quint32>(files.size());
    if (number > 0)
        p_Snapshot.File = files[number - 1].Path;
}

void ProgressReader::ReadDownload(RunSnapshot& p_Snapshot, qint64 p_Now)
{
    std::size_t const count = Module.FilesToDownload.size();
    std::size_t const index = Module.CurrentDownloadIndex;
    p_Snapshot.FileCount = static_cast<quint32>(count);
    p_Snapshot.FileNumber = static_cast<quint32>(std::min(index + 1, count));
    if (index < count)
        p_Snapshot.File = Module.FilesToDownload[index].Path;

    quint64 done = FinishedBytes();
    if (Module.CurrentDownload != nullptr) {
        done += static_cast<quint64>(Module.CurrentDownload->BytesOnDisk);
        p_Snapshot.Mirror = QUrl(Module.CurrentDownload->Url).authority();
    }
    // The module's own figure falls back on a resumed file, of which it counts the last attempt
    // only; and a file that is fetched again grows the total after its bytes have been counted.
    TotalBytes = std::max<quint64>(TotalBytes, Module.UISetting.Download.Total);
    DoneBytes = std::min(std::max(DoneBytes, done), TotalBytes);
    Meter.Add(p_Now, DoneBytes);

    p_Snapshot.BytesDone = DoneBytes;
    p_Snapshot.BytesTotal = TotalBytes;
    p_Snapshot.Rate = Meter.Rate();
    if (p_Snapshot.Rate > 0)
        p_Snapshot.Remaining = static_cast<qint64>(RemainingBytes() / p_Snapshot.Rate);
}

quint64 ProgressReader::FinishedBytes()
{
    std::size_t const finished =
        std::min<std::size_t>(Module.CurrentDownloadIndex, Module.FilesToDownload.size());
    if (finished < CountedFiles)
        CountedFiles = CountedBytes = 0;
    for (; CountedFiles < finished; ++CountedFiles)
        CountedBytes += Journal.SizeOf(Module.FilesToDownload[CountedFiles].Location);
    return CountedBytes;
}

} // namespace Varnholt::Host
