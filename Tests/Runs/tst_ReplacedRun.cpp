#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace Varnholt::TestSupport {

class ReplacedRunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AComparisonThatHasNotBegunEndsQuietly();
    void AComparisonThatIsUnderWayStopsAndWritesNothing();
    void AStreamedComparisonThatIsUnderWayStopsAndWritesNothing();
    void ARepairWhileSizesAreAskedFetchesEachFileOnce();
    void ARepairWhileAFileIsInFlightFetchesTheRest();
    void AnInstallationElsewhereWhileAFileIsInFlightLeavesTheOldFolder();
    void AnAbortedRepairFetchesWhatTheOrdinaryComparisonFinds();
    void ATransferOfAReplacedRunWritesNoMore();
    void SignalsOfAReplacedTransferAreDropped();
    void ARepairFromTheEndOfARunIsNotDisturbed();
    void ARepairFromAnErrorReportIsNotDisturbed();
    void ARepairFromTheHookReplacesTheRunThatCallsIt();
    void AResumeWhileATransferIsInFlightStartsNothing();
    void ManyRepairsInARowEndInOneGoodInstallation();
};

void ReplacedRunTest::AComparisonThatHasNotBegunEndsQuietly()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Begin();
    game.App.Repair();
    QCOMPARE(game.Host.AsyncCount(), std::size_t{2});
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Listed().isEmpty());
    QVERIFY(!game.Has("ToDownloadBase.db"));
    QCOMPARE(game.Host.StartingCount.load(), 0);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\n"));
    QCOMPARE(game.Host.StartingCount.load(), 1);
}

void ReplacedRunTest::AComparisonThatIsUnderWayStopsAndWritesNothing()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20}).Begin();
    game.Put("ToDownloadBase.db", "of before\n");
    game.AnswerContinue([&](int p_Question) {
        if (p_Question == 2)
            game.App.BeginRun();
        return true;
    });
    game.App.UISettingChanged = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Current, quint64{1}); // the old run shows nothing more
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("of before\n"));
    QCOMPARE(game.Host.AsyncCount() + game.Host.SyncCount(), std::size_t{0});
    QCOMPARE(game.Host.StartingCount.load(), 0);
}

void ReplacedRunTest::AStreamedComparisonThatIsUnderWayStopsAndWritesNothing()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"s", "s", 0, {}, true}).Add({"t", "t", 0, {}, true}).Begin();
    game.Put("ToDownload.db", "of before\n");
    QVERIFY(game.Host.RunNextAsync());
    game.AnswerContinue([&](int p_Question) {
        if (p_Question == 2)
            game.App.BeginRun();
        return true;
    });
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("of before\n"));
    QCOMPARE(game.Host.AsyncCount() + game.Host.SyncCount(), std::size_t{0});
}

void ReplacedRunTest::ARepairWhileSizesAreAskedFetchesEachFileOnce()
{
    Game game;
    game.Add({"a", "aa"}).Add({"b", "bbb"});
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilSizes(1));
    QVERIFY(game.RunUntilRequested("a", 1));
    game.App.Repair();
    game.Server.OpenGate(path);
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray("aa"));
    QCOMPARE(game.Read("b"), QByteArray("bbb"));
    QCOMPARE(game.Requests("a"), 3); // two sizes, one file
    QCOMPARE(game.Requests("b"), 3);
    QCOMPARE(game.App.UISetting.Download.Total, quint64{5});
    QCOMPARE(game.Log.CountContaining("restarted"), 0);
}

void ReplacedRunTest::ARepairWhileAFileIsInFlightFetchesTheRest()
{
    Game game;
    QByteArray const bytes = SampleContent::Bytes(5000);
    game.Add({"a", bytes, 0x20}).Add({"b", "b", 0x20});
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::Normal()).Then(Answer::SilentAfter(2000));
    game.App.DownloadRetryCount = 3;
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 2000));
    game.App.Repair();
    QVERIFY(game.App.CurrentDownload == nullptr);
    QVERIFY(game.Listed().isEmpty());
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), bytes);
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray(""));
    QCOMPARE(game.App.DownloadRetryCount, 0u); // given back by the aborted transfer
    auto const requests = game.Server.Requests(path);
    QCOMPARE(requests.size(), std::size_t{4}); // size, part, size, rest
    QCOMPARE(requests[3].Header("Range"), QByteArray("bytes=2000-"));
    QVERIFY(game.App.Transfers.AsideCount() == 0);
}

