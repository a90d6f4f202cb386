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
    Transfers.StopAside();
    if (!IsFilePending())
        return ShowIdle();
    // Between two files nothing can be stopped: hosts call again until a transfer is in flight.
    if (CurrentDownload == nullptr)
        return;
    RunId const run = CurrentRun;
    Transfers.ForgetStart();
    {
        // A poll at this moment shows its mode before, or not at all.
        QMutexLocker const lock(&RunMutex);
        Resumes.VoidAll();
    }
    CurrentDownload->Abort();
    NotifyDownloadFinished();
    RunScope const scope(*this, run);
    if (!scope)
        return;
    UISetting.Download.Mode = ApplicationUISetting::ModeSuspended;
    UISettingChanged = true;
}

void StandartApplication::ResumeDownload()
{
    RunId const run = CurrentRun;
    // A poll goes on with the resume that began it: a suspension may have come since it looked.
    bool const isPoll = QThread::currentThread() != thread();
    ResumeGate::Ticket const ticket = isPoll ? Resumes.Polled() : Resumes.Now();
    auto& progress = UISetting.Download;
    {
        RunScope const scope(*this, run);
        if (!scope || !Resumes.Holds(ticket))
            return;
        if (!IsFilePending())
            return ShowIdle();
        progress.Percent = 100;
    }
    bool const running = IsGameRunning();
    {
        RunScope const scope(*this, run);
        if (!scope || !Resumes.Holds(ticket))
            return;
        progress.Mode = running ? ApplicationUISetting::ModeWaitingForGame
                                : ApplicationUISetting::ModeWaitingForHost;
        UISettingChanged = true;
    }
    if (IsDownloadBlocked() || running)
        return PollResume(ticket);
    if (Resumes.Holds(ticket))
        GoOnAfterResume(run, ticket);
}

void StandartApplication::GoOnAfterResume(RunId p_Run, ResumeGate::Ticket p_Ticket)
{
    NotifyDownloadStarting();
    QString server;
    {
        RunScope const scope(*this, p_Run);
        if (!scope || !Resumes.Holds(p_Ticket) || !IsFilePending())
            return;
        auto& progress = UISetting.Download;
        progress.Mode = ApplicationUISetting::ModeDownloading;
        progress.Percent = PercentOf(progress.Current, progress.Total);
        UISettingChanged = true;
        ChooseServer(FilesToDownload[CurrentDownloadIndex]);
        server = ContentBaseUrl;
    }
    qCWarning(LogDownload) << "Selected CDN " << Name << " " << server;
    QueueStart(p_Run, p_Ticket);
}

bool StandartApplication::PassOverCurrentFile()
{
    if (CurrentDownload != nullptr)
        return false;
    bool isLast = false;
    bool isBase = false;
    {
        QMutexLocker const lock(&RunMutex);
        if (!IsFilePending())
            return false;
        FilesToDownload.erase(FilesToDownload.begin() +
                              static_cast<std::ptrdiff_t>(CurrentDownloadIndex));
        isLast = !IsFilePending();
        isBase = IsDownloadingBase;
    }
    if (!isLast)
        ResumeDownload();
    else if (isBase)
        CompareStreamed(CurrentRun, false);
    return !isLast || isBase;
}

void StandartApplication::PollResume(ResumeGate::Ticket p_Ticket)
{
    constexpr unsigned long c_PollMilliseconds = 100;

    if (!Resumes.BeginPoll(p_Ticket))
        return;
    EnqueueAsync([this, p_Ticket] {
        QThread::msleep(c_PollMilliseconds);
        if (Resumes.EndPoll(p_Ticket))
            ResumeDownload();
    });
}

} // namespace Varnholt::Launcher
