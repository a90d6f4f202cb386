#include "Host/Core/Jobs/UpdateJob.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"

namespace Varnholt::Host {

std::optional<Failure> UpdateJob::Prepare()
{
    if (auto failure = GameFailure())
        return failure;
    if (auto failure = FolderCheck::ForWriting(Folder()))
        return failure;
    bool const isUnverified = Context.Trust.IsOn() && !Context.Trust.IsGameVerified();
    if (Context.Record.IsUnfinished() || isUnverified)
        DistrustLists();
    if (TrustsLists())
        LetChainGoOn();
    return LockFolder(Folder());
}

void UpdateJob::BeginFiles()
{
    // The ordinary comparison trusts the pending lists for streamed files and for those of a first
    // build only; they know nothing of another build's.
    if (!TrustsLists() || Context.Record.CompletedBuild() != Context.Module.RemoteBuild)
        CompareEverything();
}

} // namespace Varnholt::Host
