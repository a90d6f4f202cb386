#pragma once

#include <QtGlobal>

#include <atomic>

namespace Varnholt::Host {

/// Whether the module may compare and download. Any thread; the module asks on all of its own, in
/// the midst of a long file too.
class RunGate {
public:
    /// Ends what the module is at, also while the module thread is busy, and stays until `Begin`:
    /// to the module a comparison that was broken off looks like one that is done.
    void Interrupt() { Interrupted = true; }
    void Begin() { Interrupted = false; }
    bool IsInterrupted() const { return Interrupted; }
    void Open() { Opened = true; }
    void Close() { Opened = false; }
    /// A held gate lets the module compare, and begin no download.
    void Hold() { Held = true; }
    void Release() { Held = false; }
    bool IsHeld() const { return Held; }
    bool IsOpen() const { return Opened && !Interrupted; }
    /// In a preview the module sees no installation, and what it writes to the settings is dropped:
    /// it learns of the current build and touches nothing.
    void SetPreview(bool p_Preview) { Preview = p_Preview; }
    bool IsPreview() const { return Preview; }
    void CountQuestion() { ++Asked; }
    /// How often the module has asked whether it may go on: of a file that it reads, for each
    /// `FileDigest::c_BlockBytes`.
    quint64 Questions() const { return Asked; }
    bool IsOpenForDownload() const { return IsOpen() && !Held; }

private:
    std::atomic<quint64> Asked{0};
    std::atomic<bool> Opened{false};
    std::atomic<bool> Held{false};
    std::atomic<bool> Preview{false};
    std::atomic<bool> Interrupted{false};
};

} // namespace Varnholt::Host
