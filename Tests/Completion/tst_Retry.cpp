#include "Tests/Completion/HandMadeRun.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_GivenUp = QStringLiteral("(ToManyRetry) Download aborded for ");
QString const c_Md5 = QStringLiteral("(MD5) Download restarted for ");

} // namespace

class RetryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ARestartCountsAndAddsToTheTotal();
    void FiveRestartsAreSharedByAllFiles();
    void TheSixthFailureIsGivenUpAndTheRunGoesOn();
    void AGivenUpFileIsLeftOutOfTheTotal();
    void EveryReasonIsGivenUpAlike();
    void SuccessDoesNotGiveRestartsBack();
    void ANewRunDoesNotGiveRestartsBack();
    void ARepairInMidTransferHasItsRestarts_data();
    void ARepairInMidTransferHasItsRestarts();
    void OnlyAnAbortedTransferGivesRestartsBack();
    void AnAbortedTransferNeitherVerifiesNorAdvances();
    void AnAbortedTransferIsStruckFromTheList();
    void AnAbortedTransferCountsWithTheBytesItGot();
    void AnAbortedLastFileDoesNotEndTheRun();
    void TheLastFileThatFailsIsFetchedAgainBeforeTheEnd();
};

void RetryTest::ARestartCountsAndAddsToTheTotal()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.App.UISetting.Download.Total = 100;
    Launcher::HTTP_DownloadFileRequest request;
    request.ContentLength = 40;
    run.Complete(request);
    QCOMPARE(run.App.DownloadRetryCount, 1u);
    QCOMPARE(run.App.UISetting.Download.Total, quint64{140});
    QCOMPARE(run.App.DownloadedBytes, quint64{40});
    QCOMPARE(run.App.UISetting.Download.Current, quint64{40});
    QCOMPARE(run.App.UISetting.Download.Percent, 28u);
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
}

// One budget for the whole run, not one per file.
void RetryTest::FiveRestartsAreSharedByAllFiles()
{
    HandMadeRun run;
    for (int i = 0; i < 7; ++i)
        run.Add({QString("file %1").arg(i), QByteArray::number(i)});
    run.List();
    run.Fail(5);
    QCOMPARE(run.App.DownloadRetryCount, 5u);
    QCOMPARE(run.App.FilesToDownload.size(), std::size_t{12});
    QCOMPARE(run.Log.CountContaining(c_GivenUp), 0);
    run.Fail(1);
    QCOMPARE(run.Logged(c_GivenUp, "file 5"), 1);
    QCOMPARE(run.App.FilesToDownload.size(), std::size_t{12});
    QCOMPARE(run.App.DownloadRetryCount, 5u);
    run.Fail(1);
    QCOMPARE(run.Logged(c_GivenUp, "file 6"), 1);
    QCOMPARE(run.Log.CountContaining(c_Md5), 5);
}

void RetryTest::TheSixthFailureIsGivenUpAndTheRunGoesOn()
{
    HandMadeRun run;
    run.Add({"a", "a", 0, {}, true}).Add({"b", "b", 0, {}, true});
    run.List(false);
    run.App.DownloadRetryCount = 5;
    run.Fail(1);
    QCOMPARE(run.Logged(c_GivenUp, "a"), 1);
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
    QCOMPARE(run.Host.SyncCount(), std::size_t{1});
    QCOMPARE(run.Host.FinishedCount.load(), 0);
    run.Fail(1);
    QCOMPARE(run.Logged(c_GivenUp, "b"), 1);
    QCOMPARE(run.Host.FinishedCount.load(), 1);
    QCOMPARE(run.App.UISetting.State, 2);
    QCOMPARE(run.Host.Errors(), QStringList());
}

void RetryTest::AGivenUpFileIsLeftOutOfTheTotal()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.App.UISetting.Download.Total = 100;
    run.App.DownloadRetryCount = 5;
    run.Complete("wrong");
    QCOMPARE(run.App.UISetting.Download.Total, quint64{100});
    QCOMPARE(run.App.DownloadedBytes, quint64{5});
}

void RetryTest::EveryReasonIsGivenUpAlike()
{
    HandMadeRun run;
    run.Add({"io", "a"}).Add({"rename", "b"}).Add({"c", "c"}).Put("rename/inside", "");
    run.List();
    run.App.DownloadRetryCount = 5;
    Launcher::HTTP_DownloadFileRequest request;
    run.Complete(request);
    QCOMPARE(run.Logged(c_GivenUp, "io"), 1);
    run.Complete("b");
    QCOMPARE(run.Logged(c_GivenUp, "rename"), 1);
    QCOMPARE(run.Log.CountContaining("Download restarted for "), 0);
}

void RetryTest::SuccessDoesNotGiveRestartsBack()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"});
    run.List();
    run.Fail(1);
    run.Complete("b");
    QCOMPARE(run.App.DownloadRetryCount, 1u);
}

