#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::SampleContent;
using Kind = TestSupport::DownloadEvent::Kind;

/// A download ends, and a sick server is not hammered meanwhile.
class DownloadRestartsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AServerThatAlwaysRefusesIsAskedEverMoreSeldom_data();
    void AServerThatAlwaysRefusesIsAskedEverMoreSeldom();
    void TheFirstRestartIsImmediate();
    void BytesOfASuccessfulAnswerResetThePause();
    void ALineThatDropsNowAndThenCompletes();
    void AServerThatCutsEveryWholeFileAndIgnoresRangesIsGivenUp();
    void AServerThatClosesWithoutAnAnswerIsAskedSeldom();
    void APauseEndsInACompleteFile();
};

void DownloadRestartsTest::AServerThatAlwaysRefusesIsAskedEverMoreSeldom_data()
{
    QTest::addColumn<int>("Status");
    QTest::newRow("416") << 416;
    QTest::newRow("429") << 429;
}

void DownloadRestartsTest::AServerThatAlwaysRefusesIsAskedEverMoreSeldom()
{
    QFETCH(int, Status);
    DownloadBench bench;
    bench.Script().Always(Answer::Status(Status));
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.Count(Kind::Restarted) >= 5; }));
    auto const restarts = bench.Events(Kind::Restarted);
    qint64 const atLeast[] = {200, 450, 900, 1800};
    for (std::size_t i = 0; i < std::size(atLeast); ++i) {
        qint64 const pause = restarts[i + 1].Milliseconds - restarts[i].Milliseconds;
        QVERIFY2(pause >= atLeast[i], qPrintable(QString("%1: %2").arg(i).arg(pause)));
    }
    // Now four seconds of silence: an abort does not wait for them.
    QElapsedTimer clock;
    clock.start();
    request->Abort();
    QVERIFY(clock.elapsed() < 1000);
    QVERIFY(bench.RunToEnd());
    QVERIFY(bench.RequestCount() <= 7);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(bench.Completion().Aborted);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadRestartsTest::TheFirstRestartIsImmediate()
{
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Then(Answer::Status(416));
    QVERIFY(bench.Run());
    // Restarted inside the end of the first attempt, not by a timer behind it.
    QStringList const log = bench.Log.Texts("varnholt.download");
    QString const c = "ApplicationAsyncHttpDownloader::";
    int const finished = log.indexOf(c + "HTTP_DownloadFinished <<  false  <<  true  <<  true");
    int const started = log.indexOf(c + "StartDownload", finished);
    int const ended = log.indexOf(c + "HTTP_DownloadFinished end", finished);
    QVERIFY(finished >= 0 && finished < started && started < ended);
}

void DownloadRestartsTest::BytesOfASuccessfulAnswerResetThePause()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    // Refused, cut after some bytes, refused again, whole: never two fruitless attempts in a row.
    bench.Script()
        .Then(Answer::Status(416))
        .Then(Answer::Truncated(300))
        .Then(Answer::Status(416))
        .Then(Answer::Truncated(300))
        .Then(Answer::Status(416));
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), bytes);
    QStringList const log = bench.Log.Texts("varnholt.download");
    QString const c = "ApplicationAsyncHttpDownloader::";
    QString const end = c + "HTTP_DownloadFinished end";
    for (int i = log.indexOf(end); i >= 0 && i < log.size(); i = log.indexOf(end, i + 1))
        QVERIFY2(i + 1 < log.size() && log[i + 1] != c + "StartDownload",
                 "a restart waited for the timer");
}

void DownloadRestartsTest::ALineThatDropsNowAndThenCompletes()
{
    // Every answer is cut after 300 bytes. Three times the whole file is fetched again, then a cut
    // is just continued: a large file arrives on a line that drops.
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Always(Answer::Truncated(300));
    QVERIFY(bench.Run());
    QStringList const round{"-", "bytes=300-", "bytes=600-", "bytes=900-"};
    QStringList expected;
    for (int i = 0; i < 3; ++i)
        expected += round + QStringList("bytes=1000-");
    QCOMPARE(bench.Ranges(), expected + round);
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Log.CountContaining("removing file"), 3);
    QCOMPARE(bench.Count(Kind::Restarted), bench.RequestCount() - 1);
}

void DownloadRestartsTest::AServerThatCutsEveryWholeFileAndIgnoresRangesIsGivenUp()
{
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Always(Answer::IgnoringRange().CutAfter(300));
    QVERIFY(bench.Run());
    QStringList expected;
    for (int i = 0; i < 4; ++i)
        expected += {"-", "bytes=300-"};
    QCOMPARE(bench.Ranges(), expected);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QVERIFY(!bench.Completion().Aborted);
    // Not a byte more than one attempt brought, and not to be continued.
    QCOMPARE(bench.File().size(), 300);
    QVERIFY(!bench.Completion().Continuable);
}

void DownloadRestartsTest::AServerThatClosesWithoutAnAnswerIsAskedSeldom()
{
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Always(Answer::ClosedBeforeHeaders());
    HTTP_DownloadFileRequest* const request = bench.Start();
    QVERIFY(bench.Host->RunUntil([&] { return bench.Count(Kind::Restarted) >= 4; }));
    // Of the restarts: Qt asks a second time by itself.
    auto const restarts = bench.Events(Kind::Restarted);
    QVERIFY(restarts[1].Milliseconds - restarts[0].Milliseconds >= 200);
    QVERIFY(restarts[2].Milliseconds - restarts[1].Milliseconds >= 450);
    QVERIFY(restarts[3].Milliseconds - restarts[2].Milliseconds >= 900);
    request->Abort();
    QVERIFY(bench.RunToEnd());
}

void DownloadRestartsTest::APauseEndsInACompleteFile()
{
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Then(Answer::Status(429), 3);
    QVERIFY(bench.Run());
    QCOMPARE(bench.RequestCount(), 4);
    QCOMPARE(bench.File(), QByteArray("content"));
    QCOMPARE(bench.Count(Kind::Restarted), 3);
    QCOMPARE(bench.Count(Kind::Complete), 1);
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadRestartsTest)
#include "tst_DownloadRestarts.moc"
