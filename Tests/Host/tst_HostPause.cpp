#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSemaphore>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

using Host::RunPhase;

namespace {

QString const c_Base = QStringLiteral("Data/base.MPQ");
QString const c_FirstBuild = QStringLiteral("Data/first build.MPQ");
QString const c_Streamed = QStringLiteral("Data/streamed 1.MPQ");

qint64 Size(SessionGame const& p_Game, QString const& p_File)
{
    for (SampleFile const& file : p_Game.Content.Files)
        if (file.Path == p_File)
            return file.Bytes.size();
    return -1;
}

void Open(SessionGame& p_Game, QString const& p_File, int p_Times = 1)
{
    p_Game.Server.OpenGate(p_Game.Content.ServerPath(p_File), p_Times);
}

/// Stops the thread that says something, the first time that it does so, until this lets it go on.
class StoppedAtMessage {
public:
    explicit StoppedAtMessage(QString const& p_Text)
    {
        s_Text = p_Text;
        Before = qInstallMessageHandler(Handle);
    }
    ~StoppedAtMessage() { GoOn(); }
    StoppedAtMessage(StoppedAtMessage const&) = delete;
    StoppedAtMessage& operator=(StoppedAtMessage const&) = delete;

    [[nodiscard]] bool Wait() { return s_Began.tryAcquire(1, TestHost::c_Timeout); }
    void GoOn()
    {
        qInstallMessageHandler(Before);
        s_Go.release();
    }

private:
    static void Handle(QtMsgType /*p_Type*/, QMessageLogContext const& /*p_Context*/,
                       QString const& p_Text)
    {
        if (!p_Text.contains(s_Text))
            return;
        s_Began.release();
        s_Go.acquire();
    }

    inline static QString s_Text;
    inline static QSemaphore s_Began{0};
    inline static QSemaphore s_Go{0};
    QtMessageHandler Before;
};

} // namespace

/// Pauses and what follows them.
class HostPauseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void APauseWhileConnectingHolds();
    void APauseWhileComparingHolds();
    void APauseWhileAskingSizesHolds();
    void APauseWithinAFileKeepsItsBytes_data();
    void APauseWithinAFileKeepsItsBytes();
    void APauseBeforeTheAnswerHolds();
    void APauseBetweenTwoFilesBeginsNone();
    void QuickPausesAndContinuationsComeToTheEnd();
    void APauseWhileWaitingToTryAgainHolds();
    void APausedRunHasNoRate();
    void APauseOfAPlayedGameDoesNotOutliveItsRun();

private:
    static void HoldsFor(SessionGame& p_Game);
};

/// Fails the test when the paused run ends or asks for anything.
void HostPauseTest::HoldsFor(SessionGame& p_Game)
{
    constexpr int c_Rounds = 10;

    QVERIFY(p_Game.WaitForPhase(RunPhase::Suspended));
    std::size_t const requests = p_Game.Server.Requests().size();
    for (int i = 0; i < c_Rounds; ++i) {
        p_Game.Status();
        QTest::qWait(10); // so that a run that goes on is seen in most of the rounds
    }
    QCOMPARE(p_Game.Results.size(), std::size_t(0));
    QCOMPARE(p_Game.Server.Requests().size(), requests);
    QCOMPARE(p_Game.Snapshots.back().Phase, RunPhase::Suspended);
}

void HostPauseTest::APauseWhileConnectingHolds()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const version = game.Content.VersionPath();
    game.Server.Script(version).Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPhase(RunPhase::Connecting));
    game.Session().Pause();
    game.Server.OpenGate(version);
    HoldsFor(game);
    QCOMPARE(game.Requested(), QStringList());
    game.Session().Continue();
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APauseWhileComparingHolds()
{
    constexpr int c_BigFile = 40'000'000;

    SessionGame game;
    game.Content.Add({"big", QByteArray(c_BigFile, 'x')});
    game.AddFiles().Publish().PutInstalled();
    game.Put("readme.txt", "damaged");
    QVERIFY(game.Open());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForPhase(RunPhase::Comparing));
    game.Session().Pause();
    HoldsFor(game);
    QCOMPARE(game.Requested(), QStringList());
    game.Session().Continue();
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APauseWhileAskingSizesHolds()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const path = game.Content.ServerPath(c_Base);
    for (QString const& method : {QString("HEAD "), QString("GET ")})
        game.Server.Script(method + path).Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPhase(RunPhase::AskingSizes));
    QVERIFY(game.WaitUntil([&] { return game.Requests(c_Base) > 0; }));
    game.Session().Pause();
    game.Status(); // the pause has come first
    Open(game, c_Base, 2);
    HoldsFor(game);
    QVERIFY(!game.Has(c_Base));
    game.Session().Continue();
    Open(game, c_Base);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APauseWithinAFileKeepsItsBytes_data()
{
    QTest::addColumn<QString>("file");
    for (QString const& file : {c_Base, c_FirstBuild, c_Streamed})
        QTest::newRow(qPrintable(file)) << file;
}

