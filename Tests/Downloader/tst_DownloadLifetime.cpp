#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QElapsedTimer>
#include <QPointer>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::DownloadEvent;
using TestSupport::SampleContent;
using TestSupport::TestHost;
using Kind = TestSupport::DownloadEvent::Kind;

class DownloadLifetimeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheCleanUpWaitsForTheApplicationThread();
    void TheRecordOutlivesEveryQueuedReader();
    void TheCleanUpGoesThroughTheAsyncQueue();
    void ADownloadWithoutACompletionIsRetiredToo();
    void ABacklogOfCleanUpsPaysItsMarginOnce();
    void ThreadsAndSocketsDoNotGrowWithTheNumberOfFiles();
    void ADownloadThatWaitsForItsCleanUpHoldsNoThreadAndNoSocket();
    void AnApplicationMayGoBeforeItsDownloads();
    void DownloadsDoNotUseTheApplicationsMaps();

private:
    static int ThreadCount() { return QDir("/proc/self/task").entryList(QDir::Dirs).size(); }
    static int HandleCount()
    {
        return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
    }
};

void DownloadLifetimeTest::TheCleanUpWaitsForTheApplicationThread()
{
    // A busy application thread has still to read the record that its queued signals point to.
    DownloadBench bench(TestHost::Worker::ByHand);
    bench.Serve("content");
    std::atomic<bool> threadHasEnded{false};
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.What == Kind::Complete)
            connect(
                p_Event.Thread, &QThread::finished, p_Event.Thread, [&] { threadHasEnded = true; },
                Qt::DirectConnection);
    };
    bench.Start();
    QVERIFY(DownloadBench::WaitBusy([&] { return threadHasEnded.load(); }));
    QCOMPARE(bench.Host->AsyncCount(), std::size_t{0});
    QCOMPARE(bench.RetiredCount(), 0);
    QVERIFY(bench.Host->RunUntil([&] { return bench.Host->AsyncCount() == 1; }));
    QCOMPARE(bench.RetiredCount(), 1);
    QVERIFY(bench.Host->RunNextAsync());
}

void DownloadLifetimeTest::TheRecordOutlivesEveryQueuedReader()
{
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(5000));
    bench.Script().Then(Answer::Drip(100, 5));
    QStringList order;
    HTTP_DownloadFileRequest* started = nullptr;
    auto const note = [&](char const* p_What) {
        return [&order, &started, p_What](HTTP_DownloadFileRequest* p_Request) {
            QCOMPARE(p_Request, started);
            QCOMPARE(p_Request->FilePath.isEmpty(), false);
            if (order.isEmpty() || order.last() != p_What)
                order += p_What;
        };
    };
    connect(bench.App.get(), &Application::OnHTTPDownloadProgressUpdate, this, note("update"),
            Qt::QueuedConnection);
    connect(bench.App.get(), &Application::OnHTTPDownloadProgressComplete, this, note("complete"),
            Qt::QueuedConnection);
    auto const retired = bench.App->OnDownloadRetired;
    bench.App->OnDownloadRetired = [&](HTTP_DownloadFileRequest* p_Request) {
        note("retired")(p_Request);
        retired(p_Request);
    };
    started = bench.Start();
    // The worker is idle and would delete the record at once; this thread is busy.
    QVERIFY(DownloadBench::WaitBusy(
        [&] { return bench.Log.Count("ApplicationAsyncHttpDownloader::run end") == 1; }));
    QVERIFY(bench.RunToEnd());
    QCOMPARE(order, QStringList({"update", "complete", "retired"}));
}

void DownloadLifetimeTest::TheCleanUpGoesThroughTheAsyncQueue()
{
    DownloadBench bench(TestHost::Worker::ByHand);
    bench.Serve("content");
    QPointer<QThread> downloader;
    bench.OnEvent = [&](DownloadEvent const& p_Event) { downloader = p_Event.Thread; };
    bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.Host->AsyncCount() == 1; }));
    QVERIFY(!downloader.isNull());
    QVERIFY(bench.Host->RunNextAsync());
    QVERIFY(downloader.isNull());
}

void DownloadLifetimeTest::ADownloadWithoutACompletionIsRetiredToo()
{
    DownloadBench bench;
    QVERIFY(QDir().mkpath(bench.Path));
    HTTP_DownloadFileRequest* retired = nullptr;
    auto const count = bench.App->OnDownloadRetired;
    bench.App->OnDownloadRetired = [&](HTTP_DownloadFileRequest* p_Request) {
        QCOMPARE(QThread::currentThread(), thread());
        retired = p_Request;
        count(p_Request);
    };
    HTTP_DownloadFileRequest* const started = bench.Start();
    QVERIFY(bench.RunToEnd());
    QCOMPARE(retired, started);
}

