#include "Host/Core/Module/AsyncWorker.hpp"

#include <QMutexLocker>

namespace Varnholt::Host {

AsyncWorker::AsyncWorker(Launcher::Application& p_Application)
    : Module(p_Application)
{
    setObjectName(QStringLiteral("module-worker"));
}

AsyncWorker::~AsyncWorker()
{
    Stop();
}

void AsyncWorker::Stop()
{
    Stopping = true;
    Wake.release();
    wait();
}

bool AsyncWorker::IsIdle() const
{
    QMutexLocker const lock(&Module.AsyncQueueMutex);
    return Module.AsyncQueue.empty() && !Busy;
}

std::function<void()> AsyncWorker::Take()
{
    QMutexLocker const lock(&Module.AsyncQueueMutex);
    Busy = !Module.AsyncQueue.empty();
    if (!Busy)
        return {};
    std::function<void()> closure = std::move(Module.AsyncQueue.front());
    Module.AsyncQueue.pop();
    return closure;
}

void AsyncWorker::run()
{
    constexpr int c_PollMilliseconds = 15; // the queue cannot wake anybody

    while (!Stopping) {
        if (std::function<void()> const closure = Take())
            closure();
        else
            Wake.tryAcquire(1, c_PollMilliseconds);
    }
}

} // namespace Varnholt::Host
