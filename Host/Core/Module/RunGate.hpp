#pragma once

#include <atomic>

namespace Varnholt::Host {

/// Whether the module may compare and download. Set on the module thread, read on any.
class RunGate {
public:
    void Open() { Opened = true; }
    void Close() { Opened = false; }
    /// A held gate lets the module compare, and begin no download.
    void Hold() { Held = true; }
    void Release() { Held = false; }
    bool IsOpen() const { return Opened; }
    /// In a preview the module sees no installation, and what it writes to the settings is dropped:
    /// it learns of the current build and touches nothing.
    void SetPreview(bool p_Preview) { Preview = p_Preview; }
    bool IsPreview() const { return Preview; }
    bool IsOpenForDownload() const { return Opened && !Held; }

private:
    std::atomic<bool> Opened{false};
    std::atomic<bool> Held{false};
    std::atomic<bool> Preview{false};
};

} // namespace Varnholt::Host
