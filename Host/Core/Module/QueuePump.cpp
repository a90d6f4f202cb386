#include "Host/Core/Module/QueuePump.hpp"

#include <QMutexLocker>

namespace Varnholt::Host {

void QueuePump::Drain()
{
    std::size_t count = 0;
    {
        QMutexLocker const lock(&Module.SyncQueueMutex);
        count = Module.SyncQueue.size();
    }
    for (; count > 0; --count) {
        std::function<void()> closure;
        {
            QMutexLocker const lock(&Module.SyncQueueMutex);
            if (Module.SyncQueue.empty())
                return;
            closure = std::move(Module.SyncQueue.front());
            Module.SyncQueue.pop();
        }
        closure();
    }
}

bool QueuePump::IsEmpty() const
{
    QMutexLocker const lock(&Module.SyncQueueMutex);
    return Module.SyncQueue.empty();
}

} // namespace Varnholt::Host