void HostPauseTest::APauseWithinAFileKeepsItsBytes()
{
    QFETCH(QString, file);
    SessionGame game;
    game.AddFiles().Publish();
    game.HoldContent(file, 5000);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart(file, 5000));
    game.Session().Pause();
    HoldsFor(game);
    QVERIFY(game.WaitForPart(file, 5000));
    QVERIFY(game.IsMarkedUnfinished());
    game.Session().Continue();
    Open(game, file);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Server.BodyBytes(game.Content.ServerPath(file)), Size(game, file));
    QCOMPARE(game.Result().Transfers, 6u); // the one that was stopped counts once
    QVERIFY(!game.IsMarkedUnfinished());
}

void HostPauseTest::APauseBeforeTheAnswerHolds()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const content = "GET " + game.Content.ServerPath(c_FirstBuild);
    game.Server.Script(content).Then(Answer::SilentBeforeHeaders());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Server.ScriptedAnswers(content) == 1; }));
    game.Session().Pause();
    HoldsFor(game);
    QVERIFY(!game.Has(c_FirstBuild));
    game.Session().Continue();
    Open(game, c_FirstBuild);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APauseBetweenTwoFilesBeginsNone()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.HoldContent(c_Base, 59'000);
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart(c_Base, 59'000));
    StoppedAtMessage between("Selected CDN"); // that of the next file is chosen
    Open(game, c_Base);
    QVERIFY(between.Wait());
    QStringList const files = game.FilesOnDisk();
    QVERIFY(files.contains(c_Base));
    game.Session().Pause();
    between.GoOn();
    HoldsFor(game);
    QCOMPARE(game.FilesOnDisk(), files);
    game.Session().Continue();
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::QuickPausesAndContinuationsComeToTheEnd()
{
    SessionGame game;
    game.AddFiles();
    for (int i = 0; i < 10; ++i)
        game.Content.Add({QString("Data/more %1").arg(i), SampleContent::Bytes(50000, 20 + i)});
    game.Publish();
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    for (int i = 0; i < 40; ++i) {
        game.Session().Pause();
        game.Session().Pause();
        if (i % 3 == 0)
            game.Status();
        game.Session().Continue();
        if (i % 2 == 0)
            game.Status();
        game.Session().Continue();
    }
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APauseWhileWaitingToTryAgainHolds()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const path = game.Content.ServerPath("readme.txt");
    game.Server.Script(path).Always(Answer::ClosedBeforeHeaders());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.HasWaitedFor("connection closed before the end"); }));
    game.Session().Pause();
    HoldsFor(game);
    game.Server.ClearScript(path);
    game.Session().Continue();
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APausedRunHasNoRate()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const path = game.Content.ServerPath(c_Base);
    game.Server.Script("GET " + path).Always(Answer::Drip(600, 10)); // a second at least
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil([&] { return !game.Snapshots.empty() && game.Snapshots.back().Rate; }));
    game.Session().Pause();
    QVERIFY(game.WaitForPhase(RunPhase::Suspended));
    QCOMPARE(game.Snapshots.back().Rate, quint64(0));
    HoldsFor(game);
    game.Session().Continue();
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostPauseTest::APauseOfAPlayedGameDoesNotOutliveItsRun()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const version = game.Content.VersionPath();
    game.Server.Script(version).Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(RequestType::ListLocales);
    QVERIFY(game.WaitForPhase(RunPhase::Connecting));
    game.Session().Pause(); // no transfer to pause
    game.Server.OpenGate(version);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostPauseTest)
#include "tst_HostPause.moc"
