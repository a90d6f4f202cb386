#include "Tests/Completion/HandMadeRun.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QtTest>

namespace Varnholt::TestSupport {

class CompletionProgressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BytesOfTheCurrentFileAreAddedToThoseBefore();
    void PercentagesAreRoundedDown();
    void ATotalOfZeroIsTakenAsOne();
    void RatesAreSampledEveryHalfSecond();
    void ARestartNoticeMakesTheRequestTheCurrentOne();
    void AFinishedFileCountsWithItsLength();
    void AFinishedFileWithATotalOfZeroIsNotDividedByIt();
    void AFinishedFileLogsTheBytesSinceTheLastSample();
    void TheNextFileStartsFromTheQueueOnAFreshlyDrawnServer();
    void TheNextFileOfTheDefaultServerIsFetchedThere();
    void TheLastBaseFileGoesOnWithTheStreamedFiles();
    void TheLastStreamedFileEndsTheRun();
    void ACompletionWithoutAListIsHarmless();
};

void CompletionProgressTest::BytesOfTheCurrentFileAreAddedToThoseBefore()
{
    HandMadeRun run;
    auto& progress = run.App.UISetting.Download;
    run.App.DownloadedBytes = 300;
    progress.Total = 1000;
    run.App.UISettingChanged = false;
    Launcher::HTTP_DownloadFileRequest request;
    request.CurrentBytes = 200;
    run.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(progress.Current, quint64{500});
    QCOMPARE(progress.Percent, 50u);
    QVERIFY(run.App.UISettingChanged);
    QCOMPARE(run.App.DownloadedBytes, quint64{300});
}

void CompletionProgressTest::PercentagesAreRoundedDown()
{
    HandMadeRun run;
    auto& progress = run.App.UISetting.Download;
    Launcher::HTTP_DownloadFileRequest request;
    progress.Total = 1000;
    request.CurrentBytes = 999;
    run.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(progress.Percent, 99u);
    // More than 32 bits of bytes.
    progress.Total = quint64{8} << 40;
    run.App.DownloadedBytes = quint64{2} << 40;
    run.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(progress.Percent, 25u);
}

void CompletionProgressTest::ATotalOfZeroIsTakenAsOne()
{
    HandMadeRun run;
    Launcher::HTTP_DownloadFileRequest request;
    run.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(run.App.UISetting.Download.Percent, 0u);
    request.CurrentBytes = 3;
    run.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(run.App.UISetting.Download.Percent, 300u);
}

void CompletionProgressTest::RatesAreSampledEveryHalfSecond()
{
    HandMadeRun run;
    auto& progress = run.App.UISetting.Download;
    Launcher::HTTP_DownloadFileRequest request;
    request.BytesPerSecond = 2000;
    QTime const before = QTime::currentTime().addMSecs(-500);
    run.App.Timer = before;
    run.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(progress.RateLogIndex, 1);
    QCOMPARE(progress.RateLog[0], quint64{2000});
    QCOMPARE(progress.AverageRate, quint64{100});
    QVERIFY(run.App.Timer != before);

    // Sooner than that; again when this very test was kept waiting.
    QElapsedTimer clock;
    do {
        progress.RateLogIndex = 1;
        clock.start();
        run.App.Timer = QTime::currentTime().addMSecs(-400);
        run.App.App_OnHTTPDownloadProgressUpdate(&request);
    } while (clock.elapsed() > 80);
    QCOMPARE(progress.RateLogIndex, 1);
}

void CompletionProgressTest::ARestartNoticeMakesTheRequestTheCurrentOne()
{
    HandMadeRun run;
    run.Add({"a", "a"});
    run.List();
    run.App.UISettingChanged = false;
    Launcher::HTTP_DownloadFileRequest request;
    run.App.App_OnHTTPDownloadRestarted(&request);
    QCOMPARE(run.App.CurrentDownload, &request);
    QVERIFY(!run.App.UISettingChanged);
    QCOMPARE(run.App.CurrentDownloadIndex, 0u);
    run.App.CurrentDownload = nullptr;
}

void CompletionProgressTest::AFinishedFileCountsWithItsLength()
{
    HandMadeRun run;
    run.Add({"a", "12345"}).Add({"b", "b"});
    run.List();
    auto& progress = run.App.UISetting.Download;
    progress.Total = 100;
    run.App.DownloadedBytes = 20;
    run.App.UISettingChanged = false;
    run.Complete("12345");
    QCOMPARE(run.App.DownloadedBytes, quint64{25});
    QCOMPARE(progress.Current, quint64{25});
    QCOMPARE(progress.Percent, 25u);
    QCOMPARE(progress.Total, quint64{100});
    QVERIFY(run.App.UISettingChanged);
}

