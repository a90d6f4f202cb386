#include "Tests/ThreadSanitizer/RacingThreads.hpp"

#include <QRunnable>
#include <QThreadPool>

namespace Varnholt::RacingThreads {

void QueuedSignal()
{
    Loop loop;
    Sender sender;
    QObject::connect(&sender, SIGNAL(Sent()), loop.Inside, SLOT(Receive()));
    loop.Inside->OnReceived = Count;
    Count();
    Q_EMIT sender.Sent();
    loop.Inside->Received.acquire();
    Count();
}

void QueuedArgument()
{
    qRegisterMetaType<Load>("Load");
    Loop loop;
    Sender sender;
    QObject::connect(&sender, &Sender::SentLoad, loop.Inside, &Receiver::Take);
    loop.Inside->OnReceived = Count;
    Q_EMIT sender.SentLoad({1});
    loop.Inside->Received.acquire();
}

void SenderGone()
{
    Loop loop;
    std::atomic<bool> gone{false};
    auto sender = std::make_unique<Sender>();
    QMetaObject::invokeMethod(
        loop.Inside,
        [&] {
            while (!gone.load(std::memory_order_relaxed))
                std::this_thread::yield();
        },
        Qt::QueuedConnection);
    QObject::connect(sender.get(), &Sender::Sent, loop.Inside, &Receiver::Receive);
    loop.Inside->OnReceived = Count;
    Count();
    Q_EMIT sender->Sent();
    sender.reset();
    gone.store(true, std::memory_order_relaxed);
    loop.Inside->Received.acquire();
}

void QueuedCall()
{
    Loop loop;
    Count();
    QMetaObject::invokeMethod(
        loop.Inside,
        [receiver = loop.Inside] {
            Count();
            receiver->Receive();
        },
        Qt::QueuedConnection);
    loop.Inside->Received.acquire();
}

void BlockingCall()
{
    Loop loop;
    QMetaObject::invokeMethod(loop.Inside, Count, Qt::BlockingQueuedConnection);
    Count();
}

void DeletedLater()
{
    Loop loop;
    auto* const object = new Counting;
    object->moveToThread(&loop.Thread);
    Count();
    int const endedBefore = g_Ended.load(std::memory_order_relaxed);
    object->deleteLater();
    WaitForAnotherEnd(endedBefore);
}

void DirectCallOnceConnected()
{
    Sender sender;
    std::atomic<bool> counted{false};
    std::unique_ptr<QThread> const thread(QThread::create([&] {
        while (!counted.load(std::memory_order_relaxed))
            Q_EMIT sender.Sent();
    }));
    thread->start();
    Count();
    QObject::connect(
        &sender, &Sender::Sent, &sender,
        [&] {
            Count();
            counted.store(true, std::memory_order_relaxed);
        },
        Qt::DirectConnection);
    thread->wait();
}

void ToldToEnd()
{
    Loop loop;
    auto* const object = new Counting;
    object->moveToThread(&loop.Thread);
    QObject::connect(&loop.Thread, &QThread::finished, object, &QObject::deleteLater);
    Count();
}

void EndOfPool()
{
    QThreadPool pool;
    Count();
    pool.start(QRunnable::create(Count));
    pool.waitForDone();
    Count();
}

void EndOfThread()
{
    auto const thread = RunUnordered(Count);
    thread->wait();
    Count();
}

} // namespace Varnholt::RacingThreads
