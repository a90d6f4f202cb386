#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QFile>
#include <QPointer>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>

namespace Varnholt::TestSupport {

/// An uninstallation in the middle of a run: what is still under way ends, and touches nothing.
class UninstallInFlightTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheTransferIsLetGoNotStopped();
    void ItsLateEndTouchesNothing_data();
    void ItsLateEndTouchesNothing();
    void ItsLateProgressIsNotShown();
    void ItsRestartDoesNotMakeItTheCurrentOne();
    void AFailedLateEndIsNotTriedAgain();
    void TheEndOfASuspendedTransferTouchesNothing();
    void ASecondUninstallationWhileItRunsIsHarmless();
    void TheModuleMayGoWhileItRuns();
    void InstallingAgainFetchesEverythingOnceAndWhole();
    void InstallingAgainWhileBytesStillComeSpoilsNothing();
    void InstallingElsewhereFetchesEverythingThere();
    void SizesThatAnswerLateFetchNothing();
    void AComparisonThatIsUnderWayStopsAndWritesNothing();

private:
    static constexpr int c_Size = 5000;
    static constexpr int c_Half = 2000;

    /// Begins a run whose first file stands still in the middle.
    [[nodiscard]] static bool BeginHalf(Game& p_Game,
                                        Answer const& p_Answer = Answer::SilentAfter(c_Half));
    static QByteArray Bytes() { return SampleContent::Bytes(c_Size); }
    static void OpenGate(Game& p_Game) { p_Game.Server.OpenGate(p_Game.Content.ServerPath("a")); }
    /// Lets a transfer run to its end and everything that it has caused happen.
    [[nodiscard]] static bool RunToItsEnd(Game& p_Game);
};

bool UninstallInFlightTest::BeginHalf(Game& p_Game, Answer const& p_Answer)
{
    p_Game.Add({"a", Bytes(), 0x20}).Add({"b", "b", 0x20});
    p_Game.Server.Script(p_Game.Content.ServerPath("a")).Then(Answer::Normal()).Then(p_Answer);
    p_Game.Begin();
    return p_Game.RunUntilPart("a", c_Half);
}

bool UninstallInFlightTest::RunToItsEnd(Game& p_Game)
{
    return p_Game.Host.RunUntil([&] {
        return p_Game.App.Transfers.AsideCount() == 0 &&
               p_Game.Log.Count("ApplicationAsyncHttpDownloader::run end") == 1;
    }) && p_Game.Finish();
}

void UninstallInFlightTest::TheTransferIsLetGoNotStopped()
{
    Game game;
    QVERIFY(BeginHalf(game));
    auto* const transfer = game.App.CurrentDownload;
    game.App.Uninstall(false);
    QVERIFY(game.App.CurrentDownload == nullptr);
    QVERIFY(game.Listed().isEmpty());
    QVERIFY(!transfer->Aborted);
    QVERIFY(!transfer->AbortAcknowledged);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    OpenGate(game);
    QVERIFY(RunToItsEnd(game));
    QCOMPARE(game.Read("a.part"), Bytes());
}

void UninstallInFlightTest::ItsLateEndTouchesNothing_data()
{
    QTest::addColumn<bool>("flag");
    QTest::addColumn<QStringList>("left");
    QTest::newRow("files stay") << false << QStringList({"ToDownloadBase.db", "a", "a.part"});
    QTest::newRow("files are removed") << true << QStringList({"ToDownloadBase.db", "a.part"});
}

