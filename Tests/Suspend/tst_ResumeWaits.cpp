#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Suspend/PausableGame.hpp"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_A = SampleContent::Bytes(60000, 1);

/// A game with one file pending, which the test drains by hand.
class WaitingGame : public PausableGame {
public:
    WaitingGame()
        : PausableGame(TestHost::Worker::ByHand)
    {
        App.FilesToDownload.resize(1);
    }
};

/// Runs until a transfer has been suspended after half of its file.
bool SuspendHalfWay(PausableGame& p_Game)
{
    p_Game.Add({"a.bin", c_A});
    p_Game.ScriptTransfer("a.bin")
        .Then(Answer::SilentAfter(c_A.size() / 2))
        .Then(Answer::SilentBeforeHeaders());
    p_Game.Begin();
    if (!p_Game.RunUntilPart("a.bin", c_A.size() / 2))
        return false;
    p_Game.App.SuspendDownload();
    return p_Game.RunUntilHandled() && p_Game.Finish();
}

} // namespace

/// Resumes that may not start yet.
class ResumeWaitsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhileTheGameRunsShowsMode1AndWaits();
    void WhileTheHostBlocksShowsMode0AndWaits();
    void ShowsMode1WhenTheGameRunsAndTheHostBlocks();
    void PausesBeforeItAsksAgain();
    void PollsThroughTheVirtualOperation();
    void WaitsOnceHoweverOftenItIsCalled();
    void StartsWhenTheGameThatReallyRunsHasQuit();
    void ASuspensionWithNothingInFlightDoesNotEndIt();
    void ASuspensionOfATransferEndsIt();
    void ARepairEndsIt();
    void AnUninstallEndsIt();
};

void ResumeWaitsTest::WhileTheGameRunsShowsMode1AndWaits()
{
    constexpr int c_Polls = 8; // there is no number after which it gives up

    WaitingGame game;
    auto& progress = game.App.UISetting.Download;
    progress.Current = 1;
    progress.Total = 4;
    game.App.GameRuns = true;
    game.App.ResumeDownload();
    for (int i = 0; i < c_Polls; ++i) {
        QCOMPARE(progress.Mode, 1);
        QCOMPARE(progress.Percent, 100u);
        QVERIFY(game.App.UISettingChanged);
        QCOMPARE(game.Host.StartingCount.load(), 0);
        QCOMPARE(game.Host.SyncCount(), std::size_t{0});
        QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
        game.App.UISettingChanged = false;
        QVERIFY(game.Host.RunNextAsync());
    }
    game.App.GameRuns = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(progress.Mode, 3);
    QCOMPARE(progress.Percent, 25u);
    QCOMPARE(game.Host.StartingCount.load(), 1);
    QCOMPARE(game.Host.SyncCount(), std::size_t{1});
    QCOMPARE(game.Host.AsyncCount(), std::size_t{0});
}

void ResumeWaitsTest::WhileTheHostBlocksShowsMode0AndWaits()
{
    WaitingGame game;
    auto& progress = game.App.UISetting.Download;
    progress.Mode = Launcher::ApplicationUISetting::ModeSuspended;
    game.Host.DownloadBlocked = true;
    game.App.ResumeDownload();
    QCOMPARE(progress.Mode, 0);
    QCOMPARE(progress.Percent, 100u);
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(progress.Mode, 0);
    QCOMPARE(game.Host.StartingCount.load(), 0);
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(progress.Mode, 3);
    QCOMPARE(game.Host.StartingCount.load(), 1);
    QCOMPARE(game.Host.SyncCount(), std::size_t{1});
}

void ResumeWaitsTest::ShowsMode1WhenTheGameRunsAndTheHostBlocks()
{
    WaitingGame game;
    game.Host.DownloadBlocked = true;
    game.App.GameRuns = true;
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 1);
    game.App.GameRuns = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Mode, 0);
    QCOMPARE(game.Host.StartingCount.load(), 0);
}

