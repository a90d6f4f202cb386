#pragma once

#include "Host/Core/Module/AsyncWorker.hpp"
#include "Host/Core/Module/ModuleView.hpp"
#include "Host/Core/Module/TransferLedger.hpp"

namespace Varnholt::Host {

/// Sees when a run is over. The module does not tell: it falls silent, whether all is in place, a
/// server gave no answer, or a file could not be opened. Module thread.
class RunWatch {
public:
    RunWatch(ModuleView const& p_View, AsyncWorker const& p_Worker, TransferLedger const& p_Ledger);

    /// Called once in each turn of the event loop. \return true when nothing has been queued,
    /// running or in flight for two turns: what one turn has finished may still have posted work
    bool Observe();
    void Reset() { QuietTurns = 0; }

private:
    bool IsQuiet() const;

    ModuleView const& View;
    AsyncWorker const& Worker;
    TransferLedger const& Ledger;
    int QuietTurns = 0;
};

} // namespace Varnholt::Host
