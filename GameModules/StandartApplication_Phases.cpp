#include "GameModules/StandartApplication.hpp"

#include "GameModules/MirrorChoice.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QThread>

namespace Varnholt::Launcher {

void StandartApplication::OnManifestReceived_CheckStartDownload()
{
    CheckStartDownload(CurrentRun, &StandartApplication::RequestBaseSizes);
}

void StandartApplication::OnManifestReceived_StartDownload()
{
    RequestBaseSizes(CurrentRun);
}

void StandartApplication::ProcessContentDownload()
{
    BeginBaseFiles(CurrentRun);
}

void StandartApplication::ProcessStreamedContentDownload(bool p_Wait)
{
    CompareStreamed(CurrentRun, p_Wait);
}

void StandartApplication::StartStreamedContentDownload(bool p_Wait)
{
    BeginStreamedFiles(CurrentRun, p_Wait);
}

void StandartApplication::StartStreamedContentDownload_CheckStartDownload()
{
    CheckStartDownload(CurrentRun, &StandartApplication::FetchStreamedFiles);
}

void StandartApplication::AfterProcessStreamedContentDownload()
{
    EndRun(CurrentRun);
}

void StandartApplication::CheckStartDownload(RunId p_Run, RunStep p_Start)
{
    constexpr unsigned long c_PollMilliseconds = 100;

    {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        UISetting.Download.Percent = 100;
    }
    bool const running = IsGameRunning();
    {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        UISetting.Download.Mode = running ? ApplicationUISetting::ModeWaitingForGame
                                          : ApplicationUISetting::ModeWaitingForHost;
        UISetting.Download.DetailText = QStringLiteral("");
        UISettingChanged = true;
    }
    if (!IsDownloadBlocked() && !running) {
        if (!IsCurrentRun(p_Run))
            return;
        NotifyDownloadStarting();
        (this->*p_Start)(p_Run);
        return;
    }
    EnqueueAsync([this, p_Run, p_Start] {
        if (!IsCurrentRun(p_Run))
            return;
        QThread::msleep(c_PollMilliseconds);
        CheckStartDownload(p_Run, p_Start);
    });
}

void StandartApplication::RequestBaseSizes(RunId p_Run)
{
    RequestSizes(p_Run, [this, p_Run] { BeginBaseFiles(p_Run); });
}

void StandartApplication::RequestSizes(RunId p_Run, std::function<void()> const& p_Next)
{
    Entries files;
    {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        auto& progress = UISetting.Download;
        progress.Percent = 100;
        progress.ModeFlag = true;
        progress.Current = 0;
        progress.Total = 0;
        progress.Mode = ApplicationUISetting::ModeAskingSizes;
        progress.DetailText = QStringLiteral("Requesting files size...");
        UISettingChanged = true;
        SizeRepliesReceived = 0;
        if (!FilesBegun)
            CurrentDownloadIndex = 0;
        files = FilesToDownload;
    }
    for (std::size_t i = 0; i < files.size() && ShouldContinue(); ++i)
        EnqueueSync([this, p_Run, entry = files[i], p_Next] { RequestSize(p_Run, entry, p_Next); });
}

void StandartApplication::RequestSize(RunId p_Run, ApplicationManifestFileEntry const& p_Entry,
                                      std::function<void()> const& p_Next)
{
    if (!IsCurrentRun(p_Run))
        return;
    QString const url = ChooseServer(p_Entry);
    qCWarning(LogDownload) << Name << " Fetch file " << url;
    GetRemoteFileSize(url, [this, p_Run, p_Next](QString const& p_Url, unsigned long long p_Size) {
        if (!IsCurrentRun(p_Run))
            return;
        qCWarning(LogDownload) << Name << " Fetched file " << p_Url;
        UISetting.Download.Total += p_Size;
        if (++SizeRepliesReceived == FilesToDownload.size())
            EnqueueSync(p_Next);
    });
}

void StandartApplication::BeginBaseFiles(RunId p_Run)
{
    {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        if (!FilesToDownload.empty()) {
            IsDownloadingBase = true;
            BeginFiles(p_Run, QStringLiteral("Downloading base files..."));
            return;
        }
    }
    CompareStreamed(p_Run, false);
}

void StandartApplication::CompareStreamed(RunId p_Run, bool p_Wait)
{
    RunScope const scope(*this, p_Run);
    if (!scope)
        return;
    IsDownloadingBase = false;
    ClearStatusFlags();
    UISetting.Download.Percent = 100;
    UISetting.Download.ModeFlag = true;
    UISetting.Download.Current = 0;
    UISetting.Download.Mode = ApplicationUISetting::ModeComparing;
    UISettingChanged = true;
    // What is left of the base files' run, a size answer above all, must not count here.
    RunId const run = ReplaceList();
    EnqueueAsync(
        [this, run, firstBuild = IsFirstManifestBuild, p_Wait, entries = Manifest.StreamedFiles] {
            CompareStreamedFiles(run, firstBuild, p_Wait, entries);
        });
}

void StandartApplication::BeginStreamedFiles(RunId p_Run, bool p_Wait)
{
    {
        RunScope const scope(*this, p_Run);
        if (!scope)
            return;
        if (FilesToDownload.empty())
            return ShowIdle();
    }
    if (p_Wait)
        CheckStartDownload(p_Run, &StandartApplication::FetchStreamedFiles);
    else
        FetchStreamedFiles(p_Run);
}

void StandartApplication::FetchStreamedFiles(RunId p_Run)
{
    RunScope const scope(*this, p_Run);
    if (!scope)
        return;
    if (FilesToDownload.empty())
        return ShowIdle();
    BeginFiles(p_Run, QStringLiteral("Downloading streammed files..."));
}

void StandartApplication::BeginFiles(RunId p_Run, QString const& p_DetailText)
{
    auto& progress = UISetting.Download;
    // A resume does not wait for the sizes: files may have begun, and been suspended, before they
    // came.
    if (!FilesBegun || progress.Mode != ApplicationUISetting::ModeSuspended)
        progress.Mode = ApplicationUISetting::ModeDownloading;
    progress.DetailText = p_DetailText;
    UISettingChanged = true;
    if (FilesBegun)
        return;
    CurrentDownloadIndex = 0;
    DownloadedBytes = 0;
    ChooseServer(FilesToDownload.front());
    QueueStart(p_Run);
}

void StandartApplication::EndRun(RunId p_Run)
{
    RunScope const scope(*this, p_Run);
    if (!scope)
        return;
    CurrentDownload = nullptr;
    FilesToDownload.clear();
    FilesBegun = false;
}

QString StandartApplication::ChooseServer(ApplicationManifestFileEntry const& p_Entry)
{
    // At once: another thread may choose for another entry.
    QMutexLocker const lock(&RunMutex);
    ContentBaseUrl = MirrorChoice::BaseUrlFor(p_Entry, CdnHosts);
    return RemoteAddress(p_Entry);
}

QString StandartApplication::RemoteAddress(ApplicationManifestFileEntry const& p_Entry) const
{
    QMutexLocker const lock(&RunMutex);
    return ContentBaseUrl + AppId + QLatin1Char('/') + p_Entry.Location;
}

void StandartApplication::QueueStart(RunId p_Run, ResumeGate::Ticket p_Ticket)
{
    EnqueueSync([this, p_Run, p_Ticket] {
        if (Resumes.Holds(p_Ticket))
            StartCurrentFile(p_Run);
    });
}

void StandartApplication::StartCurrentFile(RunId p_Run)
{
    QString const folder = Folder();
    // The end of a file that is being completed starts the next one itself.
    if (!IsCurrentRun(p_Run) || folder.isEmpty() || !IsFilePending() || CompletingRun == p_Run)
        return;
    if (!Transfers.MayStart())
        return;
    // A transfer of a replaced run may still write the very file that is about to be fetched.
    Transfers.StopAside();
    QString address;
    QString path;
    QString part;
    {
        RunScope const scope(*this, p_Run);
        if (!scope || !IsFilePending())
            return;
        FilesBegun = true;
        ApplicationManifestFileEntry const& entry = FilesToDownload[CurrentDownloadIndex];
        // A question for another file's size may have changed the server since it was chosen.
        if (!MirrorChoice::MayServe(ContentBaseUrl, entry, CdnHosts))
            ChooseServer(entry);
        address = RemoteAddress(entry);
        path = entry.Path;
        part = Helper::Paths::PartFile(folder + path);
    }
    Links.LookAgain(); // the run may have begun hours ago
    // A partial file is never written through a link: what that leads to is not the module's.
    if (Links.IsBarred(folder, path) || (QFileInfo(part).isSymbolicLink() && !QFile::remove(part)))
        return GoOnWithNextFile(p_Run);
    CurrentDownload = DownloadFile(address, part, true);
}

void StandartApplication::FollowAbortedTransfer()
{
    if (Transfers.TakeStart())
        QueueStart(CurrentRun);
}

} // namespace Varnholt::Launcher
