#pragma once

#include <atomic>

namespace Varnholt::Host {

/// Whether the module may compare and download. Set on the module thread, read on any.
class RunGate {
public:
    void Open() { Opened = true; }
    void Close() { Opened = false; }
    bool IsOpen() const { return Opened; }

private:
    std::atomic<bool> Opened{false};
};

} // namespace Varnholt::Host
