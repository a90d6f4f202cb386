#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QNetworkReply>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::DownloadEvent;
using TestSupport::SampleContent;
using Kind = TestSupport::DownloadEvent::Kind;

namespace {

QString const c_Class = "ApplicationAsyncHttpDownloader::";
QString const c_Unknown = c_Class + "HTTP_OnError QNetworkReply::UnknownContentError";

} // namespace

class DownloadErrorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void OtherErrorsAreReportedOnceAndEndTheDownload_data();
    void OtherErrorsAreReportedOnceAndEndTheDownload();
    void AnUnreachableServerIsReportedAndEndsTheDownload();
    void AnErrorPageIsNeverAppendedBehindBytesOfTheFile_data();
    void AnErrorPageIsNeverAppendedBehindBytesOfTheFile();
    void ACutErrorPageIsNotTakenForTheFilesBeginning();
    void AClosedConnectionIsContinuedThenFetchedAgainAsAWhole();
    void AResetConnectionIsContinued();
    void AConnectionClosedBeforeItsHeadersIsContinued();
    void ARefusedRangeStartsOver();
    void EveryUnknownContentErrorStartsOver_data();
    void EveryUnknownContentErrorStartsOver();
    void WithoutResumingACutTransferAppendsTheWholeFile();
    void APlainResumeAppendsAnAnswerThatIgnoresTheRange();
    void AContinuedTransferStartsOverWhenTheRangeIsIgnored();
    void AnAnswerFromAnotherStartIsAppended();
    void ContinuableTellsWhatAnotherAttemptMayGoOnFrom_data();
    void ContinuableTellsWhatAnotherAttemptMayGoOnFrom();
};

void DownloadErrorsTest::OtherErrorsAreReportedOnceAndEndTheDownload_data()
{
    QTest::addColumn<int>("Status");
    QTest::addColumn<int>("Error");
    QTest::addColumn<QString>("Name");
    QTest::newRow("400") << 400 << 302 << "ProtocolInvalidOperationError";
    QTest::newRow("401") << 401 << 204 << "AuthenticationRequiredError";
    QTest::newRow("403") << 403 << 201 << "ContentAccessDenied";
    QTest::newRow("404") << 404 << 203 << "ContentNotFoundError";
    QTest::newRow("405") << 405 << 202 << "ContentOperationNotPermittedError";
    QTest::newRow("409") << 409 << 206 << "ContentConflictError";
    QTest::newRow("410") << 410 << 207 << "ContentGoneError";
    QTest::newRow("418") << 418 << 302 << "ProtocolInvalidOperationError";
    QTest::newRow("500") << 500 << 401 << "InternalServerError";
    QTest::newRow("501") << 501 << 402 << "OperationNotImplementedError";
    QTest::newRow("502") << 502 << 499 << "UnknownServerError";
    QTest::newRow("503") << 503 << 403 << "ServiceUnavailableError";
}

void DownloadErrorsTest::OtherErrorsAreReportedOnceAndEndTheDownload()
{
    QFETCH(int, Status);
    QFETCH(int, Error);
    QFETCH(QString, Name);
    DownloadBench bench;
    bench.Script().Always(Answer::Status(Status, "<html>page</html>"));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Host->Errors(), QStringList(QString("Http Error %1").arg(Error)));
    QCOMPARE(bench.Host->ErrorFlags.load(), 0);
    QCOMPARE(bench.Log.Count(c_Class + "HTTP_OnError error \"QNetworkReply::" + Name + "\""), 1);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Count(Kind::Restarted), 0);
    QVERIFY(!bench.Completion().Aborted);
    QCOMPARE(bench.RequestCount(), 1);
    // Whatever body arrived is there; whoever verifies the file sees that it is not it.
    QCOMPARE(bench.File(), QByteArray("<html>page</html>"));
    QVERIFY(!bench.Completion().Continuable);
}

void DownloadErrorsTest::AnUnreachableServerIsReportedAndEndsTheDownload()
{
    DownloadBench bench;
    QVERIFY(bench.WriteFile("begun"));
    QVERIFY(bench.Run(true, TestSupport::ScriptedServer::RefusingUrl("/file")));
    QCOMPARE(bench.Host->Errors(), QStringList("Http Error 1"));
    QCOMPARE(
        bench.Log.Count(c_Class + "HTTP_OnError error \"QNetworkReply::ConnectionRefusedError\""),
        1);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.File(), QByteArray("begun"));
    QVERIFY(bench.Completion().Continuable);
}

