#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>

namespace Varnholt::TestSupport {

namespace {

/// Keeps the test's thread, which is the application thread, from its events until it holds.
bool StayBusyUntil(std::function<bool()> const& p_Condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!p_Condition()) {
        if (clock.elapsed() > TestHost::c_Timeout)
            return false;
        QThread::msleep(1);
    }
    return true;
}

/// Knows when the thread of a game's download has ended; to be made before the download ends.
class DownloadThreadEnd {
public:
    explicit DownloadThreadEnd(Game& p_Game)
    {
        // On the download thread, which nothing else can be asked about from outside.
        QObject::connect(
            &p_Game.App, &Launcher::Application::OnHTTPDownloadProgressComplete, &p_Game.App,
            [come = Come] {
                QThread* const thread = QThread::currentThread();
                QObject::connect(
                    thread, &QThread::finished, thread, [come] { *come = true; },
                    Qt::DirectConnection);
            },
            Qt::DirectConnection);
    }
    bool HasCome() const { return *Come; }

private:
    std::shared_ptr<std::atomic<bool>> Come = std::make_shared<std::atomic<bool>>(false);
};

/// Stays busy until the download's thread has ended and the worker has done all that was queued.
bool StayBusyBehindDownload(Game& p_Game, DownloadThreadEnd const& p_End)
{
    if (!StayBusyUntil([&] { return p_End.HasCome(); }))
        return false;
    auto const done = std::make_shared<std::atomic<bool>>(false);
    p_Game.App.EnqueueAsync([done] { *done = true; });
    return StayBusyUntil([&] { return done->load(); });
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
    DownloadThreadEnd const end(game);
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(StayBusyUntil([&] { return end.HasCome(); }));
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
    DownloadThreadEnd const end(game);
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(StayBusyBehindDownload(game, end));
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
    DownloadThreadEnd const end(game);
    game.Server.OpenGate(game.Content.ServerPath("a"));
    QVERIFY(StayBusyBehindDownload(game, end));
    game.App.SuspendDownload();
    QCOMPARE(game.App.UISetting.Download.Mode, 4);
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), SampleContent::Bytes(3000));
    QCOMPARE(game.Read("b"), QByteArray("b"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BusyApplicationThreadTest)
#include "tst_BusyApplicationThread.moc"
