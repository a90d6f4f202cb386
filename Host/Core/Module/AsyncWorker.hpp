#pragma once

#include "Launcher/Application/Application.hpp"

#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <functional>

namespace Varnholt::Host {

/// The thread that runs the module's long closures, one after another.
class AsyncWorker : public QThread {
public:
    explicit AsyncWorker(Launcher::Application& p_Application);
    /// Stops and waits.
    ~AsyncWorker() override;

    /// Ends the thread after the closure in hand and waits for it; the rest stays in the queue.
    void Stop();
    /// True when nothing is queued and nothing runs. Any thread.
    bool IsIdle() const;

protected:
    void run() override;

private:
    std::function<void()> Take();

    Launcher::Application& Module;
    std::atomic<bool> Stopping{false};
    bool Busy =
        false; ///< guarded by the queue's mutex: a closure is always either queued or counted here
    QSemaphore Wake;
};

} // namespace Varnholt::Host
