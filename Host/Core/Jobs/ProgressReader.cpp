#include "Host/Core/Jobs/ProgressReader.hpp"

#include "GameModules/FileDigest.hpp"
#include "Host/Core/Jobs/DiskPace.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QFileInfo>
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

/// How far the module's own comparison of a list of files is. It tells the file at hand only; how
/// much of that it has read, its questions tell.
class ProgressReader::Comparison {
public:
    Comparison(ModuleView const& p_View, RunGate const& p_Gate)
        : View(p_View)
        , Gate(p_Gate)
    {
    }

    /// Adds file and figures to a snapshot. The bytes are 0 until the files have been measured,
    /// some at each call. \param p_Files of one comparison
    void Tell(RunSnapshot& p_Snapshot, ModuleView::Entries const& p_Files)
    {
        std::size_t const number = std::min(View.ComparedFile(), p_Files.size());
        p_Snapshot.FileNumber = static_cast<quint32>(number);
        p_Snapshot.FileCount = static_cast<quint32>(p_Files.size());
        if (number == 0)
            return;
        p_Snapshot.File = p_Files[number - 1].Path;
        quint64 const asked = Gate.Questions();
        if (number != Number)
            AskedBefore = asked;
        Number = number;
        Measure(p_Files, p_Snapshot.Phase == RunPhase::ComparingStreamed);
        if (Before.size() <= p_Files.size())
            return;
        quint64 const done =
            Before[number - 1] + (asked - AskedBefore) * Launcher::FileDigest::c_BlockBytes;
        Done = std::max(Done, std::min(done, Before[number]));
        p_Snapshot.BytesDone = Done;
        p_Snapshot.BytesTotal = Before.back();
        Pace.Tell(p_Snapshot);
    }

private:
    void Measure(ModuleView::Entries const& p_Files, bool p_AreStreamed)
    {
        constexpr std::size_t c_MostAtOnce = 2'000;

        if (Before.empty()) {
            Before.push_back(0);
            Folder = View.Folder();
            Locale = View.Locale();
            LooksAtAll = View.IsFirstBuild();
        }
        for (std::size_t i = 0; i < c_MostAtOnce && Before.size() <= p_Files.size(); ++i)
            Before.push_back(Before.back() + SizeOf(p_Files[Before.size() - 1], p_AreStreamed));
    }

    /// 0 of a file that the module does not read.
    quint64 SizeOf(ModuleView::Entry const& p_Entry, bool p_IsStreamed) const
    {
        bool const isTrusted =
            !LooksAtAll && !p_IsStreamed && p_Entry.Has(ModuleView::Entry::FirstBuildOnly);
        if (!p_Entry.IsFor(Locale) || isTrusted || p_Entry.Has(ModuleView::Entry::KeepIfPresent))
            return 0;
        return static_cast<quint64>(QFileInfo(Folder + p_Entry.Path).size());
    }

    ModuleView const& View;
    RunGate const& Gate;
    QString Folder;
    QString Locale;
    bool LooksAtAll = false;
    std::vector<quint64> Before; ///< bytes of the files before each, as far as they are measured
    std::size_t Number = 0;      ///< of the file at hand, from 1
    quint64 AskedBefore = 0;     ///< questions when that was begun
    quint64 Done = 0;
    DiskPace Pace;
};

ProgressReader::ProgressReader(ModuleView const& p_View,
                               Launcher::ApplicationManifest const& p_Manifest,
                               NetworkDoor const& p_Door, RunGate const& p_Gate)
    : View(p_View)
    , Manifest(p_Manifest)
    , Door(p_Door)
    , Gate(p_Gate)
{
}

ProgressReader::~ProgressReader() = default;

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
        Compared = std::make_unique<Comparison>(View, Gate);
    }
    RunSnapshot snapshot;
    snapshot.Phase = p_Phase;
    quint64 const held = ReadDoor(snapshot);
    if (p_Phase == RunPhase::Comparing || p_Phase == RunPhase::ComparingStreamed) {
        Compared->Tell(snapshot,
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
