#pragma once

#include <QObject>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace Varnholt::RacingThreads {

/// What a queued signal carries is copied when the sender has been asked already.
struct Load {
    int Number = 0;
};

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

inline std::atomic<int> g_Ended{0};

inline void WaitForAnotherEnd(int p_EndedBefore)
{
    while (g_Ended.load(std::memory_order_relaxed) == p_EndedBefore)
        std::this_thread::yield();
}

/// Runs a closure on a thread of Qt's and waits for its end, by no means that orders anything.
inline std::unique_ptr<QThread> RunUnordered(std::function<void()> const& p_Closure)
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

inline int g_Field = 0;

inline void Count()
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
void NoOrder();
void OtherMutex();
void BothOnlyRead();
void OtherSender();
void BehindTheSignal();

// Ordered by what their names say.
void QueuedSignal();
void QueuedArgument();
void SenderGone();
void QueuedCall();
void BlockingCall();
void DeletedLater();
void DirectCallOnceConnected();
void ToldToEnd();
void EndOfPool();
void EndOfThread();
void Mutex();
void RecursiveMutex();
void WriterAfterReader();
void ReaderAfterWriters();
void Semaphore();

} // namespace Varnholt::RacingThreads
