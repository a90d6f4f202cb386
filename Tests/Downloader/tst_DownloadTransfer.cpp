#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::DownloadEvent;
using TestSupport::SampleContent;
using Kind = TestSupport::DownloadEvent::Kind;

class DownloadTransferTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFreshFileIsFetchedWithoutARange();
    void AnEmptyPartIsFetchedWithoutARange();
    void APartIsContinuedFromItsSize();
    void WithoutResumingTheOldFileIsRemovedBeforeTheThreadStarts();
    void WithoutResumingNoRangeIsEverAsked();
    void TheRecordStartsWithTheGivenValues();
    void MissingFoldersAreCreated();
    void AnEmptyFileCompletes();
    void ALargeFileArrivesWhole();
    void ABodyWithoutLengthCompletes();
    void AddressesAreReadTolerantly();
    void SignalsAreEmittedOnTheDownloadThread();
    void ConsumersOfAnotherThreadAreQueued();
    void ARedirectIsNotFollowed();
    void LogsItsSteps();
    void ADestinationThatCannotBeOpenedGivesNoSignal();
};

void DownloadTransferTest::AFreshFileIsFetchedWithoutARange()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(50000);
    bench.Serve(bytes);
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Ranges(), QStringList("-"));
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Count(Kind::Restarted), 0);
    DownloadEvent const end = bench.Completion();
    QCOMPARE(end.ContentLength, quint64{50000});
    QCOMPARE(end.BytesOnDisk, qint64{50000});
    QCOMPARE(end.CurrentBytes, qint64{50000});
    QCOMPARE(end.Percent, 100);
    QVERIFY(!end.Aborted && end.Resume && !end.Restarting);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadTransferTest::AnEmptyPartIsFetchedWithoutARange()
{
    DownloadBench bench;
    bench.Serve("content");
    QVERIFY(bench.WriteFile(""));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList("-"));
    QCOMPARE(bench.File(), QByteArray("content"));
}

void DownloadTransferTest::APartIsContinuedFromItsSize()
{
    DownloadBench bench;
    bench.Serve("0123456789");
    QVERIFY(bench.WriteFile("ABCD"));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList("bytes=4-"));
    QCOMPARE(bench.File(), QByteArray("ABCD456789"));
    QCOMPARE(bench.Completion().ContentLength, quint64{6});
    QCOMPARE(bench.Completion().BytesOnDisk, qint64{10});
    QCOMPARE(bench.Log.Count("ApplicationAsyncHttpDownloader::StartDownload Resuming download at "
                             "byte 4 for file \"" +
                             bench.Path + "\""),
             1);
}

void DownloadTransferTest::WithoutResumingTheOldFileIsRemovedBeforeTheThreadStarts()
{
    DownloadBench bench;
    bench.Serve("new");
    bench.Script().Then(Answer::SilentBeforeHeaders());
    QVERIFY(bench.WriteFile("old content"));
    bench.Start(false);
    QVERIFY(bench.File().isEmpty());
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(bench.RunToEnd());
    QCOMPARE(bench.File(), QByteArray("new"));
    QStringList const log = bench.Log.Texts("varnholt.download");
    int const removed = log.indexOf("ApplicationAsyncHttpDownloader::Start removing file <<  \"" +
                                    bench.Path + "\"");
    QCOMPARE(removed, 1);
    QVERIFY(removed < log.indexOf("ApplicationAsyncHttpDownloader::Start starting thread"));
}

void DownloadTransferTest::WithoutResumingNoRangeIsEverAsked()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    QVERIFY(bench.Run(false));
    QCOMPARE(bench.Ranges(), QStringList("-"));
    QVERIFY(!bench.Completion().Resume);
    QCOMPARE(bench.Log.CountContaining("removing file"), 0);
}

void DownloadTransferTest::TheRecordStartsWithTheGivenValues()
{
    DownloadBench bench;
    bench.Script().Always(Answer::SilentBeforeHeaders());
    QVERIFY(bench.App->Timer.isNull());
    HTTP_DownloadFileRequest* const request = bench.Start(true);
    QVERIFY(bench.App->Timer.isValid());
    QCOMPARE(request->Url, bench.Server.Url(DownloadBench::c_Path));
    QCOMPARE(request->FilePath, bench.Path);
    QVERIFY(request->Resume);
    QVERIFY(request->RateTimer.isValid());
    QCOMPARE(request->BaseBytes, qint64{0});
    QCOMPARE(request->BytesPerSecond, qint64{0});
    QCOMPARE(request->ContentLength, quint64{0});
    QCOMPARE(int{request->Percent}, 0);
    QVERIFY(!request->Aborted && !request->Restarting && !request->AbortAcknowledged);
    request->RestartAction(); // does nothing, and may be called
    request->Abort();
    QVERIFY(bench.RunToEnd());

    HTTP_DownloadFileRequest const fresh;
    QVERIFY(fresh.RateTimer.isNull() && fresh.Url.isEmpty() && fresh.FilePath.isEmpty());
    QVERIFY(fresh.Reply == nullptr);
}

void DownloadTransferTest::MissingFoldersAreCreated()
{
    DownloadBench bench;
    bench.Path = bench.Folder.path() + "/a/b c/file.part";
    bench.Serve("content");
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), QByteArray("content"));
}

