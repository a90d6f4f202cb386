#include "Tests/ThreadSanitizer/RacingThreads.hpp"

#include <QMutex>
#include <QMutexLocker>
#include <QReadWriteLock>

namespace Varnholt::RacingThreads {

void NoOrder()
{
    auto const thread = RunUnordered(Count);
    Count();
    thread->wait();
}

void OtherMutex()
{
    QMutex first;
    QMutex second;
    auto const thread = RunUnordered([&] {
        QMutexLocker const lock(&first);
        Count();
    });
    {
        QMutexLocker const lock(&second);
        Count();
    }
    thread->wait();
}

void BothOnlyRead()
{
    QReadWriteLock readWrite;
    auto const thread = RunUnordered([&] {
        QReadLocker const lock(&readWrite);
        Count();
    });
    {
        QReadLocker const lock(&readWrite);
        Count();
    }
    thread->wait();
}

/// Events come to the thread all the time, but not from who has written.
void OtherSender()
{
    Loop loop;
    Sender theirs;
    Sender ours;
    QObject::connect(&ours, &Sender::Sent, loop.Inside, &Receiver::Receive, Qt::QueuedConnection);
    auto const thread = RunUnordered([&] {
        Count();
        Q_EMIT theirs.Sent();
    });
    loop.Inside->OnReceived = Count;
    Q_EMIT ours.Sent();
    loop.Inside->Received.acquire();
    thread->wait();
}

/// What is written behind the emission is not ordered by it.
void BehindTheSignal()
{
    Loop loop;
    Sender sender;
    QObject::connect(&sender, SIGNAL(Sent()), loop.Inside, SLOT(Receive()), Qt::QueuedConnection);
    std::atomic<bool> written{false};
    loop.Inside->OnReceived = [&] {
        while (!written.load(std::memory_order_relaxed))
            std::this_thread::yield();
        Count();
    };
    Q_EMIT sender.Sent();
    Count();
    written.store(true, std::memory_order_relaxed);
    loop.Inside->Received.acquire();
}

} // namespace Varnholt::RacingThreads
