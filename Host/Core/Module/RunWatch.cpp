#include "Host/Core/Module/RunWatch.hpp"

namespace Varnholt::Host {

RunWatch::RunWatch(ModuleView const& p_View, AsyncWorker const& p_Worker,
                   TransferLedger const& p_Ledger)
    : View(p_View)
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
    return Worker.IsIdle() && View.IsQueueEmpty() && !View.HasTransfer() && Ledger.IsEmpty() &&
           !View.AwaitsReply();
}

} // namespace Varnholt::Host