void DownloadLifetimeTest::ABacklogOfCleanUpsPaysItsMarginOnce()
{
    constexpr int c_Files = 50;
    DownloadBench bench(TestHost::Worker::ByHand);
    bench.Serve("content");
    for (int i = 0; i < c_Files; ++i) {
        bench.Path = bench.Folder.path() + QString("/%1.part").arg(i);
        bench.Start();
    }
    QVERIFY(bench.Host->RunUntil([&] { return bench.Host->AsyncCount() == c_Files; }));
    QElapsedTimer clock;
    clock.start();
    while (bench.Host->RunNextAsync())
        continue;
    // A hundred milliseconds each would be five seconds at the least.
    QVERIFY2(clock.elapsed() < 4500, qPrintable(QString::number(clock.elapsed())));
}

void DownloadLifetimeTest::ThreadsAndSocketsDoNotGrowWithTheNumberOfFiles()
{
#ifndef Q_OS_LINUX
    QSKIP("counts threads in /proc");
#endif
    constexpr int c_Files = 40;
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    QVERIFY(bench.Run());
    int const threads = ThreadCount();
    int const handles = HandleCount();
    for (int i = 0; i < c_Files; ++i) {
        bench.Path = bench.Folder.path() + QString("/%1.part").arg(i);
        QVERIFY(bench.Run());
    }
    QVERIFY2(ThreadCount() <= threads + 2,
             qPrintable(QString("%1, then %2").arg(threads).arg(ThreadCount())));
    QVERIFY2(HandleCount() <= handles + 6,
             qPrintable(QString("%1, then %2").arg(handles).arg(HandleCount())));
    QVERIFY(bench.Host->RunUntil([&] { return bench.Server.OpenConnections() == 0; }));
}

// The worker may be hashing files for minutes.
void DownloadLifetimeTest::ADownloadThatWaitsForItsCleanUpHoldsNoThreadAndNoSocket()
{
#ifndef Q_OS_LINUX
    QSKIP("counts threads in /proc");
#endif
    constexpr int c_Files = 20;
    DownloadBench bench(TestHost::Worker::ByHand);
    bench.Serve(SampleContent::Bytes(1000));
    auto const fetch = [&](int p_Number) {
        bench.Path = bench.Folder.path() + QString("/%1.part").arg(p_Number);
        bench.Start();
        return bench.Host->RunUntil([&] {
            return bench.Host->AsyncCount() == static_cast<std::size_t>(p_Number) &&
                   bench.Server.OpenConnections() == 0;
        });
    };
    QVERIFY(fetch(1));
    int const threads = ThreadCount();
    int const handles = HandleCount();
    for (int i = 2; i <= c_Files; ++i)
        QVERIFY(fetch(i));
    // A thread that has told of its end needs a moment to be gone.
    QVERIFY(bench.Host->RunUntil([&] { return ThreadCount() <= threads; }));
    QVERIFY2(HandleCount() <= handles + 2,
             qPrintable(QString("%1, then %2").arg(handles).arg(HandleCount())));
    QCOMPARE(bench.Host->AsyncCount(), std::size_t{c_Files});
}

void DownloadLifetimeTest::AnApplicationMayGoBeforeItsDownloads()
{
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(100000));
    bench.Script().Then(Answer::Drip(50, 2));
    QPointer<QThread> downloader;
    QSemaphore seen;
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (downloader.isNull()) {
            downloader = p_Event.Thread;
            seen.release();
        }
    };
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(seen.tryAcquire(1, TestHost::c_Timeout));
    bench.Host.reset();
    bench.App.reset();
    request->Abort();
    // The clean-up then runs on the program's main thread.
    QTRY_VERIFY_WITH_TIMEOUT(downloader.isNull(), TestHost::c_Timeout);
}

void DownloadLifetimeTest::DownloadsDoNotUseTheApplicationsMaps()
{
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Then(Answer::SilentBeforeHeaders());
    bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.RequestCount() == 1; }));
    QVERIFY(bench.App->DownloadRequests.empty());
    QVERIFY(bench.App->WriteQueue.empty());
    QVERIFY(bench.App->ContentRequests.empty() && bench.App->ContentSizeRequests.empty());
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(bench.RunToEnd());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadLifetimeTest)
#include "tst_DownloadLifetime.moc"