void ReplacedRunTest::AnInstallationElsewhereWhileAFileIsInFlightLeavesTheOldFolder()
{
    Game game;
    QByteArray const bytes = SampleContent::Bytes(5000);
    game.Add({"a", bytes}).Add({"b", "b"});
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::Normal()).Then(Answer::SilentAfter(2000));
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 2000));
    QString const elsewhere = game.Folder.chopped(1) + " elsewhere/";
    game.App.Install(elsewhere, false);
    game.Server.OpenGate(path);
    QVERIFY(game.Finish());
    QCOMPARE(ReadFile(elsewhere + "a"), bytes);
    QCOMPARE(ReadFile(elsewhere + "b"), QByteArray("b"));
    QCOMPARE(game.FilesOnDisk(), QStringList({"FirstBuild.db", "ToDownloadBase.db", "a.part"}));
    QCOMPARE(game.Read("a.part"), bytes.left(2000));
}

void ReplacedRunTest::AnAbortedRepairFetchesWhatTheOrdinaryComparisonFinds()
{
    Game game;
    game.Add({"first", "f", 0x20}).Add({"plain", SampleContent::Bytes(900)}).Add({"other", "o"});
    game.Add({"s", "s", 0, {}, true});
    QString const path = game.Content.ServerPath("first");
    game.Server.Script(path).Then(Answer::Normal()).Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilRequested("first", 2));
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload != nullptr; }));
    game.App.AbortRepair();
    QCOMPARE(game.Host.FinishedCount.load(), 1); // the suspension
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QVERIFY(!game.App.IsFirstManifestBuild);
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("plain"), SampleContent::Bytes(900));
    QCOMPARE(game.Read("other"), QByteArray("o"));
    // Known from the dropped lists only: the next repair finds them.
    QVERIFY(!game.Has("first"));
    QVERIFY(!game.Has("s"));
    QVERIFY(!game.Has("ToDownload.db"));
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("first"), QByteArray("f"));
    QCOMPARE(game.Read("s"), QByteArray("s"));
}

void ReplacedRunTest::ATransferOfAReplacedRunWritesNoMore()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", SampleContent::Bytes(5000)}).Publish().Install();
    game.App.GetInstallationPath();
    game.App.FilesToDownload = game.App.Manifest.Files;
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::SilentAfter(2000));
    game.App.ProcessContentDownload();
    QVERIFY(game.RunUntilPart("a", 2000));
    game.App.Repair();
    game.Server.OpenGate(path);
    QVERIFY(game.Host.RunUntil(
        [&] { return game.Log.Count("ApplicationAsyncHttpDownloader::run end") == 1; }));
    game.Host.RunPending();
    QCOMPARE(game.Read("a.part").size(), 2000);
    QVERIFY(!game.Has("a"));
}

void ReplacedRunTest::SignalsOfAReplacedTransferAreDropped()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    game.App.GetInstallationPath();
    Launcher::HTTP_DownloadFileRequest request;
    request.CurrentBytes = 50;
    request.AbortAcknowledged = true; // as if its thread had ended just now
    game.App.CurrentDownload = &request;
    game.App.BeginRun();
    QVERIFY(request.Aborted);
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.DownloadRetryCount = 2;
    game.App.UISetting.Download.Current = 7;
    game.Put("ToDownload.db", "a\n");

    game.App.App_OnHTTPDownloadProgressUpdate(&request);
    QCOMPARE(game.App.UISetting.Download.Current, quint64{7});
    game.App.App_OnHTTPDownloadRestarted(&request);
    QVERIFY(game.App.CurrentDownload == nullptr);
    game.App.App_OnHTTPDownloadProgressComplete(&request);
    QCOMPARE(game.App.DownloadRetryCount, 0u); // but that the aborted transfer gives them back
    QCOMPARE(game.App.DownloadedBytes, quint64{0});
    QCOMPARE(game.App.CurrentDownloadIndex, 0u);
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("a\n"));
    QVERIFY(!game.App.Transfers.Retire(&request));
}