void CompletionProgressTest::AFinishedFileWithATotalOfZeroIsNotDividedByIt()
{
    HandMadeRun run;
    run.Add({"a", ""}).Add({"b", "b"});
    run.List();
    run.Complete(QByteArray(""));
    QCOMPARE(run.Read("a"), QByteArray(""));
    QCOMPARE(run.App.UISetting.Download.Percent, 0u);
}

void CompletionProgressTest::AFinishedFileLogsTheBytesSinceTheLastSample()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"});
    run.List();
    auto& progress = run.App.UISetting.Download;
    Launcher::HTTP_DownloadFileRequest request;
    request.BytesOnDisk = 5000;
    request.RateSampleBytes = 1000;
    run.Complete(request);
    QCOMPARE(progress.RateLogIndex, 1);
    QCOMPARE(progress.RateLog[0], quint64{4000});
    request.RateSampleBytes = 5000;
    run.Complete(request);
    request.RateSampleBytes = 6000;
    run.Complete(request);
    QCOMPARE(progress.RateLogIndex, 1);
}

void CompletionProgressTest::TheNextFileStartsFromTheQueueOnAFreshlyDrawnServer()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.App.CdnHosts = QStringList("mirror.example");
    run.App.ContentBaseUrl = "http://of-the-file-before/";
    run.Complete("a");
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
    QCOMPARE(run.App.ContentBaseUrl, QString("http://mirror.example/"));
    QCOMPARE(run.Log.Texts()
                 .filter("Selected CDN ")
                 .filter("Test Game")
                 .filter("http://mirror.example/")
                 .size(),
             1);
    QCOMPARE(run.Host.SyncCount(), std::size_t{1});
    QCOMPARE(run.Host.AsyncCount(), std::size_t{0});
    QVERIFY(run.App.CurrentDownload == nullptr);
    QCOMPARE(run.Host.FinishedCount.load(), 0);
}

void CompletionProgressTest::TheNextFileOfTheDefaultServerIsFetchedThere()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b", 0x40});
    run.List();
    run.App.CdnHosts = QStringList("mirror.example");
    run.Complete("a");
    QCOMPARE(run.App.ContentBaseUrl, run.Server.BaseUrl());
}

void CompletionProgressTest::TheLastBaseFileGoesOnWithTheStreamedFiles()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"s", "s", 0, {}, true});
    run.List();
    run.Complete("a");
    QCOMPARE(run.App.UISetting.Download.Mode, 5);
    QVERIFY(!run.App.IsDownloadingBase);
    QVERIFY(run.Listed().isEmpty());
    QCOMPARE(run.Host.AsyncCount(), std::size_t{1});
    QCOMPARE(run.Host.SyncCount(), std::size_t{0});
    QCOMPARE(run.Host.FinishedCount.load(), 0);
}

void CompletionProgressTest::TheLastStreamedFileEndsTheRun()
{
    HandMadeRun run;
    run.Add({"s", "s", 0, {}, true});
    run.List(false);
    auto& progress = run.App.UISetting.Download;
    run.App.UISetting.State = Launcher::ApplicationUISetting::StateStartingUp;
    progress.StatusFlags = 3;
    progress.StatusFlag = progress.ModeFlag = true;
    progress.DetailText = "Downloading streammed files...";
    int stateWhenTold = -1;
    run.Host.OnDownloadFinished = [&] {
        stateWhenTold = run.App.UISetting.State;
        run.App.UISettingChanged = false; // the file's own progress has raised it
    };
    run.Complete("s");
    QCOMPARE(run.Host.FinishedCount.load(), 1);
    QCOMPARE(stateWhenTold, 0);
    QCOMPARE(run.App.UISetting.State, 2);
    QCOMPARE(progress.StatusFlags, 0u);
    QCOMPARE(progress.StatusFlag, false);
    QCOMPARE(progress.ModeFlag, false);
    QCOMPARE(progress.DetailText, QString(""));
    QVERIFY(run.App.UISettingChanged);
    QCOMPARE(run.Host.SyncCount(), std::size_t{1});
    QCOMPARE(run.Listed(), QStringList("s"));
    QVERIFY(run.Host.RunNextSync());
    QVERIFY(run.Listed().isEmpty());
    QVERIFY(run.App.CurrentDownload == nullptr);
}

void CompletionProgressTest::ACompletionWithoutAListIsHarmless()
{
    HandMadeRun run;
    Launcher::HTTP_DownloadFileRequest request;
    run.Complete(request);
    QVERIFY(run.App.CurrentDownload == nullptr);
    QCOMPARE(run.FilesOnDisk(), QStringList());
    QCOMPARE(run.Host.SyncCount() + run.Host.AsyncCount(), std::size_t{0});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::CompletionProgressTest)
#include "tst_CompletionProgress.moc"