void UninstallInFlightTest::ItsLateEndTouchesNothing()
{
    QFETCH(bool, flag);
    QFETCH(QStringList, left);
    Game game;
    game.Put("a", "damaged");
    QVERIFY(BeginHalf(game));
    game.App.DownloadRetryCount = 3;
    game.App.Uninstall(flag);
    int const requests = game.Requested().size();
    OpenGate(game);
    QVERIFY(RunToItsEnd(game));
    QCOMPARE(game.FilesOnDisk(), left);
    QCOMPARE(game.Read("a"), flag ? QByteArray() : QByteArray("damaged"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\nb\n"));
    QVERIFY(game.App.CurrentDownload == nullptr);
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.App.DownloadRetryCount, 3u);
    QCOMPARE(game.App.DownloadedBytes, quint64{0});
    QCOMPARE(game.App.UISetting.State, 1);
    QCOMPARE(game.Requested().size(), requests);
    QCOMPARE(game.Host.FinishedCount.load(), 0);
    QCOMPARE(game.Host.Errors(), QStringList());
    QCOMPARE(game.Log.CountContaining("restarted"), 0);
}

void UninstallInFlightTest::ItsLateProgressIsNotShown()
{
    Game game;
    QVERIFY(BeginHalf(game));
    game.App.Uninstall(false);
    game.Host.RunPending();
    game.App.UISettingChanged = false;
    quint64 const current = game.App.UISetting.Download.Current;
    OpenGate(game);
    QVERIFY(RunToItsEnd(game));
    QCOMPARE(game.App.UISetting.Download.Current, current);
    QVERIFY(!game.App.UISettingChanged);
}

void UninstallInFlightTest::ItsRestartDoesNotMakeItTheCurrentOne()
{
    Game game;
    QVERIFY(BeginHalf(game, Answer::SilentAfter(c_Half).CutAfter(c_Half + 1000)));
    game.App.Uninstall(false);
    int const requests = game.Requests("a");
    OpenGate(game);
    bool wasCurrent = false;
    QVERIFY(game.Host.RunUntil([&] {
        wasCurrent |= game.App.CurrentDownload != nullptr;
        return game.App.Transfers.AsideCount() == 0;
    }));
    QVERIFY(game.Requests("a") > requests); // it has been restarted
    QVERIFY(!wasCurrent);
    QVERIFY(!game.Has("a"));
    QVERIFY(!game.App.IsInstalled());
}

void UninstallInFlightTest::AFailedLateEndIsNotTriedAgain()
{
    Game game;
    QVERIFY(BeginHalf(game, Answer::SilentAfter(c_Half).Body(SampleContent::Bytes(c_Size, 2))));
    game.App.Uninstall(false);
    OpenGate(game);
    QVERIFY(RunToItsEnd(game));
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.Requests("a"), 2); // size and file
    QCOMPARE(game.Read("a.part"), SampleContent::Bytes(c_Size, 2));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\nb\n"));
    QCOMPARE(game.Log.CountContaining("(MD5)"), 0);
}

void UninstallInFlightTest::TheEndOfASuspendedTransferTouchesNothing()
{
    Game game;
    QVERIFY(BeginHalf(game));
    game.App.SuspendDownload();
    game.App.Uninstall(false); // its completion is still on its way
    QVERIFY(RunToItsEnd(game));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\nb\n"));
    QCOMPARE(game.Read("a.part"), Bytes().left(c_Half));
    QCOMPARE(game.App.DownloadedBytes, quint64{0});
    QVERIFY(game.App.CurrentDownload == nullptr);
}

void UninstallInFlightTest::ASecondUninstallationWhileItRunsIsHarmless()
{
    Game game;
    QVERIFY(BeginHalf(game));
    game.App.Uninstall(false);
    game.App.Uninstall(true);
    QCOMPARE(game.App.Transfers.AsideCount(), std::size_t{1});
    OpenGate(game);
    QVERIFY(RunToItsEnd(game));
    QCOMPARE(game.FilesOnDisk(), QStringList({"ToDownloadBase.db", "a.part"}));
}

void UninstallInFlightTest::TheModuleMayGoWhileItRuns()
{
    auto game = std::make_unique<Game>();
    game->App.ErrorReporter = [](QString, bool) {}; // outlives the host
    std::atomic<QThread*> downloader{nullptr};
    QObject::connect(
        &game->App, &Launcher::Application::OnHTTPDownloadProgressUpdate, &game->App,
        [&] { downloader = QThread::currentThread(); }, Qt::DirectConnection);
    QVERIFY(BeginHalf(*game));
    QVERIFY(game->Host.RunUntil([&] { return downloader != nullptr; }));
    QPointer<QThread> const thread = downloader.load();
    game->App.Uninstall(false);
    QVERIFY(!thread.isNull());
    game.reset();
    QTRY_VERIFY_WITH_TIMEOUT(thread.isNull(), TestHost::c_Timeout);
}

