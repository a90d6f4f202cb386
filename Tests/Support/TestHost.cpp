#include "Tests/Support/TestHost.hpp"

#include "GameModules/StandartApplication.hpp"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QMutexLocker>
#include <QThread>

#include <algorithm>

namespace Varnholt::TestSupport {

namespace {

/// How long the host waits between two looks at a queue.
constexpr unsigned long c_PollMicroseconds = 500;
/// In a row: an event on its way from a thread that has just ended is nowhere to be seen.
constexpr int c_IdleLooks = 40;

/// Takes the first closure out of a queue; empty when there is none.
std::function<void()> TakeFrom(std::queue<std::function<void()>>& p_Queue, QMutex& p_Mutex,
                               std::atomic<bool>* p_Busy)
{
    QMutexLocker const lock(&p_Mutex);
    if (p_Queue.empty())
        return {};
    if (p_Busy != nullptr)
        *p_Busy = true; // under the lock: nobody sees the queue empty and the worker idle
    auto closure = std::move(p_Queue.front());
    p_Queue.pop();
    return closure;
}

} // namespace

TestHost::TestHost(Launcher::Application& p_Application, Worker p_Worker)
    : App(p_Application)
    , Standart(p_Application.inherits("Varnholt::Launcher::StandartApplication")
                   ? static_cast<Launcher::StandartApplication*>(&p_Application)
                   : nullptr)
{
    FillCallbackTable();
    if (p_Worker == Worker::Running)
        WorkerThread = std::thread([this] { Work(); });
}

TestHost::~TestHost()
{
    constexpr int c_CleanUpMilliseconds = 3000;

    StopWorker();
    // What they capture may be gone already.
    OnDownloadStarting = OnDownloadFinished = nullptr;
    OnError = nullptr;
    Continue = false;
    if (Standart != nullptr && Standart->CurrentDownload != nullptr)
        Standart->CurrentDownload->Abort();
    int idle = 0;
    static_cast<void>(RunUntil(
        [&] {
            idle = !RunNextAsync() && IsIdle() ? idle + 1 : 0;
            return idle > c_IdleLooks;
        },
        c_CleanUpMilliseconds));
}

void TestHost::SetSetting(QString const& p_Key, QVariant const& p_Value)
{
    QMutexLocker const lock(&Mutex);
    Settings[p_Key] = p_Value;
}

QVariant TestHost::Setting(QString const& p_Key) const
{
    QMutexLocker const lock(&Mutex);
    return Settings.value(p_Key);
}

bool TestHost::HasSetting(QString const& p_Key) const
{
    QMutexLocker const lock(&Mutex);
    return Settings.contains(p_Key);
}

QStringList TestHost::SettingKeys() const
{
    QMutexLocker const lock(&Mutex);
    return Settings.keys();
}

QStringList TestHost::SettingChanges() const
{
    QMutexLocker const lock(&Mutex);
    return Changes;
}

QStringList TestHost::Errors() const
{
    QMutexLocker const lock(&Mutex);
    return Reports;
}

bool TestHost::RunUntil(std::function<bool()> const& p_Condition, int p_Timeout)
{
    QElapsedTimer clock;
    clock.start();
    while (!p_Condition()) {
        if (clock.elapsed() > p_Timeout)
            return false;
        if (!RunNextSync()) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QThread::usleep(c_PollMicroseconds);
        }
    }
    return true;
}

bool TestHost::RunUntilIdle(int p_Timeout)
{
    int looks = 0;
    return RunUntil(
        [&] {
            looks = IsIdle() ? looks + 1 : 0;
            return looks > c_IdleLooks;
        },
        p_Timeout);
}

void TestHost::RunPending()
{
    while (RunNextSync())
        continue;
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool TestHost::RunNextSync()
{
    auto const closure = TakeFrom(App.SyncQueue, App.SyncQueueMutex, nullptr);
    if (!closure)
        return false;
    closure();
    return true;
}

bool TestHost::RunNextAsync()
{
    auto const closure = TakeFrom(App.AsyncQueue, App.AsyncQueueMutex, nullptr);
    if (!closure)
        return false;
    closure();
    return true;
}

std::size_t TestHost::SyncCount() const
{
    QMutexLocker const lock(&App.SyncQueueMutex);
    return App.SyncQueue.size();
}

std::size_t TestHost::AsyncCount() const
{
    QMutexLocker const lock(&App.AsyncQueueMutex);
    return App.AsyncQueue.size();
}

void TestHost::StopWorker()
{
    WorkerMustStop = true;
    if (WorkerThread.joinable())
        WorkerThread.join();
}

void TestHost::Work()
{
    while (!WorkerMustStop) {
        auto closure = TakeFrom(App.AsyncQueue, App.AsyncQueueMutex, &WorkerIsBusy);
        if (closure)
            closure();
        else
            QThread::usleep(c_PollMicroseconds);
        closure = nullptr;
        WorkerIsBusy = false;
    }
}

bool TestHost::IsIdle() const
{
    {
        QMutexLocker const lock(&App.AsyncQueueMutex);
        if (!App.AsyncQueue.empty() || WorkerIsBusy)
            return false;
    }
    if (SyncCount() != 0 || !App.ContentRequests.empty())
        return false;
    // A query that has got no header stays listed with its finished reply.
    bool const sizesKnown =
        std::all_of(App.ContentSizeRequests.begin(), App.ContentSizeRequests.end(),
                    [](auto const& p_Row) { return p_Row.first->isFinished(); });
    return sizesKnown && (Standart == nullptr || Standart->CurrentDownload == nullptr);
}

} // namespace Varnholt::TestSupport
