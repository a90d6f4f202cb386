#include "Tests/Downloader/AbortAtMessage.hpp"
#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::AbortAtMessage;
using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::DownloadEvent;
using TestSupport::SampleContent;
using Kind = TestSupport::DownloadEvent::Kind;

/// `Abort()` returns within a second, whatever the server does.
class DownloadAbortTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhileTheServerIsSilent();
    void WhileBytesArrive();
    void InThePauseBeforeARestart_data();
    void InThePauseBeforeARestart();
    void RightAfterTheEndOfTheTransfer();
    void WhenTheFirstAttemptCannotOpenItsFile();
    void WhenALaterAttemptCannotOpenItsFile_data();
    void WhenALaterAttemptCannotOpenItsFile();
    void WinsOverARestart();
    void WinsOverARestartThatResetsTheRecord();
    void DirectlyAfterTheStart();
    void AResumableFileKeepsWhatHasArrived();
    void ANonResumableFileIsRemoved();
    void TheCompletionIsPostedBeforeItReturns();
    void FromAThreadOfItsOwn();
    void Twice();

private:
    /// Aborts and returns how many milliseconds it took. A hang fails the whole program.
    static qint64 TimeToAbort(HTTP_DownloadFileRequest& p_Request);
    static void AbortOrFail(HTTP_DownloadFileRequest& p_Request) { TimeToAbort(p_Request); }
};

qint64 DownloadAbortTest::TimeToAbort(HTTP_DownloadFileRequest& p_Request)
{
    QSemaphore done;
    std::thread watchdog([&done] {
        if (!done.tryAcquire(1, TestSupport::TestHost::c_Timeout))
            qFatal("Abort() does not return");
    });
    QElapsedTimer clock;
    clock.start();
    p_Request.Abort();
    qint64 const elapsed = clock.elapsed();
    done.release();
    watchdog.join();
    return elapsed;
}

void DownloadAbortTest::WhileTheServerIsSilent()
{
    DownloadBench bench;
    bench.Script().Always(Answer::SilentBeforeHeaders());
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.RequestCount() == 1; }));
    QVERIFY(TimeToAbort(*request) < 1000);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(bench.Completion().Aborted);
    QCOMPARE(bench.Host->Errors(), QStringList());
    QCOMPARE(bench.Log.CountContaining("HTTP_OnError"), 0);
}

void DownloadAbortTest::WhileBytesArrive()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(100000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Drip(10, 1));
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return DownloadBench::Look(*request).BytesOnDisk > 0; }));
    AbortOrFail(*request);
    QVERIFY(bench.RunToEnd());
    QByteArray const file = bench.File();
    QVERIFY(!file.isEmpty() && file.size() < bytes.size());
    QCOMPARE(file, bytes.left(file.size()));
}

void DownloadAbortTest::InThePauseBeforeARestart_data()
{
    QTest::addColumn<bool>("resume");
    QTest::newRow("resumable") << true;
    QTest::newRow("from the start") << false;
}

void DownloadAbortTest::InThePauseBeforeARestart()
{
    QFETCH(bool, resume);
    DownloadBench bench;
    bench.Script().Then(Answer::Status(416).Held()).Always(Answer::Status(416));
    // After the fourth request the pause is a second long.
    AbortAtMessage aborter("HTTP_DownloadFinished end", 4);
    HTTP_DownloadFileRequest* const request = bench.Start(resume);
    aborter.SetRequest(request);
    QVERIFY(DownloadBench::WaitBusy([&] { return QFile::exists(bench.Path); }));
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(bench.Host->RunUntil([] { return AbortAtMessage::HasCome(); }));
    AbortOrFail(*request);
    QVERIFY(bench.RunToEnd());
    // One that slept through the pause would begin the fifth.
    QCOMPARE(bench.RequestCount(), 4);
    QCOMPARE(QFile::exists(bench.Path), resume);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(bench.Completion().Aborted);
}

void DownloadAbortTest::RightAfterTheEndOfTheTransfer()
{
    DownloadBench bench;
    bench.Serve("content");
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(DownloadBench::WaitBusy([&] { return bench.Count(Kind::Complete) == 1; }));
    AbortOrFail(*request);
    QVERIFY(bench.RunToEnd());
    QVERIFY(!bench.Completion().Aborted);
    QCOMPARE(bench.File(), QByteArray("content"));
}

void DownloadAbortTest::WhenTheFirstAttemptCannotOpenItsFile()
{
    DownloadBench bench;
    QVERIFY(QDir().mkpath(bench.Path));
    HTTP_DownloadFileRequest* const request = bench.Start();
    AbortOrFail(*request);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Count(Kind::Complete), 0);
}

void DownloadAbortTest::WhenALaterAttemptCannotOpenItsFile_data()
{
    QTest::addColumn<Answer>("First");
    QTest::newRow("continued") << Answer::Truncated(300);
    QTest::newRow("started over") << Answer::Status(416);
}

