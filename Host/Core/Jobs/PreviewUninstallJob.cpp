#include "Host/Core/Jobs/PreviewUninstallJob.hpp"

namespace Varnholt::Host {

void PreviewUninstallJob::OnBuildKnown()
{
    Settle([this] {
        Removal = std::make_shared<GameRemoval>(Context.Module.Manifest, Folder(),
                                                Context.Info.LoginFiles);
        Context.Module.EnqueueAsync([removal = Removal] { removal->Look(); });
    });
}

void PreviewUninstallJob::Work()
{
    if (!Removal || !Removal->IsFinished())
        return;
    Result.Amount = Removal->Going();
    Result.Staying = Removal->Staying();
    Finish();
}

RunPhase PreviewUninstallJob::Phase() const
{
    return Removal ? RunPhase::Comparing : RunPhase::Connecting;
}

void PreviewUninstallJob::Release()
{
    if (Removal)
        Removal->Stop();
}

} // namespace Varnholt::Host