void UninstallInFlightTest::InstallingAgainFetchesEverythingOnceAndWhole()
{
    Game game;
    QVERIFY(BeginHalf(game));
    game.App.Uninstall(false);
    game.App.Install(game.Folder, false);
    QVERIFY(game.Finish());
    QCOMPARE(game.FilesOnDisk(), QStringList({"ToDownload.db", "ToDownloadBase.db", "a", "b"}));
    QCOMPARE(game.Read("a"), Bytes());
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray(""));
    QCOMPARE(game.App.UISetting.State, 2);
    QCOMPARE(game.App.DownloadRetryCount, 0u);
    QVERIFY(game.App.Transfers.AsideCount() == 0);
    auto const requests = game.Server.Requests(game.Content.ServerPath("a"));
    QCOMPARE(requests.size(), std::size_t{4}); // size, half, size, the other half
    QCOMPARE(requests[3].Header("Range"), QByteArray("bytes=2000-"));
}

void UninstallInFlightTest::InstallingAgainWhileBytesStillComeSpoilsNothing()
{
    Game game;
    QByteArray const bytes = SampleContent::Bytes(200000);
    game.Add({"a", bytes, 0x20}).Add({"b", "b", 0x20});
    game.Server.Script(game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::Drip(500, 5));
    game.Begin();
    QString const part = game.Path("a.part");
    QVERIFY(game.Host.RunUntil(
        [&] { return game.App.CurrentDownload != nullptr && QFile(part).size() > 0; }));
    game.App.Uninstall(false);
    game.App.Install(game.Folder, false);
    QVERIFY(game.Finish());
    QCOMPARE(game.Read("a"), bytes);
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QVERIFY(!game.Has("a.part"));
    QCOMPARE(game.Log.CountContaining("restarted for"), 0);
}

void UninstallInFlightTest::InstallingElsewhereFetchesEverythingThere()
{
    Game game;
    QVERIFY(BeginHalf(game));
    game.App.Uninstall(true);
    QString const elsewhere = game.Temporary.path() + "/elsewhere/";
    game.App.Install(elsewhere, false);
    QVERIFY(game.Finish());
    QCOMPARE(ReadFile(elsewhere + "a"), Bytes());
    QCOMPARE(ReadFile(elsewhere + "b"), QByteArray("b"));
    QCOMPARE(game.FilesOnDisk(), QStringList({"ToDownloadBase.db", "a.part"}));
    QCOMPARE(game.Read("ToDownloadBase.db"), QByteArray("a\nb\n"));
}

void UninstallInFlightTest::SizesThatAnswerLateFetchNothing()
{
    Game game;
    game.Add({"a", "a"}).Add({"b", "b"});
    game.Server.Script(game.Content.ServerPath("a")).Then(Answer::SilentBeforeHeaders());
    game.Begin();
    QVERIFY(game.RunUntilRequested("a", 1));
    QVERIFY(game.RunUntilSizes(1));
    quint64 const total = game.App.UISetting.Download.Total;
    game.App.Uninstall(true);
    OpenGate(game);
    QVERIFY(game.Finish());
    QCOMPARE(game.App.UISetting.Download.Total, total);
    QCOMPARE(game.FilesOnDisk(), QStringList("ToDownloadBase.db"));
    QCOMPARE(game.Requested().size(), 2);
    QCOMPARE(game.App.UISetting.State, 1);
}

void UninstallInFlightTest::AComparisonThatIsUnderWayStopsAndWritesNothing()
{
    Game game(TestHost::Worker::ByHand);
    game.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20}).Begin();
    game.AnswerContinue([&](int p_Question) {
        if (p_Question == 2)
            game.App.Uninstall(false);
        return true;
    });
    QVERIFY(game.Host.RunNextAsync());
    QVERIFY(game.Listed().isEmpty());
    QCOMPARE(game.FilesOnDisk(), QStringList());
    QCOMPARE(game.App.UISetting.State, 1);
    QCOMPARE(game.Host.AsyncCount() + game.Host.SyncCount(), std::size_t{0});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::UninstallInFlightTest)
#include "tst_UninstallInFlight.moc"