void DownloadErrorsTest::AnErrorPageIsNeverAppendedBehindBytesOfTheFile_data()
{
    QTest::addColumn<int>("Status");
    for (int const status : {403, 404, 418, 500, 503})
        QTest::addRow("%d", status) << status;
}

void DownloadErrorsTest::AnErrorPageIsNeverAppendedBehindBytesOfTheFile()
{
    // Behind the bytes that are there a page would spoil all of them.
    QFETCH(int, Status);
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Status(Status));
    QVERIFY(bench.WriteFile(bytes.left(400)));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.File(), bytes.left(400));
    QVERIFY(bench.Completion().Continuable);
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), bytes);
}

void DownloadErrorsTest::ACutErrorPageIsNotTakenForTheFilesBeginning()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Status(500, QByteArray(1000, 'p')).CutAfter(200));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    // What Qt reports is the cut, so that it is tried again, as a whole.
    QVERIFY(bench.RequestCount() > 1);
    QCOMPARE(bench.Ranges().at(1), QString("-"));
    QCOMPARE(bench.File(), bytes);
}

void DownloadErrorsTest::AClosedConnectionIsContinuedThenFetchedAgainAsAWhole()
{
    // The restart stays armed after a drop: the rest is asked for, then the range behind the end,
    // which is refused, then the whole file. It heals whatever the drop has done to the file.
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Truncated(300));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList({"-", "bytes=300-", "bytes=1000-", "-"}));
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    auto const restarts = bench.Events(Kind::Restarted);
    QCOMPARE(restarts.size(), std::size_t{3});
    QCOMPARE(restarts[0].Content, bytes.left(300));
    QCOMPARE(restarts[1].Content, bytes);
    QCOMPARE(restarts[2].Content, QByteArray(""));
    QVERIFY(restarts[0].Restarting && restarts[1].Restarting && !restarts[2].Restarting);
    QCOMPARE(bench.Log.Count(c_Class + "HTTP_OnError QNetworkReply::RemoteHostClosedError"), 1);
    QCOMPARE(bench.Log.Count(c_Unknown), 1);
    QCOMPARE(bench.Log.Count(c_Class + "HTTP_DownloadFinished <<  false  <<  true  <<  true"), 3);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadErrorsTest::AResetConnectionIsContinued()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Reset(300));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList({"-", "bytes=300-", "bytes=1000-", "-"}));
    QCOMPARE(bench.File(), bytes);
}

void DownloadErrorsTest::AConnectionClosedBeforeItsHeadersIsContinued()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    QVERIFY(bench.WriteFile(bytes.left(200)));
    // Qt asks once more by itself before it reports the close.
    bench.Script().Then(Answer::ClosedBeforeHeaders(), 3);
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QStringList const ranges = bench.Ranges();
    QCOMPARE(ranges.mid(0, 4),
             QStringList({"bytes=200-", "bytes=200-", "bytes=200-", "bytes=200-"}));
    QCOMPARE(ranges.last(), QString("-"));
}

void DownloadErrorsTest::ARefusedRangeStartsOver()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    QVERIFY(bench.WriteFile(QByteArray(1500, 'x'))); // more than the file has
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList({"bytes=1500-", "-"}));
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    auto const restarts = bench.Events(Kind::Restarted);
    QCOMPARE(restarts.size(), std::size_t{1});
    DownloadEvent const& restart = restarts[0];
    QCOMPARE(restart.Content, QByteArray(""));
    QCOMPARE(restart.CurrentBytes, qint64{0});
    QCOMPARE(restart.BytesOnDisk, qint64{0});
    QCOMPARE(restart.RateSampleBytes, qint64{0});
    QCOMPARE(restart.BytesPerSecond, qint64{0});
    QCOMPARE(restart.Percent, 0);
    QVERIFY(!restart.Restarting && !restart.Aborted);
    QStringList const log = bench.Log.Texts("varnholt.download");
    int const error = log.indexOf(c_Unknown);
    int const removing = log.indexOf(c_Unknown + " removing file \"" + bench.Path + "\"");
    int const restarting = log.indexOf(c_Unknown + " restarting download for \"" +
                                       bench.Server.Url(DownloadBench::c_Path) + "\"");
    QVERIFY(error >= 0 && error < removing && removing < restarting);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadErrorsTest::EveryUnknownContentErrorStartsOver_data()
{
    QTest::addColumn<int>("Status");
    for (int const status : {416, 422, 429, 451})
        QTest::addRow("%d", status) << status;
}

