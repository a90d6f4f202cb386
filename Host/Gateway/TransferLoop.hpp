#pragma once

#include "Host/Gateway/Clock.hpp"
#include "Host/Gateway/Transfer.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Varnholt::Gateway {

/// Runs transfers side by side on the one thread that calls `Run`. The rest on that thread too, but
/// for `Wake` and `Stop`.
class TransferLoop {
public:
    using Id = std::uint64_t;

    explicit TransferLoop(GatewayOptions const& p_Options);
    ~TransferLoop();

    Id Start(TransferRequest p_Request, TransferEvents p_Events);
    /// Ends a transfer without a word to anybody; nothing happens when it has ended.
    void Cancel(Id p_Transfer);
    /// Hands its bytes again to all that did not take them.
    void ResumePaused();

    /// \param p_OnTurn called before each wait; tells when it wants to be called again at the
    /// latest
    void Run(std::function<TimePoint()> const& p_OnTurn);
    void Wake();
    void Stop();

private:
    void Perform();

    GatewayOptions const& Options;
    CURLM* Multi;
    std::map<Id, std::unique_ptr<Transfer>> Transfers;
    std::vector<std::unique_ptr<Transfer>> Cancelled; ///< perhaps from within a callback of theirs
    Id LastId = 0;
    std::atomic<bool> Stopping{false};
};

} // namespace Varnholt::Gateway
