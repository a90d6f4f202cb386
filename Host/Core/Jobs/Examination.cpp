#include "Host/Core/Jobs/Examination.hpp"

#include <algorithm>

namespace Varnholt::Host {

Examination::Examination(RunContext const& p_Context, QString const& p_Folder, bool p_EveryFile)
    : Work(std::make_shared<Inspection>(p_Context.Module.Manifest, p_Folder,
                                        p_Context.Module.GetAppLocale(), p_EveryFile))
{
    p_Context.Module.EnqueueAsync([work = Work] { work->Run(); });
}

RunSnapshot Examination::Look(RunPhase p_Phase)
{
    RunSnapshot snapshot;
    snapshot.Phase = p_Phase;
    snapshot.FileCount = Work->FileCount();
    snapshot.FileNumber = std::min(Work->FileNumber(), snapshot.FileCount);
    if (snapshot.FileNumber > 0)
        snapshot.File = Work->FileAt(snapshot.FileNumber);
    snapshot.BytesTotal = Work->BytesTotal();
    snapshot.BytesDone = std::min(Work->BytesDone(), snapshot.BytesTotal);
    Pace.Tell(snapshot);
    return snapshot;
}

RunTotals Examination::Totals() const
{
    RunTotals totals;
    totals.Files = Work->FilesCompared();
    totals.Bytes = Work->BytesCompared();
    return totals;
}

} // namespace Varnholt::Host
