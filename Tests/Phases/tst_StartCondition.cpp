#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QtTest>

namespace Varnholt::TestSupport {

class StartConditionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ABlockingHostIsShownAsModeZero();
    void ARunningGameIsShownAsModeOne();
    void BothMustHold();
    void ThePollPauses();
    void ThePollOfAReplacedRunEndsQuietly();
    void TheHostIsToldOnceJustBeforeTheSizesAreAsked();
    void StreamedFilesAloneWaitBehindTheirSizePass();
    void StreamedFilesBehindBaseFilesDoNotWait();
    void NothingToFetchDoesNotWait();
};

void StartConditionTest::ABlockingHostIsShownAsModeZero()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Begin();
    game.Host.DownloadBlocked = true;
    auto& progress = game.App.UISetting.Download;
    progress.DetailText = "of a run before";
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(progress.Mode, 0);
    QCOMPARE(progress.Percent, 100u);
    QCOMPARE(progress.DetailText, QString(""));
    game.App.UISettingChanged = false; // the comparison has raised it too
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.App.UISettingChanged);
    QCOMPARE(game.Host.StartingCount.load(), 0);
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
}

void StartConditionTest::ARunningGameIsShownAsModeOne()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Begin();
    game.App.GameRuns = true;
    QVERIFY(game.Host.RunNextAsync());
    auto const& progress = game.App.UISetting.Download;
    QCOMPARE(progress.Mode, 1);
    QCOMPARE(progress.Percent, 100u);
    QCOMPARE(progress.DetailText, QString(""));
    QCOMPARE(game.Host.StartingCount.load(), 0);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{1});
}

void StartConditionTest::BothMustHold()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Begin();
    game.Host.DownloadBlocked = true;
    game.App.GameRuns = true;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Mode, 1);
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Mode, 1);
    game.Host.DownloadBlocked = true;
    game.App.GameRuns = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Mode, 0);
    QCOMPARE(game.Host.StartingCount.load(), 0);
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Host.StartingCount.load(), 1);
    QCOMPARE(game.App.UISetting.Download.Mode, 2);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{0});
}

void StartConditionTest::ThePollPauses()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Begin();
    game.Host.DownloadBlocked = true;
    QVERIFY(game.Host.RunNextAsync());
    QElapsedTimer clock;
    clock.start();
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY2(clock.elapsed() >= 99, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(game.Host.BlockedQuestions.load(), 2);
}

void StartConditionTest::ThePollOfAReplacedRunEndsQuietly()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Begin();
    game.Host.DownloadBlocked = true;
    QVERIFY(game.Host.RunNextAsync());
    game.App.BeginRun();
    game.App.UISettingChanged = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Host.BlockedQuestions.load(), 1);
    QCOMPARE(game.Host.AsyncCount(), std::size_t{0});
    QVERIFY(!game.App.UISettingChanged);
}

void StartConditionTest::TheHostIsToldOnceJustBeforeTheSizesAreAsked()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Begin();
    int mode = -1;
    std::size_t queued = 99;
    game.Host.OnDownloadStarting = [&] {
        mode = game.App.UISetting.Download.Mode;
        queued = game.Host.SyncCount();
    };
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.Host.StartingCount.load(), 1);
    QCOMPARE(mode, 0);
    QCOMPARE(queued, std::size_t{0});
    QCOMPARE(game.Host.SyncCount(), std::size_t{2});
}

void StartConditionTest::StreamedFilesAloneWaitBehindTheirSizePass()
{
    Game game;
    game.Host.DownloadBlocked = true;
    game.Add({"s", "s", 0, {}, true}).Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.Host.BlockedQuestions >= 3; }));
    QCOMPARE(game.App.SizeRepliesReceived, 1u);
    QCOMPARE(game.Requested(), QStringList("s"));
    QCOMPARE(game.Progress().Download.Mode, 0);
    QCOMPARE(game.Progress().Download.DetailText, QString(""));
    QCOMPARE(game.Host.StartingCount.load(), 0);
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("s"), QByteArray("s"));
    QCOMPARE(game.Requested(), QStringList({"s", "s"})); // the sizes are not asked once more
    QCOMPARE(game.Host.StartingCount.load(), 1);
}

void StartConditionTest::StreamedFilesBehindBaseFilesDoNotWait()
{
    Game game;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true}).Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("s"), QByteArray("s"));
    QCOMPARE(game.Host.StartingCount.load(), 1);
    QCOMPARE(game.Host.BlockedQuestions.load(), 1);
}

void StartConditionTest::NothingToFetchDoesNotWait()
{
    Game game;
    game.Host.DownloadBlocked = true;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true});
    game.Put("a", "a");
    game.Put("s", "s");
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Host.BlockedQuestions.load(), 0);
    QCOMPARE(game.Host.StartingCount.load(), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::StartConditionTest)
#include "tst_StartCondition.moc"
