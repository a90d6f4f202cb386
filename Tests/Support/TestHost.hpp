#pragma once

#include "Launcher/Application/Application.hpp"

#include <QMap>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <atomic>
#include <functional>
#include <thread>

namespace Varnholt::Launcher {
class StandartApplication;
}

namespace Varnholt::TestSupport {

/// What a launcher does around a module, for tests: settings in memory, records of what the module
/// reports, both queues drained. The test's thread is the application thread.
///
/// One at a time: the callback table holds plain functions, which find the host that lives.
class TestHost {
public:
    enum class Worker {
        Running, ///< a thread of the host drains the async queue
        ByHand   ///< the test drains both queues, closure by closure
    };
    /// For conditions that must come true: long enough for a busy machine, reached by a fault only.
    static constexpr int c_Timeout = 60000;

    /// Fills in the application's callback table. The application must outlive the host, or at
    /// least its worker: see `StopWorker()`.
    explicit TestHost(Launcher::Application& p_Application, Worker p_Worker = Worker::Running);
    /// Stops the worker and a transfer in flight and runs what is left, the clean-up of downloads
    /// above all, for a few seconds at most.
    ~TestHost();
    TestHost(TestHost const&) = delete;
    TestHost& operator=(TestHost const&) = delete;

    /// Answers of the callbacks; may be changed at any time.
    std::atomic<bool> DownloadBlocked{false};
    std::atomic<bool> Continue{true};
    std::atomic<bool> DevChannel{false};
    /// When not negative: so many questions are answered true, then false. Counts down.
    std::atomic<int> ContinueAnswersLeft{-1};
    /// Index into `LauncherLocale::Table()`.
    std::atomic<std::size_t> LocaleIndex{0};
    /// Called in the callbacks of the same name, after they were counted, on their thread.
    std::function<void()> OnDownloadStarting;
    std::function<void()> OnDownloadFinished;
    std::function<void(QString const&)> OnError;

    void SetSetting(QString const& p_Key, QVariant const& p_Value);
    QVariant Setting(QString const& p_Key) const;
    bool HasSetting(QString const& p_Key) const;
    QStringList SettingKeys() const;
    /// Every key that was written or removed, in order; removals with a "-" in front.
    QStringList SettingChanges() const;

    QStringList Errors() const;
    std::atomic<int> ErrorFlags{0}; ///< how many reports came with a true flag
    std::atomic<int> StartingCount{0};
    std::atomic<int> FinishedCount{0};
    std::atomic<int> BlockedQuestions{0};
    std::atomic<int> ContinueQuestions{0};

    /// Runs events, the sync queue and deferred deletions until the condition holds; the condition
    /// is asked after every step. \return false when it never held
    [[nodiscard]] bool RunUntil(std::function<bool()> const& p_Condition,
                                int p_Timeout = c_Timeout);
    /// Runs until nothing is left to do: queues empty, worker idle, no fetch, size query or
    /// transfer in flight, for several looks in a row.
    [[nodiscard]] bool RunUntilIdle(int p_Timeout = c_Timeout);
    /// Runs what is there at the moment and returns.
    void RunPending();

    /// Runs the first closure of a queue. \return false when there was none
    bool RunNextSync();
    bool RunNextAsync();
    std::size_t SyncCount() const;
    std::size_t AsyncCount() const;

    /// Lets the worker finish the closure it is in and stops it.
    void StopWorker();

private:
    void FillCallbackTable();
    bool IsIdle() const;
    void Work();

    Launcher::Application& App;
    Launcher::StandartApplication* Standart; ///< null for another kind of application
    mutable QMutex Mutex;
    QMap<QString, QVariant> Settings;
    QStringList Changes;
    QStringList Reports;
    std::atomic<bool> WorkerIsBusy{false};
    std::atomic<bool> WorkerMustStop{false};
    std::thread WorkerThread;
};

} // namespace Varnholt::TestSupport