void DownloadTransferTest::AnEmptyFileCompletes()
{
    DownloadBench bench;
    bench.Serve("");
    QVERIFY(bench.Run());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(QFile::exists(bench.Path));
    QCOMPARE(bench.File(), QByteArray(""));
}

void DownloadTransferTest::ALargeFileArrivesWhole()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(40 * 1024 * 1024);
    bench.Serve(bytes);
    QVERIFY(bench.WriteFile(bytes.left(12345)));
    QVERIFY(bench.Run());
    QVERIFY(bench.File() == bytes);
    QCOMPARE(bench.RequestCount(), 1);
}

void DownloadTransferTest::ABodyWithoutLengthCompletes()
{
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Then(Answer::WithoutLength());
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), QByteArray("content"));
    QCOMPARE(bench.Completion().ContentLength, quint64{0});
    QCOMPARE(bench.Completion().Percent, 100);
}

void DownloadTransferTest::AddressesAreReadTolerantly()
{
    DownloadBench bench;
    bench.Server.Serve("/a b/c%d", "content");
    QVERIFY(bench.Run(true, bench.Server.Url("/a b/c%d")));
    QCOMPARE(bench.File(), QByteArray("content"));
    QCOMPARE(bench.Server.Requests().at(0).Target, QByteArray("/a%20b/c%25d"));
}

void DownloadTransferTest::SignalsAreEmittedOnTheDownloadThread()
{
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Then(Answer::Truncated(100));
    QVERIFY(bench.Run());
    QVERIFY(bench.Count(Kind::Update) > 0 && bench.Count(Kind::Restarted) > 0);
    QThread* const downloadThread = bench.Events()[0].Thread;
    QVERIFY(downloadThread != thread());
    for (DownloadEvent const& event : bench.Events())
        QCOMPARE(event.Thread, downloadThread);
    QCOMPARE(bench.Events().back().What, Kind::Complete);
}

void DownloadTransferTest::ConsumersOfAnotherThreadAreQueued()
{
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    QStringList calls;
    connect(bench.App.get(), SIGNAL(OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)),
            bench.App.get(), SLOT(HTTP_GetContent_OnReadyRead())); // any slot of that thread
    connect(bench.App.get(), &Application::OnHTTPDownloadProgressComplete, this,
            [&](HTTP_DownloadFileRequest* p_Request) {
                calls += QThread::currentThread() == thread() ? "application" : "other";
                QCOMPARE(p_Request->BytesOnDisk, qint64{1000});
                QCOMPARE(bench.RetiredCount(), 0);
            });
    bench.Start();
    QVERIFY(DownloadBench::WaitBusy([&] { return bench.Count(Kind::Complete) == 1; }));
    QCOMPARE(calls, QStringList());
    QVERIFY(bench.RunToEnd());
    QCOMPARE(calls, QStringList("application"));
    QCOMPARE(bench.RetiredCount(), 1);
}

void DownloadTransferTest::ARedirectIsNotFollowed()
{
    DownloadBench bench;
    bench.Server.Serve("/other", "other");
    bench.Script().Then(Answer::Redirect("/other"));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Server.Count("/other"), 0);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(!bench.Completion().Continuable);
}

void DownloadTransferTest::LogsItsSteps()
{
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Then(
        Answer::SilentBeforeHeaders()); // the two threads' messages keep their order
    bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.RequestCount() == 1; }));
    bench.Server.OpenGate(DownloadBench::c_Path);
    QVERIFY(bench.RunToEnd());
    QString const c = "ApplicationAsyncHttpDownloader::";
    QString const url = bench.Server.Url(DownloadBench::c_Path);
    QStringList expected{c + "Start <<  \"" + url + "\"  <<  \"" + bench.Path + "\"  <<  true",
                         c + "Start starting thread",
                         c + "Start end",
                         c + "run",
                         c + "StartDownload",
                         c + "StartDownload end",
                         c + "HTTP_DownloadFinished <<  false  <<  true  <<  false",
                         c + "HTTP_DownloadFinished end",
                         c + "run end"};
    QStringList logged = bench.Log.Texts("varnholt.download");
    // The end of Start() may come after the beginning of the thread.
    QCOMPARE(logged.removeAll(c + "Start end"), 1);
    expected.removeAll(c + "Start end");
    QCOMPARE(logged, expected);
    for (auto const& message : bench.Log.Messages())
        QCOMPARE(message.Type, QtWarningMsg);
}

void DownloadTransferTest::ADestinationThatCannotBeOpenedGivesNoSignal()
{
    DownloadBench bench;
    bench.Serve("content");
    QVERIFY(QDir().mkpath(bench.Path));
    QVERIFY(bench.Run());
    QVERIFY(bench.Events().empty());
    QCOMPARE(bench.RequestCount(), 0);
    QCOMPARE(bench.RetiredCount(), 1);
    QString const c = "ApplicationAsyncHttpDownloader::";
    QCOMPARE(bench.Log.Count(c + "StartDownload Error can't open file \"" + bench.Path +
                             "\" for writting"),
             1);
    QCOMPARE(bench.Log.Count(c + "run StartDownload() failed"), 1);
    QCOMPARE(bench.Log.Count(c + "run end"), 0);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadTransferTest)
#include "tst_DownloadTransfer.moc"
