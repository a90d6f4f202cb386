#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// Makes it impossible to begin a file: a folder stands where its partial file belongs.
void Block(Game const& p_Game, QString const& p_File)
{
    QVERIFY(QDir().mkpath(p_Game.Path(p_File + ".part")));
}

} // namespace

/// A host leaves out a file at which the module stops.
class PassOverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheFileBehindItFollows();
    void ItGoesOnAsAResumeDoes();
    void BehindTheLastBaseFileTheStreamedOnesFollow();
    void BehindTheLastStreamedFileNothingIsLeft();
    void WithoutAFileThatWaitsNothingIsLeftOut();
    void AFileInFlightIsNotLeftOut();
};

void PassOverTest::TheFileBehindItFollows()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"c", "c"}).Add({"d", "d"});
    Block(game, "b");
    Block(game, "c");
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Listed(), QStringList({"a", "b", "c", "d"}));
    QCOMPARE(game.App.CurrentDownloadIndex, 1u);
    QVERIFY(game.App.PassOverFile());
    QCOMPARE(game.Listed(), QStringList({"a", "c", "d"}));
    QVERIFY(game.Finish());
    QVERIFY(!game.Has("d"));
    QVERIFY(game.App.PassOverFile());
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("d"), QByteArray("d"));
    QCOMPARE(game.Requested().filter("a").size(), 2); // its size and once itself
}

void PassOverTest::ItGoesOnAsAResumeDoes()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    game.App.GetInstallationPath();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.Host.DownloadBlocked = true;
    QVERIFY(game.App.PassOverFile());
    QCOMPARE(game.App.UISetting.Download.Mode, 0); // waits for the host
    QCOMPARE(game.Host.SyncCount(), std::size_t{0});
    game.Host.DownloadBlocked = false;
    QVERIFY(game.Host.RunNextAsync());
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    QVERIFY(game.Host.RunUntil([&] { return game.Has("b"); }));
    QCOMPARE(game.Requests("a"), 0);
}

void PassOverTest::BehindTheLastBaseFileTheStreamedOnesFollow()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"s", "s", 0, {}, true});
    Block(game, "b");
    game.Begin();
    QVERIFY(game.Finish());
    QVERIFY(!game.Has("s"));
    QVERIFY(game.App.PassOverFile());
    QCOMPARE(game.App.UISetting.Download.Mode, 5);
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("s"), QByteArray("s"));
    QCOMPARE(game.Host.FinishedCount.load(), 1);
}

void PassOverTest::BehindTheLastStreamedFileNothingIsLeft()
{
    Game game;
    game.Add({"a", "a"}).Add({"s", "s", 0, {}, true});
    Block(game, "s");
    game.Begin();
    QVERIFY(game.Finish());
    int const mode = game.App.UISetting.Download.Mode;
    QCOMPARE(game.Listed(), QStringList("s"));
    QVERIFY(!game.App.PassOverFile());
    QCOMPARE(game.Listed(), QStringList());
    QCOMPARE(game.App.UISetting.Download.Mode, mode);
    QCOMPARE(game.Host.SyncCount() + game.Host.AsyncCount(), std::size_t{0});
    QCOMPARE(game.Host.FinishedCount.load(), 0);
}

void PassOverTest::WithoutAFileThatWaitsNothingIsLeftOut()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Publish().Install();
    QVERIFY(!game.App.PassOverFile());
    game.App.IsDownloadingBase = true;
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.CurrentDownloadIndex = 1;
    QVERIFY(!game.App.PassOverFile());
    QCOMPARE(game.Listed(), QStringList("a"));
    QCOMPARE(game.Host.SyncCount() + game.Host.AsyncCount(), std::size_t{0});
}

void PassOverTest::AFileInFlightIsNotLeftOut()
{
    Game game;
    game.Add({"a", QByteArray(100, 'a')}).Add({"b", "b"});
    game.Server.Script(game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::SilentAfter(10));
    game.Begin();
    QVERIFY(game.RunUntilPart("a", 10));
    QVERIFY(!game.App.PassOverFile());
    QCOMPARE(game.Listed(), QStringList({"a", "b"}));
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray(100, 'a'));
    QCOMPARE(game.Read("b"), QByteArray("b"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PassOverTest)
#include "tst_PassOver.moc"