void DownloadErrorsTest::EveryUnknownContentErrorStartsOver()
{
    QFETCH(int, Status);
    DownloadBench bench;
    bench.Serve("content");
    bench.Script().Then(Answer::Status(Status));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList({"-", "-"}));
    QCOMPARE(bench.Count(Kind::Restarted), 1);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.File(), QByteArray("content"));
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadErrorsTest::WithoutResumingACutTransferAppendsTheWholeFile()
{
    // Nobody downloads so: without the resume flag a continued transfer asks for no range, and
    // is appended to what there is until it is started over.
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Truncated(300)).Then(Answer::Normal()).Then(Answer::Status(416));
    QVERIFY(bench.Run(false));
    QCOMPARE(bench.Ranges(), QStringList({"-", "-", "-", "-"}));
    QCOMPARE(bench.Events(Kind::Restarted).at(1).Content, bytes.left(300) + bytes);
    QCOMPARE(bench.File(), bytes);
}

void DownloadErrorsTest::APlainResumeAppendsAnAnswerThatIgnoresTheRange()
{
    DownloadBench bench;
    bench.Serve("0123456789");
    bench.Script().Then(Answer::IgnoringRange());
    QVERIFY(bench.WriteFile("0123"));
    QVERIFY(bench.Run());
    QCOMPARE(bench.RequestCount(), 1);
    QCOMPARE(bench.File(), QByteArray("01230123456789"));
    QVERIFY(!bench.Completion().Continuable);
}

void DownloadErrorsTest::AContinuedTransferStartsOverWhenTheRangeIsIgnored()
{
    // Appended it would fill the disk, continued again it would be answered so for ever.
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(1000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Truncated(300)).Always(Answer::IgnoringRange());
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList({"-", "bytes=300-", "-"}));
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Log.CountContaining("removing file"), 1);
}

void DownloadErrorsTest::AnAnswerFromAnotherStartIsAppended()
{
    // The digest is what tells a wrong answer from a right one.
    DownloadBench bench;
    bench.Serve("0123456789");
    bench.Script().Then(Answer::WrongRangeStart(-2));
    QVERIFY(bench.WriteFile("0123"));
    QVERIFY(bench.Run());
    QCOMPARE(bench.RequestCount(), 1);
    QCOMPARE(bench.File(), QByteArray("012323456789"));
    QVERIFY(!bench.Completion().Continuable);
}

void DownloadErrorsTest::ContinuableTellsWhatAnotherAttemptMayGoOnFrom_data()
{
    QTest::addColumn<QByteArray>("Before");
    QTest::addColumn<Answer>("First");
    QTest::addColumn<bool>("Expected");
    QByteArray const begun = SampleContent::Bytes(1000).left(400);
    QTest::newRow("whole") << QByteArray() << Answer::Normal() << false;
    QTest::newRow("rest arrived") << begun << Answer::Normal() << false;
    QTest::newRow("error page alone") << QByteArray() << Answer::Status(404) << false;
    QTest::newRow("error behind bytes") << begun << Answer::Status(404) << true;
    QTest::newRow("empty error page") << QByteArray() << Answer::Status(404, "") << true;
    QTest::newRow("range ignored") << begun << Answer::IgnoringRange() << false;
    QTest::newRow("redirect") << QByteArray() << Answer::Redirect("/x") << false;
}

void DownloadErrorsTest::ContinuableTellsWhatAnotherAttemptMayGoOnFrom()
{
    QFETCH(QByteArray, Before);
    QFETCH(Answer, First);
    QFETCH(bool, Expected);
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000));
    bench.Script().Then(First);
    QVERIFY(bench.WriteFile(Before));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Completion().Continuable, Expected);
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadErrorsTest)
#include "tst_DownloadErrors.moc"
