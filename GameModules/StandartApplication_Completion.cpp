#include "GameModules/StandartApplication.hpp"

#include "GameModules/FileDigest.hpp"
#include "GameModules/FileLink.hpp"
#include "GameModules/PendingList.hpp"
#include "GameModules/PermissionBits.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Application/RateClock.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

#include <memory>
#include <utility>

namespace Varnholt::Launcher {

void StandartApplication::App_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest* p_Request)
{
    constexpr int c_SampleMilliseconds = 500;

    if (Transfers.IsAside(p_Request))
        return;
    auto& progress = UISetting.Download;
    progress.Current = DownloadedBytes + static_cast<quint64>(p_Request->CurrentBytes);
    progress.Percent = PercentOf(progress.Current, progress.Total);
    if (RateClock::Elapsed(Timer) >= c_SampleMilliseconds) {
        progress.LogDownloadRate(static_cast<quint64>(p_Request->BytesPerSecond));
        RateClock::Restart(Timer);
    }
    UISettingChanged = true;
}

void StandartApplication::App_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest* p_Request)
{
    if (!Transfers.IsAside(p_Request))
        CurrentDownload = p_Request;
}

void StandartApplication::App_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest* p_Request)
{
    if (Transfers.IsAside(p_Request)) {
        // Of another run by now, but the restarts are given back whoever has stopped it.
        if (p_Request->Aborted)
            DownloadRetryCount = 0;
        return;
    }
    RunId const run = CurrentRun;
    if (CurrentDownloadIndex >= FilesToDownload.size()) {
        CurrentDownload = nullptr;
        return;
    }
    // Copies: the list grows on a retry, and a host that is told of an error may do anything.
    // One that lets events through while it shows the error has the record deleted meanwhile.
    ApplicationManifestFileEntry const entry = FilesToDownload[CurrentDownloadIndex];
    auto const digest = p_Request->Digest;
    bool const aborted = p_Request->Aborted;
    quint64 const contentLength = p_Request->ContentLength;
    qint64 const unsampled = p_Request->BytesOnDisk - p_Request->RateSampleBytes;
    CompletingRun = run;

    UpdatePendingList(QString());
    if (aborted) {
        // Struck from its list though it is not complete: the host looks at every file again after
        // a run that was stopped.
        DownloadRetryCount = 0;
        DownloadedBytes += static_cast<quint64>(p_Request->CurrentBytes);
    } else {
        DownloadedBytes += contentLength;
        char const* const reason = PlaceFile(entry, p_Request->Continuable, digest);
        if (!IsCurrentRun(run))
            return;
        if (reason != nullptr)
            RetryOrGiveUp(reason, entry, contentLength);
    }
    ShowFileDone(unsampled);
    CurrentDownload = nullptr;
    CompletingRun.reset();
    return aborted ? FollowAbortedTransfer() : GoOnWithNextFile(run);
}

void StandartApplication::UpdatePendingList(QString const& p_Added)
{
    if (Folder().isEmpty())
        return;
    PendingList::Update(CurrentListPath(), FilesToDownload[CurrentDownloadIndex].Path, p_Added,
                        ShouldContinue);
}

char const* StandartApplication::PlaceFile(ApplicationManifestFileEntry const& p_Entry,
                                           bool p_Continuable,
                                           std::optional<FollowingDigest::Result> const& p_Digest)
{
    QString const folder = Folder();
    Links.LookAgain(); // the run may have begun hours ago
    if (Links.IsBarred(folder, p_Entry.Path)) {
        UpdatePendingList(p_Entry.Path); // for a run that can reach it
        return nullptr;
    }
    QString const path = folder + p_Entry.Path;
    QString const part = Helper::Paths::PartFile(path);
    RemoveOldFile(path);
    if (QFileInfo(part).isSymbolicLink()) // put there since the transfer was begun
        QFile::remove(part);

    auto const digest = p_Digest && p_Digest->IsOf(part)
                            ? FileDigest::Known(p_Digest->Md5, p_Digest->Size, ShouldContinue)
                            : FileDigest::Of(part, ShouldContinue);
    if (!digest.Opened)
        return "(IO) Download restarted for ";
    if (digest.Md5 != p_Entry.Md5) {
        // What cannot become the file by going on from its end would only cost further restarts.
        if (digest.Complete && !p_Continuable)
            QFile::remove(part);
        return "(MD5) Download restarted for ";
    }
    if (!QFile::rename(part, path))
        return "(RENAME) Download restarted for ";
    PermissionBits::ApplyToNewFile(path, p_Entry);
    return nullptr;
}

void StandartApplication::RemoveOldFile(QString const& p_Path)
{
    constexpr qint64 c_Large = qint64{64} * 1024 * 1024;

    QFile file(p_Path);
    bool const isLink = FileLink::At(p_Path) != FileLink::Kind::None;
    if (!isLink && !file.exists())
        return;
    if (!isLink)
        file.setPermissions(file.permissions() | PermissionBits::c_Write);
    // Freeing gigabytes takes the system a while, for which whoever closes the file last waits.
    auto held = std::make_shared<QFile>(p_Path);
    if (!isLink && file.size() >= c_Large)
        held->open(QIODevice::ReadOnly);
    if (!file.remove())
        ReportFileError(file);
    if (held->isOpen())
        EnqueueAsync([held = std::move(held)] {});
}

void StandartApplication::RetryOrGiveUp(char const* p_Reason,
                                        ApplicationManifestFileEntry const& p_Entry,
                                        quint64 p_ContentLength)
{
    // One budget for all files of the run.
    constexpr quint32 c_MostRestarts = 5;

    if (DownloadRetryCount >= c_MostRestarts) {
        qCWarning(LogDownload) << "(ToManyRetry) Download aborded for " << p_Entry.Location;
        return;
    }
    qCWarning(LogDownload) << p_Reason << p_Entry.Location;
    {
        QMutexLocker const lock(&RunMutex);
        FilesToDownload.push_back(p_Entry);
    }
    UpdatePendingList(p_Entry.Path);
    UISetting.Download.Total += p_ContentLength;
    UISettingChanged = true;
    ++DownloadRetryCount;
}

void StandartApplication::ShowFileDone(qint64 p_UnsampledBytes)
{
    auto& progress = UISetting.Download;
    progress.Current = DownloadedBytes;
    progress.Percent = PercentOf(progress.Current, progress.Total);
    if (p_UnsampledBytes > 0)
        progress.LogDownloadRate(static_cast<quint64>(p_UnsampledBytes));
    UISettingChanged = true;
}

void StandartApplication::GoOnWithNextFile(RunId p_Run)
{
    QString server;
    bool isBase = false;
    {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        isBase = IsDownloadingBase;
        ++CurrentDownloadIndex;
        if (CurrentDownloadIndex < FilesToDownload.size()) {
            ChooseServer(FilesToDownload[CurrentDownloadIndex]);
            server = ContentBaseUrl;
        }
    }
    if (!server.isEmpty()) {
        qCWarning(LogDownload) << "Selected CDN " << Name << " " << server;
        QueueStart(p_Run);
        return;
    }
    DropSizeQueries(); // of a run whose files a resume has fetched before their sizes came
    if (isBase) {
        CompareStreamed(p_Run, false);
        return;
    }
    NotifyDownloadFinished();
    if (!IsCurrentRun(p_Run))
        return;
    {
        QMutexLocker const lock(&RunMutex);
        UISetting.Download.DetailText = QStringLiteral("");
    }
    ShowIdle();
    EnqueueSync([this, p_Run] { EndRun(p_Run); });
}

} // namespace Varnholt::Launcher