void DownloadAbortTest::WhenALaterAttemptCannotOpenItsFile()
{
    QFETCH(Answer, First);
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Then(First.Held());
    bench.OnEvent = [&](DownloadEvent const&) { // on the download thread: before the restart
        QFile::remove(bench.Path);
        QDir().mkpath(bench.Path + "/folder");
    };
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(DownloadBench::WaitBusy([&] { return bench.RequestCount() == 1; }));
    if (First.StatusCode != 0) { // no progress is told of an attempt that brings nothing
        QFile::remove(bench.Path);
        QVERIFY(QDir().mkpath(bench.Path + "/folder"));
    }
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(DownloadBench::WaitBusy([&] { return bench.Count(Kind::Complete) == 1; }));
    AbortOrFail(*request);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Count(Kind::Restarted), 1);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.RequestCount(), 1);
    QCOMPARE(bench.Log.CountContaining("Error can't open file"), 1);
}

void DownloadAbortTest::WinsOverARestart()
{
    // The abort comes when the drop has been seen and the restart is armed.
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Always(Answer::Truncated(300));
    std::atomic<HTTP_DownloadFileRequest*> started{nullptr};
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.What == Kind::Update && p_Event.BytesOnDisk == 300 && started != nullptr)
            started.load()->Aborted = true;
    };
    started = bench.Start();
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.RequestCount(), 1);
    QCOMPARE(bench.Count(Kind::Restarted), 0);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(bench.Completion().Aborted);
    QCOMPARE(bench.File().size(), 300);
}

void DownloadAbortTest::WinsOverARestartThatResetsTheRecord()
{
    // Starting over resets the record's counters; an abort that falls into it must not be lost.
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Then(Answer::Status(416).Held()).Always(Answer::SilentBeforeHeaders());
    AbortAtMessage aborter("removing file", 1);
    aborter.SetRequest(bench.Start());
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(bench.Host->RunUntil([&] { return bench.Count(Kind::Restarted) == 1; }));
    QVERIFY(bench.Events(Kind::Restarted)[0].Aborted);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(bench.Completion().Aborted);
}

void DownloadAbortTest::DirectlyAfterTheStart()
{
    for (int i = 0; i < 20; ++i) {
        DownloadBench bench;
        bench.Serve("content");
        HTTP_DownloadFileRequest* const request = bench.Start();
        AbortOrFail(*request);
        QVERIFY(bench.RunToEnd());
        QCOMPARE(bench.Count(Kind::Complete), 1);
    }
}

void DownloadAbortTest::AResumableFileKeepsWhatHasArrived()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::SilentAfter(400));
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return DownloadBench::Look(*request).BytesOnDisk == 400; }));
    request->Abort();
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.File(), bytes.left(400));
    QVERIFY(bench.Completion().Aborted && bench.Completion().Continuable);
    QCOMPARE(bench.Log.Count("ApplicationAsyncHttpDownloader::HTTP_DownloadFinished <<  true  << "
                             " true  <<  false"),
             1);
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Ranges(), QStringList({"-", "bytes=400-"}));
}

void DownloadAbortTest::ANonResumableFileIsRemoved()
{
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Then(Answer::SilentAfter(400));
    HTTP_DownloadFileRequest* const request = bench.Start(false);
    QVERIFY(bench.Host->RunUntil([&] { return DownloadBench::Look(*request).BytesOnDisk == 400; }));
    request->Abort();
    QVERIFY(!QFile::exists(bench.Path));
    QVERIFY(bench.RunToEnd());
    QVERIFY(bench.Completion().Aborted);
    QVERIFY(!QFile::exists(bench.Path));
}

void DownloadAbortTest::TheCompletionIsPostedBeforeItReturns()
{
    DownloadBench bench;
    bench.Script().Always(Answer::SilentBeforeHeaders());
    int completions = 0;
    connect(bench.App.get(), &Application::OnHTTPDownloadProgressComplete, this,
            [&](HTTP_DownloadFileRequest*) { ++completions; });
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.RequestCount() == 1; }));
    request->Abort();
    QCOMPARE(completions, 0);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(completions, 1);
    QVERIFY(bench.RunToEnd());
}

void DownloadAbortTest::FromAThreadOfItsOwn()
{
    DownloadBench bench;
    bench.Script().Always(Answer::SilentBeforeHeaders());
    HTTP_DownloadFileRequest* const request = bench.Start();
    std::thread aborter([&] { request->Abort(); });
    // While this thread handles nothing: the abort needs nobody but the download thread.
    aborter.join();
    QVERIFY(bench.RunToEnd());
    QVERIFY(bench.Completion().Aborted);
}

void DownloadAbortTest::Twice()
{
    DownloadBench bench;
    bench.Script().Always(Answer::SilentBeforeHeaders());
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.RequestCount() == 1; }));
    AbortOrFail(*request);
    AbortOrFail(*request);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.Count(Kind::Complete), 1);
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadAbortTest)
#include "tst_DownloadAbort.moc"
