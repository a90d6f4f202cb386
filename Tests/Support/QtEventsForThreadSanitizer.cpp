// Tells ThreadSanitizer what Qt's events and signals order, and the ends of its threads. Qt's own
// libraries are not instrumented: whatever they order would be reported. Each function below is
// found before Qt's by our own code, calls Qt's and says what it orders. The keys are as fine as
// can be, a lock, a call, a sender: what orders too much hides races.

#include "Tests/Support/NextDefinition.hpp"

#include <QCoreApplication>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>
#include <QThreadStorage>
#include <private/qobject_p.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

using Varnholt::TestSupport::AcquireIf;
using Varnholt::TestSupport::NextDefinition;

namespace {

/// Stands for an object, and outlives it: with memory that is freed the sanitizer forgets what was
/// said of it, and an event may be delivered after its sender has gone.
void* KeyOf(void const* p_Object)
{
    constexpr std::size_t c_Count = std::size_t{1} << 16;
    static std::uint64_t s_Keys[c_Count];
    return &s_Keys[reinterpret_cast<std::uintptr_t>(p_Object) / alignof(std::max_align_t) %
                   c_Count];
}

/// What who asks an object for something tells: it must not be mixed with what the object tells.
void* OrdersTo(void const* p_Object)
{
    return static_cast<char*>(KeyOf(p_Object)) + 1;
}

/// Tells at the end of a thread to who waits for it. Qt deletes it last of all that is ours there:
/// objects to be deleted later go after the thread's signal `finished`.
struct AtEndOfThread {
    ~AtEndOfThread() { __tsan_release(KeyOf(Thread)); }
    QObject* Thread;
};

/// Whose signals this thread is emitting, one inside the other.
thread_local std::vector<QObject*> t_Senders;

/// Called before anybody hears of the signal.
void OnSignal(QObject* p_Sender, int, void**)
{
    t_Senders.push_back(p_Sender);
    static auto* const s_AtEnd = new QThreadStorage<AtEndOfThread*>; // outlives every thread
    __tsan_acquire(OrdersTo(p_Sender)); // of who connected it, or told the thread to end
    __tsan_release(KeyOf(p_Sender));
    bool const starts = p_Sender == QThread::currentThread() && !s_AtEnd->hasLocalData();
    if (starts)
        s_AtEnd->setLocalData(new AtEndOfThread{p_Sender});
}

/// Called when everybody has, unless one of them has deleted the sender.
void OnSignalEnd(QObject* p_Sender, int)
{
    QObject* last = nullptr;
    while (!t_Senders.empty() && last != p_Sender) {
        last = t_Senders.back();
        t_Senders.pop_back();
    }
}

/// Called before each event is delivered, on the receiver's thread.
bool OnEvent(void** p_Arguments)
{
    auto const* const event = static_cast<QEvent*>(p_Arguments[1]);
    if (event->type() == QEvent::MetaCall)
        __tsan_acquire(KeyOf(static_cast<QAbstractMetaCallEvent const*>(event)->sender()));
    else if (event->type() == QEvent::DeferredDelete)
        __tsan_acquire(KeyOf(p_Arguments[0]));
    return false;
}

// What a queued signal carries is copied in between: the copy constructors that Qt is given are
// replaced by such that tell of the copy as well.
constexpr std::size_t c_MostTypes = 64;
QMetaType::Constructor s_Constructors[c_MostTypes];

template <std::size_t Type>
void* Copy(void* p_Where, void const* p_Original)
{
    void* const copy = s_Constructors[Type](p_Where, p_Original);
    if (!t_Senders.empty())
        __tsan_release(KeyOf(t_Senders.back()));
    return copy;
}

template <std::size_t... Types>
QMetaType::Constructor TellingConstructor(QMetaType::Constructor p_Plain,
                                          std::index_sequence<Types...>)
{
    constexpr QMetaType::Constructor c_Telling[]{Copy<Types>...};
    static std::mutex s_Mutex; // of the constructors
    std::lock_guard<std::mutex> const lock(s_Mutex);
    std::size_t type = 0;
    while (s_Constructors[type] != nullptr && s_Constructors[type] != p_Plain)
        if (++type == c_MostTypes)
            qFatal("more than %zu types in queued signals", c_MostTypes);
    s_Constructors[type] = p_Plain;
    return c_Telling[type];
}

QSignalSpyCallbackSet s_SignalCallbacks{OnSignal, nullptr, OnSignalEnd, nullptr};

[[maybe_unused]] bool const s_IsWatching = [] {
    qt_register_signal_spy_callbacks(&s_SignalCallbacks);
    return QInternal::registerCallback(QInternal::EventNotifyCallback, OnEvent);
}();

/// A call on its way to another thread.
class CallOnItsWay : public QtPrivate::QSlotObjectBase {
public:
    explicit CallOnItsWay(QSlotObjectBase* p_Inner)
        : QSlotObjectBase(Do)
        , Inner(p_Inner)
    {
    }

private:
    static void Do(int p_Operation, QSlotObjectBase* p_This, QObject* p_Receiver,
                   void** p_Arguments, bool*)
    {
        auto* const call = static_cast<CallOnItsWay*>(p_This);
        __tsan_acquire(call);
        if (p_Operation == Call) {
            call->Inner->call(p_Receiver, p_Arguments);
            __tsan_release(call); // to who waits for the end of the call
        } else if (p_Operation == Destroy) {
            call->Inner->destroyIfLastRef();
            delete call;
        }
    }

