#include "Host/Core/Jobs/CompletionJob.hpp"

#include "Host/Core/Folder/FileDiagnosis.hpp"
#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// How often the module repeats downloads, counted over all files, before it gives them up.
constexpr quint32 c_ModuleRestarts = 5;
constexpr int c_MostPasses = 5;
constexpr std::size_t c_MostPassedOver = 20;

} // namespace

void CompletionJob::OnBuildKnown()
{
    if (CanUseBuild())
        BeginFiles();
}

void CompletionJob::CompareEverything()
{
    WantsEveryFile = true;
    Context.Record.MarkUnfinished();
    Context.Gate.Open();
    Context.Module.Repair();
}

void CompletionJob::AbortRepair()
{
    Result.IsRepairStopped = true;
    Examined.reset();
    WantsEveryFile = false;
    Passes = c_MostPasses;
    AwaitSilence();
    Context.Module.AbortRepair();
}

void CompletionJob::BeforeQueue()
{
    if (IsOver() || !IsWorking() || Examined)
        return;
    // Before the module asks for the first file: the door fetches ahead.
    LookAtPlan();
    if (auto const failure = Faults.LookAtRoom(Folder()))
        return Fail(*failure);
    if (Paused)
        Context.View.StopTransfer();
}

void CompletionJob::LookAtPlan()
{
    auto const mark = Context.View.Mark();
    if (!mark || mark == Planned)
        return;
    Planned = mark;
    std::vector<Gateway::PlannedFile> plan;
    for (ModuleView::Entry const& entry : Context.View.Remaining())
        plan.push_back(Context.Door.Planned(entry, Folder() + entry.Path));
    Context.Door->Plan(plan, mark->AsksSizes);
}

/// Between two files of a paused run the next one must not begin.
bool CompletionJob::HoldsQueue() const
{
    return Context.Gate.IsHeld() && IsDownloading(Reader.Phase()) && !Context.View.HasTransfer();
}

void CompletionJob::Work()
{
    if (Examined) {
        if (Examined->IsFinished())
            OnExamined();
        return;
    }
    bool const isHeld = Paused && Phase() == RunPhase::Suspended;
    if (!isHeld && IsSilent())
        return OnQuiet();
    // The module would restart a transfer that brings nothing without end: stopped, it is passed
    // over.
    if (!Paused && Context.Ledger.ComesNoFurther())
        Context.View.StopTransfer();
}

void CompletionJob::Pause()
{
    Paused = true;
    Context.Gate.Hold();
    Context.Door->Pause();
}

void CompletionJob::Continue()
{
    if (!Paused)
        return;
    bool const stopped = IsSuspended();
    Paused = false;
    Context.Gate.Release();
    if (IsWorking()) { // what has arrived until now is not to come again
        Planned.reset();
        LookAtPlan();
    }
    Context.Door->Continue();
    AwaitSilence();
    if (IsWorking() && stopped)
        Context.Module.ResumeDownload();
}

bool CompletionJob::IsSuspended() const
{
    return Paused && Reader.Phase() == RunPhase::Suspended;
}

RunPhase CompletionJob::Phase() const
{
    if (Examined)
        return RunPhase::Verifying;
    RunPhase const phase = IsWorking() ? Reader.Phase() : RunPhase::Connecting;
    // A paused door gives nothing: what waits for it is suspended. A transfer that has not been
    // stopped yet still counts as going on.
    bool const usesDoor = phase == RunPhase::WaitingForHost || phase == RunPhase::AskingSizes ||
                          (IsDownloading(phase) && !Context.View.HasTransfer());
    return Paused && usesDoor ? RunPhase::Suspended : phase;
}

RunSnapshot CompletionJob::Look()
{
    RunSnapshot snapshot = Examined ? Examined->Look(Phase()) : Reader.Read(Phase());
    snapshot.IsHeld = Paused && !Context.View.HasTransfer();
    snapshot.Space = Faults.Space();
    return snapshot;
}

/// Called when the module has fallen silent: finds out where it stopped.
void CompletionJob::OnQuiet()
{
    AwaitSilence();
    auto const stopped = Context.View.Current();
    // When a single size query gets no answer, the module waits for it for ever.
    if (stopped && Reader.Phase() == RunPhase::AskingSizes)
        return Fail(LatestFailure());
    if (stopped)
        return PassOver(*stopped);
    Verify();
}

