#include "Host/Core/Module/RunWatch.hpp"

#include <QMutexLocker>

#include <algorithm>

namespace Varnholt::Host {

RunWatch::RunWatch(Launcher::StandartApplication& p_Module, QueuePump const& p_Pump,
                   AsyncWorker const& p_Worker, TransferLedger const& p_Ledger)
    : Module(p_Module)
    , Pump(p_Pump)
    , Worker(p_Worker)
    , Ledger(p_Ledger)
{
}

bool RunWatch::Observe()
{
    constexpr int c_TurnsToBelieve = 2;

    QuietTurns = IsQuiet() ? QuietTurns + 1 : 0;
    return QuietTurns >= c_TurnsToBelieve;
}

bool RunWatch::IsQuiet() const
{
    // The worker first: once it rests, only this thread can give it something to do.
    if (!Worker.IsIdle() || !Pump.IsEmpty() || Module.CurrentDownload != nullptr ||
        !Ledger.IsEmpty())
        return false;
    {
        QMutexLocker const lock(&Module.ContentRequestsMutex);
        if (!Module.ContentRequests.empty())
            return false;
    }
    // A query that failed stays in the map for good.
    QMutexLocker const lock(&Module.ContentSizeRequestsMutex);
    return std::all_of(Module.ContentSizeRequests.begin(), Module.ContentSizeRequests.end(),
                       [](auto const& p_Row) { return p_Row.first->isFinished(); });
}

} // namespace Varnholt::Host
