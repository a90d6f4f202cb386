#include "Host/Core/Jobs/Examination.hpp"

#include <algorithm>

namespace Varnholt::Host {

Examination::Examination(RunContext const& p_Context, bool p_EveryFile)
    : Work(std::make_shared<Inspection>(p_Context.Module.Manifest, p_Context.Record.Folder(),
                                        p_Context.Module.GetAppLocale(), p_EveryFile))
{
    p_Context.Module.EnqueueAsync([work = Work] { work->Run(); });
}

RunSnapshot Examination::Look() const
{
    RunSnapshot snapshot;
    snapshot.Phase = RunPhase::Comparing;
    snapshot.FileCount = Work->FileCount();
    snapshot.FileNumber = std::min(Work->FileNumber(), snapshot.FileCount);
    return snapshot;
}

} // namespace Varnholt::Host
