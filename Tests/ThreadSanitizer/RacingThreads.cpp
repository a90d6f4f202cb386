// Threads that share a plain field, each time ordered by another means of Qt's, or by none:
// RacingThreads CASE. Ends with the sanitizer's exit status.

#include <QCoreApplication>
#include <QMap>
#include <QMutex>
#include <QMutexLocker>
#include <QReadWriteLock>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>

/// What a queued signal carries is copied when the sender has been asked already.
struct Load {
    int Number = 0;
};

namespace {

class Sender : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void Sent();
    void SentLoad(Load p_Load);
};

class Receiver : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void Receive()
    {
        if (OnReceived)
            OnReceived();
        Received.release();
    }
    void Take(Load const& p_Load)
    {
        Number = p_Load.Number;
        Receive();
    }

public:
    std::function<void()> OnReceived;
    QSemaphore Received;
    int Number = 0;
};

/// A thread with an event loop and a receiver on it.
class Loop {
public:
    Loop()
    {
        Inside->moveToThread(&Thread);
        QObject::connect(&Thread, &QThread::finished, Inside, &QObject::deleteLater);
        Thread.start();
    }
    ~Loop()
    {
        Thread.quit();
        Thread.wait();
    }
    Loop(Loop const&) = delete;
    Loop& operator=(Loop const&) = delete;

    QThread Thread;
    Receiver* Inside = new Receiver;
};

std::atomic<int> g_Ended{0};

void WaitForAnotherEnd(int p_EndedBefore)
{
    while (g_Ended.load(std::memory_order_relaxed) == p_EndedBefore)
        std::this_thread::yield();
}

/// Runs a closure on a thread of Qt's and waits for its end, by no means that orders anything.
std::unique_ptr<QThread> RunUnordered(std::function<void()> const& p_Closure)
{
    int const endedBefore = g_Ended.load(std::memory_order_relaxed);
    std::unique_ptr<QThread> thread(QThread::create([p_Closure] {
        p_Closure();
        g_Ended.fetch_add(1, std::memory_order_relaxed);
    }));
    thread->start();
    WaitForAnotherEnd(endedBefore);
    return thread;
}

int g_Field = 0;

void Count()
{
    ++g_Field;
}

/// Counts when it goes.
struct Counting : QObject {
    ~Counting() override
    {
        Count();
        g_Ended.fetch_add(1, std::memory_order_relaxed);
    }
};

// Ordered by nothing that concerns the field.

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

// Ordered.

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

void EndOfThread()
{
    auto const thread = RunUnordered(Count);
    thread->wait();
    Count();
}

void Mutex()
{
    QMutex mutex;
    auto const count = [&] {
        QMutexLocker const lock(&mutex);
        Count();
    };
    auto const thread = RunUnordered(count);
    count();
    while (!mutex.tryLock())
        std::this_thread::yield();
    mutex.unlock();
    thread->wait();
}

void RecursiveMutex()
{
    QRecursiveMutex mutex;
    auto const count = [&] {
        QMutexLocker const outer(&mutex);
        QMutexLocker const inner(&mutex);
        Count();
    };
    auto const thread = RunUnordered(count);
    count();
    thread->wait();
}

void WriterAfterReader()
{
    QReadWriteLock readWrite;
    int seen = 0;
    auto const thread = RunUnordered([&] {
        QReadLocker const lock(&readWrite);
        seen = g_Field;
    });
    {
        QWriteLocker const lock(&readWrite);
        Count();
    }
    auto const reader = RunUnordered([&] {
        QReadLocker const lock(&readWrite);
        seen = g_Field;
    });
    thread->wait();
    reader->wait();
}

void ReaderAfterWriters()
{
    QReadWriteLock readWrite;
    std::atomic<int> turn{0};
    auto const write = [&](int p_Turn) {
        while (turn.load(std::memory_order_relaxed) != p_Turn)
            std::this_thread::yield();
        {
            QWriteLocker const lock(&readWrite);
            Count();
        }
        turn.store(p_Turn + 1, std::memory_order_relaxed);
    };
    int seen = 0;
    std::unique_ptr<QThread> const second(QThread::create(write, 1));
    std::unique_ptr<QThread> const reader(QThread::create([&] {
        while (turn.load(std::memory_order_relaxed) != 2)
            std::this_thread::yield();
        QReadLocker const lock(&readWrite);
        seen = g_Field;
    }));
    second->start();
    reader->start();
    write(0);
    second->wait();
    reader->wait();
}

void Semaphore()
{
    QSemaphore semaphore;
    auto const thread = RunUnordered([&] {
        Count();
        semaphore.release();
    });
    while (!semaphore.tryAcquire(1, 1))
        continue;
    Count();
    thread->wait();
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    QCoreApplication const application(p_Count, p_Arguments);
    QMap<QString, void (*)()> const cases{
        {QStringLiteral("no-order"), NoOrder},
        {QStringLiteral("other-mutex"), OtherMutex},
        {QStringLiteral("both-only-read"), BothOnlyRead},
        {QStringLiteral("other-sender"), OtherSender},
        {QStringLiteral("behind-the-signal"), BehindTheSignal},
        {QStringLiteral("queued-signal"), QueuedSignal},
        {QStringLiteral("queued-argument"), QueuedArgument},
        {QStringLiteral("sender-gone"), SenderGone},
        {QStringLiteral("queued-call"), QueuedCall},
        {QStringLiteral("blocking-call"), BlockingCall},
        {QStringLiteral("deleted-later"), DeletedLater},
        {QStringLiteral("direct-call-once-connected"), DirectCallOnceConnected},
        {QStringLiteral("told-to-end"), ToldToEnd},
        {QStringLiteral("end-of-thread"), EndOfThread},
        {QStringLiteral("mutex"), Mutex},
        {QStringLiteral("recursive-mutex"), RecursiveMutex},
        {QStringLiteral("writer-after-reader"), WriterAfterReader},
        {QStringLiteral("reader-after-writers"), ReaderAfterWriters},
        {QStringLiteral("semaphore"), Semaphore},
    };
    auto const run = cases.value(QString::fromLocal8Bit(p_Arguments[p_Count - 1]));
    if (run == nullptr)
        return 2;
    run();
    std::puts(g_Field > 0 ? "ran" : "did nothing");
    return 0;
}

#include "RacingThreads.moc"
