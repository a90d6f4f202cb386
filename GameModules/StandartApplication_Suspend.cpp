#include "GameModules/StandartApplication.hpp"

#include "Launcher/Application/LogCategories.hpp"

#include <QMutexLocker>
#include <QThread>

#include <cstddef>

namespace Varnholt::Launcher {

bool StandartApplication::IsFilePending() const
{
    QMutexLocker const lock(&RunMutex);
    return CurrentDownloadIndex < FilesToDownload.size();
}

void StandartApplication::SuspendDownload()
{
    // The last thing that a host asks for: nothing may be left running behind it.
    StopTransfersAside();
    if (!IsFilePending())
        return ShowIdle();
    // Between two files nothing can be stopped: hosts call again until a transfer is in flight.
    if (CurrentDownload == nullptr)
        return;
    RunId const run = CurrentRun;
    StartAfterAbort = false;
    {
        // A poll at this moment shows its mode before, or not at all.
        QMutexLocker const lock(&RunMutex);
        ++ResumeTicket;
    }
    CurrentDownload->Abort();
    NotifyDownloadFinished();
    if (!IsCurrentRun(run))
        return;
    UISetting.Download.Mode = ApplicationUISetting::ModeSuspended;
    UISettingChanged = true;
}

void StandartApplication::ResumeDownload()
{
    RunId const run = CurrentRun;
    // A poll goes on with the resume that began it: a suspension may have come since it looked.
    quint64 const ticket = QThread::currentThread() == thread() ? ResumeTicket : PollingTicket;
    if (!IsFilePending())
        return ShowIdle();
    auto& progress = UISetting.Download;
    {
        RunScope const scope(*this, run);
        if (!scope || ResumeTicket != ticket)
            return;
        progress.Percent = 100;
    }
    bool const running = IsGameRunning();
    {
        RunScope const scope(*this, run);
        if (!scope || ResumeTicket != ticket)
            return;
        progress.Mode = running ? ApplicationUISetting::ModeWaitingForGame
                                : ApplicationUISetting::ModeWaitingForHost;
        UISettingChanged = true;
    }
    if (IsDownloadBlocked() || running)
        return PollResume(ticket);
    if (ResumeTicket != ticket)
        return;

    NotifyDownloadStarting();
    RunScope const scope(*this, run);
    if (!scope || ResumeTicket != ticket || !IsFilePending())
        return;
    progress.Mode = ApplicationUISetting::ModeDownloading;
    progress.Percent = PercentOf(progress.Current, progress.Total);
    UISettingChanged = true;
    ChooseServer(FilesToDownload[CurrentDownloadIndex]);
    qCWarning(LogDownload) << "Selected CDN " << Name << " " << ContentBaseUrl;
    QueueStart(run, ticket);
}

bool StandartApplication::PassOverCurrentFile()
{
    if (CurrentDownload != nullptr)
        return false;
    {
        QMutexLocker const lock(&RunMutex);
        if (!IsFilePending())
            return false;
        FilesToDownload.erase(FilesToDownload.begin() +
                              static_cast<std::ptrdiff_t>(CurrentDownloadIndex));
    }
    if (IsFilePending())
        ResumeDownload();
    else if (IsDownloadingBase)
        CompareStreamed(CurrentRun, false);
    else
        return false;
    return true;
}

void StandartApplication::PollResume(quint64 p_Ticket)
{
    constexpr unsigned long c_PollMilliseconds = 100;

    QMutexLocker const lock(&RunMutex);
    if (PolledTicket == p_Ticket) // one poll is enough, however often a resume is asked for
        return;
    PolledTicket = p_Ticket;
    EnqueueAsync([this, p_Ticket] {
        QThread::msleep(c_PollMilliseconds);
        {
            QMutexLocker const poll(&RunMutex);
            // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): the object is not null
            if (ResumeTicket != p_Ticket)
                return;
            PolledTicket = 0;
            PollingTicket = p_Ticket;
        }
        ResumeDownload();
    });
}

} // namespace Varnholt::Launcher
