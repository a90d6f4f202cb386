#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// What follows the answer to the size query of a file.
ScriptedServer::PathScript AfterSize(Game& p_Game, QString const& p_File)
{
    return p_Game.Server.Script(p_Game.Content.ServerPath(p_File)).Then(Answer::Normal());
}

Answer Wrong(QByteArray const& p_Bytes = "wrong bytes")
{
    Answer answer;
    return answer.Body(p_Bytes);
}

} // namespace

class RetryFromServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ARetriedFileIsFetchedAgainBehindAllOthers();
    void AFileThatIsNeverRightIsGivenUpAndTheOthersArrive();
    void AMissingFileCostsItsRestartsAndIsReported();
    void ABadTransferIsStartedFromItsBeginning();
    void AServerWithoutRangesIsAskedForTheWholeFileAgain();
    void ATransferThatFailedHalfWayIsContinued();
    void AFolderInPlaceOfAPartStopsTheRunWithoutATransfer();
    void ADownloadThatCannotOpenItsFileLeavesNoPointer();
    void FilesOfTheDefaultServerDoNotSufferFromABadMirror();
};

void RetryFromServerTest::ARetriedFileIsFetchedAgainBehindAllOthers()
{
    Game game;
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20});
    AfterSize(game, "a").Then(Wrong());
    AfterSize(game, "c").Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilRequested("c", 2));
    QVERIFY(game.RunUntilFile(2));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("c\na\n"));
    game.Server.OpenGate(game.Content.ServerPath("c"));
    QVERIFY(game.Finish());
    QCOMPARE(game.Requested().mid(3), QStringList({"a", "b", "c", "a"}));
    QCOMPARE(game.Read("a"), QByteArray("a"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray(""));
    QCOMPARE(game.App.DownloadRetryCount, 1u);
}

void RetryFromServerTest::AFileThatIsNeverRightIsGivenUpAndTheOthersArrive()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"}).Add({"s", "s", 0, {}, true});
    AfterSize(game, "a").Always(Wrong());
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Log.CountContaining("(MD5) Download restarted for "), 5);
    QCOMPARE(game.Log.CountContaining("(ToManyRetry) Download aborded for "), 1);
    QCOMPARE(game.Requests("a"), 7); // its size, and six tries
    QVERIFY(!game.Has("a"));
    QVERIFY(!game.Has("a.part"));
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QCOMPARE(game.Read("s"), QByteArray("s"));
    QCOMPARE(game.Host.FinishedCount.load(), 1);
}

void RetryFromServerTest::AMissingFileCostsItsRestartsAndIsReported()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    game.Server.Remove(game.Content.ServerPath("a"));
    game.App.OnManifestReceived();
    QVERIFY(game.Finish());
    QCOMPARE(game.Host.Errors().count("Http Error 203"), 6);
    QCOMPARE(game.Log.CountContaining("(ToManyRetry) Download aborded for "), 1);
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QVERIFY(!game.Has("a"));
}

// What a complete transfer has brought wrong cannot become right by going on from its end.
void RetryFromServerTest::ABadTransferIsStartedFromItsBeginning()
{
    Game game;
    QByteArray const bytes = SampleContent::Bytes(3000);
    game.Add({"a", bytes});
    AfterSize(game, "a").Then(Wrong(SampleContent::Bytes(1000, 7)));
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), bytes);
    auto const requests = game.Server.Requests(game.Content.ServerPath("a"));
    QCOMPARE(requests.size(), std::size_t{3});
    QVERIFY(!requests[2].Has("Range"));
}

// Appended to each time, the ".part" file would grow and never be right.
void RetryFromServerTest::AServerWithoutRangesIsAskedForTheWholeFileAgain()
{
    Game game;
    QByteArray const bytes = SampleContent::Bytes(5000);
    game.Add({"a", bytes});
    game.Put("a.part", bytes.left(2000));
    AfterSize(game, "a").Always(Answer::IgnoringRange());
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), bytes);
    auto const requests = game.Server.Requests(game.Content.ServerPath("a"));
    QCOMPARE(requests.size(), std::size_t{3});
    QCOMPARE(requests[1].Header("Range"), QByteArray("bytes=2000-"));
    QVERIFY(!requests[2].Has("Range"));
    QCOMPARE(game.App.DownloadRetryCount, 1u);
}

void RetryFromServerTest::ATransferThatFailedHalfWayIsContinued()
{
    Game game;
    QByteArray const bytes = SampleContent::Bytes(5000);
    game.Add({"a", bytes});
    // Ends without an error: the answer names no length.
    Answer half = Answer::WithoutLength();
    AfterSize(game, "a").Then(half.Body(bytes.left(2000)));
    game.Begin();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), bytes);
    // Not counted: Qt sometimes asks once more by itself when a body ends with its connection.
    QCOMPARE(game.Server.Requests(game.Content.ServerPath("a")).back().Header("Range"),
             QByteArray("bytes=2000-"));
    QCOMPARE(game.Log.CountContaining("(MD5) Download restarted for "), 1);
}

void RetryFromServerTest::AFolderInPlaceOfAPartStopsTheRunWithoutATransfer()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"});
    QVERIFY(QDir().mkpath(game.Path("a.part")));
    game.Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.Log.CountContaining("Error can't open file"); }));
    QVERIFY(game.Host.RunUntil([&] { return game.App.CurrentDownload == nullptr; }));
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Mode, 3);
    QCOMPARE(game.Listed(), QStringList({"a", "b"}));
    QCOMPARE(game.Requests("a"), 1);
    QVERIFY(QDir().rmdir(game.Path("a.part")));
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray("a"));
    QCOMPARE(game.Read("b"), QByteArray("b"));
}

void RetryFromServerTest::ADownloadThatCannotOpenItsFileLeavesNoPointer()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a"}).Add({"b", "b"}).Publish().Install();
    QVERIFY(QDir().mkpath(game.Path("a.part")));
    game.App.GetInstallationPath();
    game.App.FilesToDownload = game.App.Manifest.Files;
    game.App.ProcessContentDownload();
    QVERIFY(game.Host.RunNextSync());
    QVERIFY(game.App.CurrentDownload != nullptr);
    QVERIFY(game.Host.RunUntil([&] { return game.Host.AsyncCount() == 1; }));
    QVERIFY(game.App.CurrentDownload == nullptr); // before its clean-up can run
    QVERIFY(game.Host.RunNextAsync());
    game.App.SuspendDownload();
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QCOMPARE(game.Listed(), QStringList({"a", "b"}));
}

void RetryFromServerTest::FilesOfTheDefaultServerDoNotSufferFromABadMirror()
{
    Game game;
    ScriptedServer bad(QStringLiteral("127.0.0.2"));
    game.Add({"a", "right", 0x40}).Add({"b", "right"}).Publish().Install();
    bad.Serve(game.Content.ServerPath("a"), "wrong");
    bad.Serve(game.Content.ServerPath("b"), "wrong");
    game.App.CdnHosts = QStringList(bad.Host());
    game.App.OnManifestReceived();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), QByteArray("right"));
    QCOMPARE(game.Requested(), QStringList({"a", "a"}));
    QVERIFY(!game.Has("b"));
    QCOMPARE(game.Log.CountContaining("(ToManyRetry) Download aborded for "), 1);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::RetryFromServerTest)
#include "tst_RetryFromServer.moc"
