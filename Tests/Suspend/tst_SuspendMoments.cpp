#include "Tests/Support/TestMain.hpp"
#include "Tests/Suspend/PausableGame.hpp"

#include <QSemaphore>
#include <QThread>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// What of the progress record a suspension may touch.
QVariantList Shown(TestApplication const& p_App)
{
    auto const& progress = p_App.UISetting.Download;
    return {p_App.UISetting.State,
            progress.Mode,
            progress.ModeFlag,
            progress.Percent,
            progress.Current,
            progress.Total,
            progress.StatusText,
            progress.StatusFlags,
            progress.StatusFlag,
            progress.DetailText,
            p_App.UISettingChanged.load()};
}

QByteArray const c_A = SampleContent::Bytes(60000, 1);
QByteArray const c_B = SampleContent::Bytes(40000, 2);

} // namespace

/// A suspension at every point of a run.
class SuspendMomentsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BeforeTheListIsBuiltLeavesTheRunAlone();
    void WhileTheListIsBuiltLeavesTheRunAlone();
    void WhileTheStartIsAwaitedChangesNothing();
    void WhileSizesAreAskedLeavesTheRunAlone();
    void BetweenTwoFilesLeavesTheRunAlone();
    void WhileACompletionIsQueuedCountsAsStopped();
    void WhileTheServerIsSilentBeforeHeaders();
    void WhileTheServerIsSilentAmidTheBody();
    void InThePauseBeforeARestart();
    void OfATransferThatCouldNotOpenItsFile();
};

void SuspendMomentsTest::BeforeTheListIsBuiltLeavesTheRunAlone()
{
    PausableGame game(TestHost::Worker::ByHand);
    game.Add({"a.bin", c_A}).Begin();
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1}); // the comparison
    game.App.SuspendDownload();
    QVERIFY(!game.App.UISetting.Download.ModeFlag); // idle: nothing is pending yet
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Host.RunUntil([&] { return game.Has("a.bin"); }));
    QCOMPARE(game.Wrong(), QStringList());
}

void SuspendMomentsTest::WhileTheListIsBuiltLeavesTheRunAlone()
{
    QSemaphore reached;
    QSemaphore released;
    int workerQuestions = 0;
    PausableGame game;
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B}).Add({"s.bin", "s", 0, {}, true});
    game.Put("b.bin", c_B);
    game.AnswerContinue([&, test = QThread::currentThread()](int) {
        if (QThread::currentThread() != test && ++workerQuestions == 2) {
            reached.release();
            released.tryAcquire(1, TestHost::c_Timeout);
        }
        return true;
    });
    game.Begin();
    QVERIFY(reached.tryAcquire(1, TestHost::c_Timeout));
    game.App.SuspendDownload();
    QVERIFY(!game.App.UISetting.Download.ModeFlag);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    released.release();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requests("b.bin"), 0);
}

void SuspendMomentsTest::WhileTheStartIsAwaitedChangesNothing()
{
    PausableGame game(TestHost::Worker::ByHand);
    game.Add({"a.bin", c_A}).Begin();
    game.Host.DownloadBlocked = true;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Listed(), QStringList("a.bin"));
    game.App.UISettingChanged = false;
    QVariantList const before = Shown(game.App);

    // Pins: nothing is stopped, shown or told; the host calls again until a transfer is in flight.
    game.App.SuspendDownload();
    QCOMPARE(Shown(game.App), before);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QCOMPARE(game.Host.Errors(), QStringList());

    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Host.RunUntil([&] { return game.Has("a.bin"); }));
}

void SuspendMomentsTest::WhileSizesAreAskedLeavesTheRunAlone()
{
    PausableGame game;
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B});
    game.Server.Script(game.Content.ServerPath("b.bin")).Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilSizes(1));
    game.App.UISettingChanged = false;
    QVariantList const before = Shown(game.App);
    game.App.SuspendDownload();
    QCOMPARE(Shown(game.App), before);
    QCOMPARE(game.App.UISetting.Download.Mode, 2);

    game.OpenGate("b.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void SuspendMomentsTest::BetweenTwoFilesLeavesTheRunAlone()
{
    PausableGame game;
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B}).Begin();
    QVERIFY(game.RunUntilFile(1));
    QVERIFY(game.App.CurrentDownload == nullptr);
    QCOMPARE(game.Host.SyncCount(), std::size_t{1}); // the start of the second file
    game.App.UISettingChanged = false;
    QVariantList const before = Shown(game.App);
    game.App.SuspendDownload();
    QCOMPARE(Shown(game.App), before);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void SuspendMomentsTest::WhileACompletionIsQueuedCountsAsStopped()
{
    PausableGame game;
    game.Add({"a.bin", c_A}).Add({"b.bin", c_B}).Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload != nullptr; }));
    QVERIFY(game.WaitUntilEnded());
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.RunUntilHandled());
    QVERIFY(game.Finish());
    QCOMPARE(game.App.CurrentDownloadIndex, 0u);
    QVERIFY(!game.Has("a.bin"));
    QCOMPARE(game.Read("a.bin.part"), c_A);

    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Log.CountContaining("Download restarted for"), 0);
}

void SuspendMomentsTest::WhileTheServerIsSilentBeforeHeaders()
{
    PausableGame game;
    game.Add({"a.bin", c_A});
    game.ScriptTransfer("a.bin").Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilRequested("a.bin", 2));
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.RunUntilHandled());
    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requests("a.bin"), 3);
}

void SuspendMomentsTest::WhileTheServerIsSilentAmidTheBody()
{
    constexpr int c_Turns = 4;
    PausableGame game;
    game.Add({"a.bin", c_A});
    auto script = game.ScriptTransfer("a.bin");
    for (int i = 0; i < c_Turns; ++i)
        script.Then(Answer::SilentAfter(5000));
    game.Begin();
    for (int i = 1; i <= c_Turns; ++i) {
        QVERIFY(game.RunUntilPart("a.bin", 5000 * i));
        game.App.SuspendDownload();
        QCOMPARE(game.App.UISetting.Download.Mode, 4);
        QVERIFY(game.RunUntilHandled());
        game.App.ResumeDownload();
        QCOMPARE(game.App.UISetting.Download.Mode, 3);
    }
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requests("a.bin"), 2 + c_Turns);
}

void SuspendMomentsTest::InThePauseBeforeARestart()
{
    constexpr int c_Refused = 429; // fetched again from the start, without limit
    PausableGame game;
    game.Add({"a.bin", c_A});
    game.ScriptTransfer("a.bin").Always(Answer::Status(c_Refused));
    game.Begin();
    // The pause behind this one lasts a second.
    QVERIFY(game.Host.RunUntil([&] {
        return game.Log.Count("ApplicationAsyncHttpDownloader::HTTP_DownloadFinished end") == 4;
    }));
    game.App.SuspendDownload();
    int const requests = game.Requests("a.bin");
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QVERIFY(game.RunUntilHandled());
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a.bin"), requests);

    game.Server.ClearScript(game.Content.ServerPath("a.bin"));
    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void SuspendMomentsTest::OfATransferThatCouldNotOpenItsFile()
{
    PausableGame game;
    game.Add({"a.bin", c_A});
    game.Put("a.bin.part/inside", "");
    game.Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload != nullptr; }));
    QVERIFY(game.WaitUntilEnded());
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);

    QVERIFY(QDir(game.Path("a.bin.part")).removeRecursively());
    // No completion of that transfer will come: the resume must not wait for one.
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SuspendMomentsTest)
#include "tst_SuspendMoments.moc"
