#pragma once

#include <atomic>
#include <set>

namespace Varnholt::Launcher {

struct HTTP_DownloadFileRequest;

/// The one transfer that a run has in flight, and those of replaced runs that have not ended yet.
/// Owns no record: each is valid until its download is retired. Application thread, but for
/// `ForgetStart()`.
class TransferSlot {
public:
    using Transfer = HTTP_DownloadFileRequest*;

    /// \param p_Current where the transfer in flight is kept, null when there is none
    explicit TransferSlot(Transfer& p_Current);

    /// Takes the transfer in flight out of the run, without stopping it: its signals are ignored.
    void SetAside();
    /// Stops the transfer in flight for good and takes it out of the run.
    void Replace();
    /// Ends the transfers that were taken out of their runs, and waits for it.
    void StopAside();
    bool IsAside(Transfer p_Transfer) const { return Aside.count(p_Transfer) != 0; }
    std::size_t AsideCount() const { return Aside.size(); }
    /// Called when a download is over: its record is deleted afterwards. \return whether it was the
    /// transfer in flight, whose end nobody has been told of
    bool Retire(Transfer p_Transfer);

    /// Whether a file may be started: one transfer at a time. A start behind a transfer that was
    /// stopped, and whose end has not been handled yet, is remembered.
    bool MayStart();
    /// Any thread.
    void ForgetStart() { StartIsOwed = false; }
    /// Whether a start was remembered, which is then forgotten.
    bool TakeStart() { return StartIsOwed.exchange(false); }

private:
    Transfer& Current;
    std::set<Transfer> Aside;
    std::atomic<bool> StartIsOwed{false};
};

} // namespace Varnholt::Launcher