/// Called for a file that could not be opened. The module stops there; the files behind it are to
/// arrive all the same.
void CompletionJob::PassOver(Launcher::ApplicationManifestFileEntry const& p_Entry)
{
    Failure const failure = Explain({p_Entry});
    PassedOver.insert(p_Entry.Path);
    // A full disk, a folder or a server would stop the next file as well.
    bool const isAlone = failure.Kind != FailureKind::DiskFull &&
                         failure.Kind != FailureKind::FolderUnwritable && !failure.IsNetwork();
    if (!isAlone || PassedOver.size() > c_MostPassedOver)
        return Fail(failure);
    if (!Blocked)
        Blocked = failure;
    if (!Context.Module.PassOverFile())
        Verify();
}

void CompletionJob::Verify()
{
    Launcher::StandartApplication& module = Context.Module;
    auto missing = MissingFiles(module.Manifest, Folder(), module.GetAppLocale());
    missing.erase(
        std::remove_if(missing.begin(), missing.end(),
                       [this](auto const& p_Entry) { return PassedOver.count(p_Entry.Path) != 0; }),
        missing.end());
    if (missing.empty() && Blocked)
        return Fail(*Blocked);
    if (missing.empty() && Context.View.Restarts() < c_ModuleRestarts)
        return Complete();
    if (missing.empty()) { // a file that was given up may still have its old content
        Examined = Inspection::Begin(Context, Folder(), true);
        return;
    }
    // The module has one budget of repetitions for all files: one bad file takes it from the rest.
    bool const isNextFromOthers = Faults.ServersBehind() > LastBehind;
    bool const mayHelp = !WantsEveryFile || missing.size() < LastMissing || isNextFromOthers;
    bool const isSettled = WantsEveryFile && missing.size() == 1 && !isNextFromOthers;
    if (mayHelp && !isSettled && ++Passes < c_MostPasses) {
        LastMissing = WantsEveryFile ? missing.size() : LastMissing;
        LastBehind = Faults.ServersBehind();
        Context.View.RenewRestarts();
        return CompareEverything();
    }
    Fail(Explain(missing));
}

/// Called when every file has been looked at once more.
void CompletionJob::OnExamined()
{
    if (Examined->Findings().empty())
        return Complete();
    Fail(Explain(EntriesOf(Examined->Findings())));
}

void CompletionJob::Complete()
{
    if (Context.Gate.IsInterrupted()) // a comparison that was stopped has found nothing either
        return Interrupt();
    if (auto const failure = LinkFailure(Folder()))
        return Fail(*failure);
    NoticeRealmList();
    if (Result.IsRepairStopped) // the mark stays
        return Finish();
    // The mark goes only when the files are on the disk: after a power cut it is all that tells.
    if (Context.Record.IsUnfinished()) {
        auto files = Context.Module.Manifest.Files;
        auto const& streamed = Context.Module.Manifest.StreamedFiles;
        files.insert(files.end(), streamed.begin(), streamed.end());
        for (GameVolumes::Share const& share : GameVolumes::Of(Folder(), files))
            Context.Options.Flush(share.Folder);
    }
    if (auto const unkept = Context.Record.MarkComplete(Context.Module.RemoteBuild))
        return Fail(*unkept);
    if (!Context.Copies.Keep(Context.Door->Fetched(), Context.Door.PathOf(VersionFile())))
        NoticeOnce({NoticeKind::CopiesNotKept, Context.Copies.Folder()});
    else if (Verifier() != nullptr)
        Context.Trust.RememberCopies(*Verifier());
    Finish();
}

Failure CompletionJob::Explain(FaultWatch::Entries const& p_Missing)
{
    auto const diagnosis =
        FileDiagnosis(Folder(), Context.Door, Context.Options.FreeBytes).Explain(p_Missing);
    std::vector<FileFinding>& told = Result.Findings;
    for (FileFinding const& finding : diagnosis.Files) { // perhaps told in an earlier pass
        auto const isIt = [&](FileFinding const& p_Told) { return p_Told.Path == finding.Path; };
        told.erase(std::remove_if(told.begin(), told.end(), isIt), told.end());
        told.push_back(finding);
    }
    return diagnosis.Whole;
}

} // namespace Varnholt::Host