// Counted since the module was loaded: a server that serves bad files is not asked for ever.
void RetryTest::ANewRunDoesNotGiveRestartsBack()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"s", "s", 0, {}, true});
    run.List();
    run.Fail(1);
    run.Complete("a");
    QCOMPARE(run.App.DownloadRetryCount, 1u);
    run.App.Repair();
    QCOMPARE(run.App.DownloadRetryCount, 1u);
}

void RetryTest::ARepairInMidTransferHasItsRestarts_data()
{
    QTest::addColumn<bool>("IsAbort");
    QTest::newRow("repair") << false;
    QTest::newRow("abort of a repair") << true;
}

void RetryTest::ARepairInMidTransferHasItsRestarts()
{
    QFETCH(bool, IsAbort);
    Game game;
    game.Add({"a", SampleContent::Bytes(3000)}).Add({"b", "good"});
    game.Server.Script(game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::SilentAfter(1000));
    game.Server.Script(game.Content.ServerPath("b"))
        .Then(Answer::Normal())
        .Then(Answer::Normal())
        .Then(Answer::Normal().Body("spoilt"));
    game.App.DownloadRetryCount = 5;
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 1000));
    if (IsAbort)
        game.App.AbortRepair();
    else
        game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Log.Count("(ToManyRetry) Download aborded for  \"b\""), 0);
    QCOMPARE(game.Read("b"), QByteArray("good"));
    QCOMPARE(game.App.DownloadRetryCount, 1u);
}

void RetryTest::OnlyAnAbortedTransferGivesRestartsBack()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.App.DownloadRetryCount = 5;
    Launcher::HTTP_DownloadFileRequest request;
    request.Aborted = true;
    run.Complete(request);
    QCOMPARE(run.App.DownloadRetryCount, 0u);
}

void RetryTest::AnAbortedTransferNeitherVerifiesNorAdvances()
{
    HandMadeRun run;
    run.Add({"a", "right"}).Add({"b", "b"}).Put("a", "old");
    run.List();
    run.Put("a.part", "right");
    Launcher::HTTP_DownloadFileRequest request;
    request.Aborted = true;
    request.Continuable = false;
    run.Complete(request);
    QCOMPARE(run.App.CurrentDownloadIndex, 0u);
    QVERIFY(run.App.CurrentDownload == nullptr);
    QCOMPARE(run.Listed(), QStringList({"a", "b"}));
    QCOMPARE(run.Read("a"), QByteArray("old"));
    QCOMPARE(run.Read("a.part"), QByteArray("right"));
    QCOMPARE(run.Host.SyncCount() + run.Host.AsyncCount(), std::size_t{0});
    QCOMPARE(run.Log.CountContaining("restarted"), 0);
    QVERIFY(run.App.UISettingChanged);
}

// A later build takes such files from the list alone, so it would not miss this one: hosts look at
// every file again after a run that was stopped.
void RetryTest::AnAbortedTransferIsStruckFromTheList()
{
    HandMadeRun run;
    run.Add({"a", "a", 0x20}).Add({"b", "b", 0x20});
    run.List();
    run.Put("ToDownloadBase.db", "a\nb\n");
    Launcher::HTTP_DownloadFileRequest request;
    request.Aborted = true;
    run.Complete(request);
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("b\n"));
}

void RetryTest::AnAbortedTransferCountsWithTheBytesItGot()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.App.UISetting.Download.Total = 1000;
    run.App.DownloadedBytes = 100;
    Launcher::HTTP_DownloadFileRequest request;
    request.Aborted = true;
    request.ContentLength = 500;
    request.CurrentBytes = 50;
    request.BytesOnDisk = 70;
    request.RateSampleBytes = 10;
    run.Complete(request);
    QCOMPARE(run.App.DownloadedBytes, quint64{150});
    QCOMPARE(run.App.UISetting.Download.Current, quint64{150});
    QCOMPARE(run.App.UISetting.Download.Percent, 15u);
    QCOMPARE(run.App.UISetting.Download.RateLog[0], quint64{60});
    QCOMPARE(run.App.UISetting.Download.Total, quint64{1000});
}

void RetryTest::AnAbortedLastFileDoesNotEndTheRun()
{
    HandMadeRun run;
    run.Add({"s", "s", 0, {}, true});
    run.List(false);
    Launcher::HTTP_DownloadFileRequest request;
    request.Aborted = true;
    run.Complete(request);
    QCOMPARE(run.Host.FinishedCount.load(), 0);
    QCOMPARE(run.Listed(), QStringList("s"));
}

void RetryTest::TheLastFileThatFailsIsFetchedAgainBeforeTheEnd()
{
    HandMadeRun run;
    run.Add({"s", "s", 0, {}, true});
    run.List(false);
    run.Fail(1);
    QCOMPARE(run.Host.FinishedCount.load(), 0);
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
    QCOMPARE(run.Host.SyncCount(), std::size_t{1});
    run.Complete("s");
    QCOMPARE(run.Host.FinishedCount.load(), 1);
    QCOMPARE(run.Read("s"), QByteArray("s"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::RetryTest)
#include "tst_Retry.moc"
