// Tells ThreadSanitizer what Qt's locks order; see QtEventsForThreadSanitizer.cpp.

#include "Tests/Support/NextDefinition.hpp"

#include <QMutex>
#include <QReadWriteLock>
#include <QSemaphore>

using Varnholt::TestSupport::AcquireIf;
using Varnholt::TestSupport::NextDefinition;

namespace {

/// What readers have told, for the next writer; the lock itself is for what writers have told.
void* ReadersOf(QReadWriteLock* p_Lock)
{
    return reinterpret_cast<char*>(p_Lock) + 1;
}

/// The lock that this thread may write under; none of ours does so under two.
thread_local QReadWriteLock* t_Written = nullptr;

} // namespace

void QMutex::lock() noexcept
{
    static auto* const s_Next = NextDefinition<void(QMutex*)>("_ZN6QMutex4lockEv");
    s_Next(this);
    __tsan_acquire(this);
}

bool QMutex::tryLock(int p_Timeout) noexcept
{
    static auto* const s_Next = NextDefinition<bool(QMutex*, int)>("_ZN6QMutex7tryLockEi");
    return AcquireIf(s_Next(this, p_Timeout), this);
}

void QMutex::unlock() noexcept
{
    static auto* const s_Next = NextDefinition<void(QMutex*)>("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    s_Next(this);
}

void QReadWriteLock::lockForRead()
{
    static auto* const s_Next =
        NextDefinition<void(QReadWriteLock*)>("_ZN14QReadWriteLock11lockForReadEv");
    s_Next(this);
    __tsan_acquire(this);
}

void QReadWriteLock::lockForWrite()
{
    static auto* const s_Next =
        NextDefinition<void(QReadWriteLock*)>("_ZN14QReadWriteLock12lockForWriteEv");
    s_Next(this);
    __tsan_acquire(this);
    __tsan_acquire(ReadersOf(this));
    t_Written = this;
}

void QReadWriteLock::unlock()
{
    static auto* const s_Next =
        NextDefinition<void(QReadWriteLock*)>("_ZN14QReadWriteLock6unlockEv");
    if (t_Written == this) {
        t_Written = nullptr;
        __tsan_release(this);
    } else {
        __tsan_release(ReadersOf(this));
    }
    s_Next(this);
}

void QSemaphore::acquire(int p_Count)
{
    static auto* const s_Next = NextDefinition<void(QSemaphore*, int)>("_ZN10QSemaphore7acquireEi");
    s_Next(this, p_Count);
    __tsan_acquire(this);
}

bool QSemaphore::tryAcquire(int p_Count)
{
    static auto* const s_Next =
        NextDefinition<bool(QSemaphore*, int)>("_ZN10QSemaphore10tryAcquireEi");
    return AcquireIf(s_Next(this, p_Count), this);
}

bool QSemaphore::tryAcquire(int p_Count, int p_Timeout)
{
    static auto* const s_Next =
        NextDefinition<bool(QSemaphore*, int, int)>("_ZN10QSemaphore10tryAcquireEii");
    return AcquireIf(s_Next(this, p_Count, p_Timeout), this);
}

void QSemaphore::release(int p_Count)
{
    static auto* const s_Next = NextDefinition<void(QSemaphore*, int)>("_ZN10QSemaphore7releaseEi");
    __tsan_release(this);
    s_Next(this, p_Count);
}
