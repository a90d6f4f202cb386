#pragma once

#include "Launcher/Application/Application.hpp"

namespace Varnholt::Host {

/// Runs the module's closures for its application thread.
class QueuePump {
public:
    explicit QueuePump(Launcher::Application& p_Application)
        : Module(p_Application)
    {
    }

    /// Runs what stands in the queue now; what these closures queue is left for the next call, so
    /// that the thread's events get their turn. Module thread.
    void Drain();
    bool IsEmpty() const;

private:
    Launcher::Application& Module;
};

} // namespace Varnholt::Host