void ReplacedRunTest::ARepairFromTheEndOfARunIsNotDisturbed()
{
    Game game;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true});
    game.Host.OnDownloadFinished = [&] {
        if (game.Host.FinishedCount == 1) {
            QFile::remove(game.Path("s"));
            game.App.Repair();
        }
    };
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Host.FinishedCount.load(), 2);
    QCOMPARE(game.Read("a"), QByteArray("a"));
    QCOMPARE(game.Read("s"), QByteArray("s"));
}

void ReplacedRunTest::ARepairFromAnErrorReportIsNotDisturbed()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"}).Put("a/inside", "");
    game.Host.OnError = [&](QString const&) {
        if (game.Host.Errors().size() != 1)
            return;
        QVERIFY(QFile::remove(game.Path("a/inside")));
        QVERIFY(QDir().rmdir(game.Path("a")));
        game.App.Repair();
    };
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Host.Errors().size(), 1);
    QCOMPARE(game.Read("a"), QByteArray("a"));
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QCOMPARE(game.Host.StartingCount.load(), 2);
    QCOMPARE(game.App.DownloadRetryCount, 0u);
}

void ReplacedRunTest::ARepairFromTheHookReplacesTheRunThatCallsIt()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"});
    game.App.OnManifestHook = [&] {
        if (game.App.ManifestHooks == 1)
            game.App.Repair();
    };
    game.Begin(false);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{2});
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a"));
    QCOMPARE(game.Host.StartingCount.load(), 1);
}

void ReplacedRunTest::AResumeWhileATransferIsInFlightStartsNothing()
{
    Game game;
    game.Add({"a", SampleContent::Bytes(3000)}).Add({"b", "b"});
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::Normal()).Then(Answer::SilentAfter(1000));
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 1000));
    auto* const transfer = game.App.CurrentDownload;
    game.App.ResumeDownload();
    game.App.ResumeDownload();
    game.Host.RunPending();
    QCOMPARE(game.App.CurrentDownload, transfer);
    game.Server.OpenGate(path);
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a"), 2);
    QCOMPARE(game.Requests("b"), 2);
    QCOMPARE(game.Read("a"), SampleContent::Bytes(3000));
    QCOMPARE(game.Log.CountContaining("restarted"), 0);
}

void ReplacedRunTest::ManyRepairsInARowEndInOneGoodInstallation()
{
    Game game;
    constexpr int c_Files = 8;
    for (int i = 0; i < c_Files; ++i)
        game.Add({QString("file %1").arg(i), SampleContent::Bytes(20000, quint32(i + 1)), 0x20});
    game.Add({"s", "s", 0, {}, true}).Begin();
    // Somewhere else in the run each time: behind so many requests.
    for (int requests : {1, 3, 9, 12, 14, 18}) {
        QVERIFY(game.Host.RunUntil(
            [&] { return game.Requested().size() >= requests || game.Host.FinishedCount > 0; }));
        game.App.Repair();
    }
    QVERIFY(game.Finish());
    for (int i = 0; i < c_Files; ++i)
        QCOMPARE(game.Read(QString("file %1").arg(i)), SampleContent::Bytes(20000, quint32(i + 1)));
    QCOMPARE(game.Read("s"), QByteArray("s"));
    QCOMPARE(game.FilesOnDisk().filter(".part"), QStringList());
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray(""));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray(""));
    QCOMPARE(game.Log.CountContaining("restarted for "), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ReplacedRunTest)
#include "tst_ReplacedRun.moc"
