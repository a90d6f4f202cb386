#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Jobs/CompletionJob.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

namespace Varnholt::Host {

namespace {

/// Completes the installed game: an update trusts its pending lists where they can be, a repair
/// looks at every file.
class UpdateJob : public CompletionJob {
public:
    using CompletionJob::CompletionJob;

    void StopRepair() override
    {
        if (!IsRepair())
            return;
        if (IsWorking())
            return AbortRepair();
        Result.IsRepairStopped = true; // nothing has been looked at
        Interrupt();
    }

protected:
    std::optional<Failure> Prepare() override
    {
        if (auto failure = GameFailure())
            return failure;
        if (auto failure = FolderCheck::ForWriting(Folder()))
            return failure;
        bool const isUnverified = Context.Trust.IsOn() && !Context.Trust.IsGameVerified();
        if (IsRepair() || Context.Record.IsUnfinished() || isUnverified)
            DistrustLists();
        if (TrustsLists())
            LetChainGoOn();
        return LockFolder(Folder());
    }

    void BeginFiles() override
    {
        // The ordinary comparison trusts the pending lists for streamed files and for those of a
        // first build only; they know nothing of another build's.
        if (!TrustsLists() || Context.Record.CompletedBuild() != Context.Module.RemoteBuild)
            CompareEverything();
    }

private:
    bool IsRepair() const { return Request.Kind == RunRequest::Type::Repair; }
};

} // namespace

JobMaker const MakeUpdateJob = MakeJob<UpdateJob>;

} // namespace Varnholt::Host
