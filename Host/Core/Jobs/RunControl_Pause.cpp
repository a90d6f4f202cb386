#include "Host/Core/Jobs/RunControl.hpp"

namespace Varnholt::Host {

void RunControl::Pause()
{
    if (CurrentStep == Step::Idle || !Completes(Request))
        return; // there is no transfer to pause
    Paused = true;
    Context.Gate.Hold();
    Context.Door->Pause();
}

void RunControl::Continue()
{
    if (!Paused)
        return;
    bool const stopped = IsSuspended();
    Paused = false;
    Context.Gate.Release();
    if (CurrentStep == Step::Running) { // what has arrived until now is not to come again
        Plan.Forget();
        Plan.Look(Folder());
    }
    Context.Door->Continue();
    Context.Watch.Reset();
    if (CurrentStep == Step::Running && stopped)
        Context.Module.ResumeDownload();
}

void RunControl::Interrupt()
{
    if (CurrentStep == Step::StartingGame)
        NoticeOnce(QStringLiteral("The game was started and goes on running."));
    if (CurrentStep != Step::Idle)
        Fail({FailureKind::Interrupted, {}, {}});
}

bool RunControl::IsSuspended() const
{
    return Paused && Reader.Phase() == RunPhase::Suspended;
}

/// Called in each turn of a paused run, or when a transfer comes no further: between two files
/// nothing can be stopped, but the next one can, as soon as it has begun.
void RunControl::StopTransfer()
{
    Launcher::HTTP_DownloadFileRequest const* const transfer = Context.Module.CurrentDownload;
    if (transfer != nullptr && !transfer->Aborted)
        Context.Module.SuspendDownload();
}

} // namespace Varnholt::Host
