#include "Tests/ThreadSanitizer/RacingThreads.hpp"

#include <QMutex>
#include <QMutexLocker>
#include <QReadWriteLock>

namespace Varnholt::RacingThreads {

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

} // namespace Varnholt::RacingThreads
