#include "Tests/Runs/Game.hpp"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// Keeps the test's thread, which is the application thread, from its events: until a download
/// thread has ended its work, and a while longer.
bool StayBusyUntilDownloadHasEnded(Game const& p_Game, int p_Downloads, int p_Longer)
{
    QElapsedTimer clock;
    clock.start();
    while (p_Game.Log.Count("ApplicationAsyncHttpDownloader::run end") < p_Downloads) {
        if (clock.elapsed() > TestHost::c_Timeout)
            return false;
        QThread::msleep(1);
    }
    QThread::msleep(static_cast<unsigned long>(p_Longer));
    return true;
}

/// Starts the base files by hand and holds the first one in its body.
void HoldFirstFile(Game& p_Game, QString const& p_File)
{
    p_Game.Publish().Install();
    p_Game.App.GetInstallationPath();
    p_Game.App.FilesToDownload = p_Game.App.Manifest.Files;
    p_Game.Server.Script(p_Game.Content.ServerPath(p_File)).Then(Answer::SilentAfter(1000));
    p_Game.App.ProcessContentDownload();
}

} // namespace

class BusyApplicationThreadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheCleanUpComesBehindEverythingThatTheDownloadHasPosted();
    void TheRecordIsThereWhenTheCompletionArrivesLate();
    void ADownloadThatCannotOpenItsFileLeavesNoPointer();
    void ASuspensionAfterTheTransferHasEndedReturns();
};

void BusyApplicationThreadTest::TheCleanUpComesBehindEverythingThatTheDownloadHasPosted()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", SampleContent::Bytes(3000)}).Add({"b", "b"});
    HoldFirstFile(game, "a");
    QVERIFY(game.RunUntilPart("a", 1000));
    std::size_t cleanUpsAtCompletion = 99;
    connect(
        &game.App, &Launcher::Application::OnHTTPDownloadProgressComplete, this,
        [&] { cleanUpsAtCompletion = game.Host.AsyncCount(); }, Qt::QueuedConnection);
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(StayBusyUntilDownloadHasEnded(game, 1, 200));
    // A worker that could run the clean-up now would take the record away.
    QCOMPARE(game.Host.AsyncCount(), std::size_t{0});
    QVERIFY(game.Host.RunUntil([&] { return cleanUpsAtCompletion != 99; }));
    QCOMPARE(cleanUpsAtCompletion, std::size_t{0});
    QCOMPARE(game.Read("a"), SampleContent::Bytes(3000));
    QVERIFY(game.Host.RunUntil([&] { return game.Host.AsyncCount() == 1; }));
}

void BusyApplicationThreadTest::TheRecordIsThereWhenTheCompletionArrivesLate()
{
    Game game;
    game.Add({"a", SampleContent::Bytes(3000)}).Add({"b", "b"});
    HoldFirstFile(game, "a");
    QVERIFY(game.RunUntilPart("a", 1000));
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(StayBusyUntilDownloadHasEnded(game, 1, 400)); // the worker pauses for 100 ms of it
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), SampleContent::Bytes(3000));
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QCOMPARE(game.App.DownloadedBytes, quint64{3001});
}

void BusyApplicationThreadTest::ADownloadThatCannotOpenItsFileLeavesNoPointer()
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

void BusyApplicationThreadTest::ASuspensionAfterTheTransferHasEndedReturns()
{
    Game game;
    game.Add({"a", SampleContent::Bytes(3000)}).Add({"b", "b"});
    HoldFirstFile(game, "a");
    QVERIFY(game.RunUntilPart("a", 1000));
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(StayBusyUntilDownloadHasEnded(game, 1, 150));
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), SampleContent::Bytes(3000));
    QCOMPARE(game.Read("b"), QByteArray("b"));
}

} // namespace Varnholt::TestSupport

QTEST_GUILESS_MAIN(Varnholt::TestSupport::BusyApplicationThreadTest)
#include "tst_BusyApplicationThread.moc"