    QSlotObjectBase* Inner;
};

/// Work that waits for a thread of a pool.
class PooledWork : public QRunnable {
public:
    PooledWork(QThreadPool* p_Pool, QRunnable* p_Inner)
        : Pool(p_Pool)
        , Inner(p_Inner)
    {
    }

    void run() override
    {
        __tsan_acquire(this);
        bool const isOurs = Inner->autoDelete();
        Inner->run();
        if (isOurs)
            delete Inner;
        __tsan_release(KeyOf(Pool));
    }

private:
    QThreadPool* Pool;
    QRunnable* Inner;
};

} // namespace

bool QMetaObject::invokeMethodImpl(QObject* p_Object, QtPrivate::QSlotObjectBase* p_Slot,
                                   Qt::ConnectionType p_Type, void* p_Result)
{
    static auto* const s_Next =
        NextDefinition<bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
            "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14"
            "ConnectionTypeEPv");
    bool const waits = p_Type == Qt::BlockingQueuedConnection;
    auto* const call = new CallOnItsWay(p_Slot);
    if (waits)
        call->ref();
    __tsan_release(call);
    bool const done = s_Next(p_Object, call, p_Type, p_Result);
    if (waits)
        call->destroyIfLastRef(); // which it is, and hears what the call tells
    return done;
}

int QMetaType::registerNormalizedType(class QByteArray const& p_Name, Destructor p_Destructor,
                                      Constructor p_Constructor, int p_Size, TypeFlags p_Flags,
                                      QMetaObject const* p_Meta)
{
    static auto* const s_Next = NextDefinition<int(class QByteArray const&, Destructor, Constructor,
                                                   int, TypeFlags, QMetaObject const*)>(
        "_ZN9QMetaType22registerNormalizedTypeERK10QByteArrayPFvPvEPFS3_S3_PKvEi6QFlagsINS_"
        "8TypeFlag"
        "EEPK11QMetaObject");
    return s_Next(p_Name, p_Destructor,
                  TellingConstructor(p_Constructor, std::make_index_sequence<c_MostTypes>()),
                  p_Size, p_Flags, p_Meta);
}

QMetaObject::Connection QObject::connectImpl(QObject const* p_Sender, void** p_Signal,
                                             QObject const* p_Receiver, void** p_SlotPointer,
                                             QtPrivate::QSlotObjectBase* p_Slot,
                                             Qt::ConnectionType p_Type, int const* p_Types,
                                             QMetaObject const* p_Meta)
{
    static auto* const s_Next = NextDefinition<QMetaObject::Connection(
        QObject const*, void**, QObject const*, void**, QtPrivate::QSlotObjectBase*,
        Qt::ConnectionType, int const*, QMetaObject const*)>(
        "_ZN7QObject11connectImplEPKS_PPvS1_S3_PN9QtPrivate15QSlotObjectBaseEN2Qt14Connection"
        "TypeEPKiPK11QMetaObject");
    __tsan_release(OrdersTo(p_Sender));
    return s_Next(p_Sender, p_Signal, p_Receiver, p_SlotPointer, p_Slot, p_Type, p_Types, p_Meta);
}

void QObject::deleteLater()
{
    static auto* const s_Next = NextDefinition<void(QObject*)>("_ZN7QObject11deleteLaterEv");
    __tsan_release(KeyOf(this));
    s_Next(this);
}

void QThread::quit()
{
    static auto* const s_Next = NextDefinition<void(QThread*)>("_ZN7QThread4quitEv");
    __tsan_release(OrdersTo(this));
    s_Next(this);
}

bool QThread::wait(QDeadlineTimer p_Deadline)
{
    static auto* const s_Next =
        NextDefinition<bool(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    return AcquireIf(s_Next(this, p_Deadline), KeyOf(this));
}

bool QThread::wait(unsigned long p_Milliseconds)
{
    static auto* const s_Next = NextDefinition<bool(QThread*, unsigned long)>("_ZN7QThread4waitEm");
    return AcquireIf(s_Next(this, p_Milliseconds), KeyOf(this));
}

void QThreadPool::start(QRunnable* p_Work, int p_Priority)
{
    static auto* const s_Next =
        NextDefinition<void(QThreadPool*, QRunnable*, int)>("_ZN11QThreadPool5startEP9QRunnablei");
    auto* const work = new PooledWork(this, p_Work);
    __tsan_release(work);
    s_Next(this, work, p_Priority);
}

bool QThreadPool::waitForDone(int p_Milliseconds)
{
    static auto* const s_Next =
        NextDefinition<bool(QThreadPool*, int)>("_ZN11QThreadPool11waitForDoneEi");
    return AcquireIf(s_Next(this, p_Milliseconds), KeyOf(this));
}