void ResumeWaitsTest::PausesBeforeItAsksAgain()
{
    WaitingGame game;
    game.App.GameRuns = true;
    game.App.ResumeDownload();
    QElapsedTimer clock;
    clock.start();
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY2(clock.elapsed() >= 99, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(game.App.GameQuestions.load(), 2);
}

void ResumeWaitsTest::PollsThroughTheVirtualOperation()
{
    class CountingApplication : public TestApplication {
    public:
        int Resumes = 0;
        void ResumeDownload() override
        {
            ++Resumes;
            TestApplication::ResumeDownload();
        }
    };
    CountingApplication app;
    TestHost host(app, TestHost::Worker::ByHand);
    app.FilesToDownload.resize(1);
    app.GameRuns = true;
    app.ResumeDownload();
    QVERIFY(host.RunNextAsync());
    QVERIFY(host.RunNextAsync());
    QCOMPARE(app.Resumes, 3);
    app.BeginRun(); // ends the waiting
}

void ResumeWaitsTest::WaitsOnceHoweverOftenItIsCalled()
{
    WaitingGame game;
    game.Host.DownloadBlocked = true;
    for (int i = 0; i < 3; ++i)
        game.App.ResumeDownload();
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
}

void ResumeWaitsTest::StartsWhenTheGameThatReallyRunsHasQuit()
{
    PausableGame game;
    QVERIFY(SuspendHalfWay(game));
    QString const program = game.Path("Wow-64.exe");
    QVERIFY(QFile::copy(QStandardPaths::findExecutable("sleep"), program));
    QVERIFY(SetMode(program, 0755));
    QProcess process;
    process.start(program, {"600"});
    QVERIFY(process.waitForStarted());

    auto& progress = game.App.UISetting.Download;
    QCOMPARE(progress.Total, quint64(c_A.size()));
    progress.Current = quint64(c_A.size() / 4);
    game.App.AsksProcessList = true;
    int const questions = game.App.GameQuestions;
    game.App.ResumeDownload();
    QVERIFY(game.Host.RunUntil([&] { return game.App.GameQuestions >= questions + 3; }));
    QCOMPARE(game.Progress().Download.Mode, 1);
    QCOMPARE(game.Progress().Download.Percent, 100u);
    QCOMPARE(game.Requests("a.bin"), 2);
    QCOMPARE(game.Host.StartingCount.load(), 1);

    process.kill();
    QVERIFY(process.waitForFinished());
    QVERIFY(game.RunUntilRequested("a.bin", 3)); // its answer is still to come
    QCOMPARE(progress.Mode, 3);
    QCOMPARE(progress.Percent, 25u);
    QCOMPARE(game.Host.StartingCount.load(), 2);
    game.OpenGate("a.bin");
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeWaitsTest::ASuspensionWithNothingInFlightDoesNotEndIt()
{
    PausableGame game;
    QVERIFY(SuspendHalfWay(game));
    game.OpenGate("a.bin");
    game.App.GameRuns = true;
    game.App.ResumeDownload();
    game.App.SuspendDownload();
    // Pins: with nothing in flight a suspension does nothing.
    QCOMPARE(game.App.UISetting.Download.Mode, 1);
    QCOMPARE(game.Host.FinishedCount.load(), 1);
    game.App.GameRuns = false;
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeWaitsTest::ASuspensionOfATransferEndsIt()
{
    PausableGame game;
    game.Add({"a.bin", c_A});
    game.Stall("a.bin", 1000);
    game.Begin();
    QVERIFY(game.RunUntilPart("a.bin", 1000));
    game.Host.DownloadBlocked = true;
    game.App.ResumeDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 0);
    game.App.SuspendDownload();
    QVERIFY(game.Finish()); // nobody polls any more
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    QCOMPARE(game.Requests("a.bin"), 2);
    QCOMPARE(game.Host.StartingCount.load(), 1);

    game.App.ResumeDownload();
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
}

void ResumeWaitsTest::ARepairEndsIt()
{
    PausableGame game;
    QVERIFY(SuspendHalfWay(game));
    game.OpenGate("a.bin");
    game.App.GameRuns = true;
    game.App.ResumeDownload();
    int const questions = game.App.GameQuestions;
    game.App.Repair(); // waits itself
    QVERIFY(game.Host.RunUntil([&] { return game.App.GameQuestions >= questions + 3; }));
    game.App.GameRuns = false;
    QVERIFY(game.Finish());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Host.StartingCount.load(), 2);
    QCOMPARE(game.Requests("a.bin"), 4); // twice its size, twice a half
}

void ResumeWaitsTest::AnUninstallEndsIt()
{
    PausableGame game;
    QVERIFY(SuspendHalfWay(game));
    game.App.GameRuns = true;
    game.App.ResumeDownload();
    game.App.Uninstall(false);
    QVERIFY(game.Finish()); // nobody polls any more
    game.App.GameRuns = false;
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.State, 1);
    QCOMPARE(game.Requests("a.bin"), 2);
    QCOMPARE(game.Host.StartingCount.load(), 1);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ResumeWaitsTest)
#include "tst_ResumeWaits.moc"
