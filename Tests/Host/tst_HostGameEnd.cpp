#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/WatchingSession.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_UntilLetGo = "#!/bin/sh\nwhile [ -e \"$0.run\" ]; do sleep 0.02; done\n";

} // namespace

/// How long the game is there that "play" starts, and who knows of its end.
class HostGameEndTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ARunningGameAndItsEndAreTold_data();
    void ARunningGameAndItsEndAreTold();
    void AnInterruptedStartLeavesAGameWhoseEndIsTold();
    void PlayWaitsForTheEnd_data();
    void PlayWaitsForTheEnd();
    void AnInterruptedHostLeavesTheGameRunning();
    void TheGameOutlivesItsSession();
};

void HostGameEndTest::ARunningGameAndItsEndAreTold_data()
{
    QTest::addColumn<QByteArray>("ending");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("signal");
    QTest::newRow("well") << QByteArray("exit 0") << 0 << 0;
    QTest::newRow("a status") << QByteArray("exit 3") << 3 << 0;
    QTest::newRow("a signal") << QByteArray("kill -KILL $$") << -1 << 9;
}

void HostGameEndTest::ARunningGameAndItsEndAreTold()
{
    QFETCH(QByteArray, ending);
    QFETCH(int, status);
    QFETCH(int, signal);
    PlayedGame const game(c_UntilLetGo + ending + '\n');
    game.KeepRunning();
    WatchingSession session(game, 1);
    QSignalSpy const started(&session.Session(), &Host::HostSession::GameStarted);
    QSignalSpy const ended(&session.Session(), &Host::HostSession::GameEnded);
    QCOMPARE(session.Run(RequestType::Play), QString("done"));
    QCOMPARE(started.size(), 1);
    QCOMPARE(started[0][0].toLongLong(), session.Result().ProcessId);
    session.Status(); // some turns later
    QCOMPARE(ended.size(), 0);
    game.LetGo();
    QVERIFY(session.WaitUntil([&] { return !ended.isEmpty(); }));
    auto const end = ended[0][0].value<Host::GameEnd>();
    QCOMPARE(end.ProcessId, session.Result().ProcessId);
    QCOMPARE(end.ExitStatus.value_or(-1), status);
    QCOMPARE(end.Signal, signal);
    QVERIFY(std::abs(end.Time.secsTo(QDateTime::currentDateTimeUtc())) < 60);
    session.Status();
    QCOMPARE(ended.size(), 1);
}

void HostGameEndTest::AnInterruptedStartLeavesAGameWhoseEndIsTold()
{
    PlayedGame const game(c_UntilLetGo);
    game.KeepRunning();
    WatchingSession session(game);
    QSignalSpy const ended(&session.Session(), &Host::HostSession::GameEnded);
    session.Start(RequestType::Play);
    QVERIFY(session.WaitForPhase(Host::RunPhase::StartingGame));
    session.Session().Interrupt();
    QCOMPARE(session.End(), QString("interrupted"));
    game.LetGo();
    QVERIFY(session.WaitUntil([&] { return !ended.isEmpty(); }));
    QCOMPARE(ended[0][0].value<Host::GameEnd>().ExitStatus.value_or(-1), 0);
}

void HostGameEndTest::PlayWaitsForTheEnd_data()
{
    QTest::addColumn<QByteArray>("ending");
    QTest::addColumn<int>("status");
    QTest::newRow("well") << QByteArray("exit 0") << 0;
    QTest::newRow("an error") << QByteArray("exit 3") << 1;
}

void HostGameEndTest::PlayWaitsForTheEnd()
{
    QFETCH(QByteArray, ending);
    PlayedGame const game(c_UntilLetGo + ending + '\n');
    game.KeepRunning();
    HostProcess host(game, {"play", "--wait"});
    QVERIFY(host.WaitForErr("; waiting for its end."));
    game.LetGo();
    Outcome const outcome = host.Finish();
    QTEST(outcome.Status, "status");
    QCOMPARE(outcome.Err.contains("the game has ended with an error (exit status 3)"),
             outcome.Status == 1);
}

void HostGameEndTest::AnInterruptedHostLeavesTheGameRunning()
{
    PlayedGame const game;
    game.KeepRunning();
    WatchingSession session(game);
    session.Start(RequestType::Play);
    QVERIFY(session.WaitForPhase(Host::RunPhase::StartingGame));
    QVERIFY(session.Status().IsInstalled); // the module's thread is there for others
    session.Session().Interrupt();
    QCOMPARE(session.End(), QString("interrupted"));
    // It may come behind the end, which waits for a busy module for a moment only.
    QVERIFY(session.WaitUntil([&] { return !session.Notices.isEmpty(); }));
    QCOMPARE(session.Notices, QStringList("The game was started and goes on running."));
    QVERIFY(game.WaitForStarts(1));
    QVERIFY(game.IsRunning());
}

void HostGameEndTest::TheGameOutlivesItsSession()
{
    PlayedGame const game;
    game.KeepRunning();
    SessionGame session;
    session.Options.SettingsFile = game.SettingsFile;
    session.Options.ContentUrl = game.Server.BaseUrl();
    QVERIFY(session.Open());
    QCOMPARE(session.Run(RequestType::Play), QString("done"));
    auto const process = static_cast<pid_t>(session.Result().ProcessId);
    QVERIFY(game.WaitForStarts(1));
    session.Close();
    QVERIFY(game.IsRunning());
    QCOMPARE(::kill(process, 0), 0);
    game.LetGo();
    // A zombie would still be there.
    QVERIFY(QTest::qWaitFor([&] { return ::kill(process, 0) != 0; }, TestHost::c_Timeout));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostGameEndTest)
#include "tst_HostGameEnd.moc"
