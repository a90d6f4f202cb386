#include "Host/Core/Network/OfflineCopies.hpp"
#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QtTest>

namespace Varnholt::TestSupport {

using Host::OfflineCopies;

namespace {

/// A game that was installed by a session, and its program.
void Complete(SessionGame& p_Game)
{
    p_Game.AddFiles();
    p_Game.Content.Add({"Game.app/Game", "#!/bin/sh\nexit 0\n", PlayedGame::c_ExecutableFlags});
    p_Game.Publish();
    QVERIFY(p_Game.Open());
    QCOMPARE(p_Game.Install(), QString("done"));
}

void PublishAnotherBuild(SessionGame& p_Game)
{
    p_Game.Content.Build = "build_2";
    p_Game.Content.BuildStr = "Second build";
    p_Game.Content.Add({"new.txt", "new"});
    p_Game.Publish();
}

QStringList const c_GoesOn{"; going on with what is known of build Sample build."};

} // namespace

/// Runs without a server.
class HostOfflineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WithoutAServerTheGameIsStartedAndThatIsTold();
    void ARunGoesOnWithoutWhatTheServerDoesNotGive_data();
    void ARunGoesOnWithoutWhatTheServerDoesNotGive();
    void ASilentServerIsWaitedForAMomentOnly();
    void AServerThatAnswersIsWorthMoreThanCopies();
    void CopiesAreOfTheBuildThatWasCompletedLast();
    void AnUpdateWantsAServer();
    void OfflineAsksNobody();
    void OfflineRefusesWhatNeedsServers();
    void OfflineWithoutCopiesIsToldAsSuch();
    void AnUninstallationForgetsTheCopies();
};

void HostOfflineTest::WithoutAServerTheGameIsStartedAndThatIsTold()
{
    PlayedGame game;
    QCOMPARE(HostProcess(game, {"-q", "update"}).Finish().Status, 0);
    game.Server.Stop();
    Outcome const outcome = HostProcess(game, {"play"}).Finish();
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QVERIFY2(
        outcome.Err.contains("version.json cannot be fetched (connection refused)" + c_GoesOn[0]),
        qPrintable(outcome.Err));
    QCOMPARE(outcome.Err.count("going on"), 1);
}

void HostOfflineTest::ARunGoesOnWithoutWhatTheServerDoesNotGive_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("why");
    Answer const page = Answer().Body("<html>Some page of a hotel's network</html>");
    QString const version = SampleContent().VersionPath();
    QString const manifest = SampleContent("pelmora_app", "build_2").ManifestPath();
    QTest::newRow("no version") << version << Answer::Status(404) << "HTTP status 404";
    QTest::newRow("a page for it") << version << page << "page of another kind";
    QTest::newRow("it closes") << version << Answer::ClosedBeforeHeaders() << "connection closed";
    QTest::newRow("no manifest") << manifest << Answer::Status(404) << "HTTP status 404";
    QTest::newRow("a page as manifest") << manifest << page << "page of another kind";
}

void HostOfflineTest::ARunGoesOnWithoutWhatTheServerDoesNotGive()
{
    QFETCH(QString, path);
    QFETCH(Answer, answer);
    QFETCH(QString, why);
    SessionGame game;
    Complete(game);
    PublishAnotherBuild(game);
    game.Server.Script(path).Always(answer);
    for (RequestType const kind : {RequestType::Play, RequestType::Verify}) {
        QCOMPARE(game.Run(kind), QString("done"));
        QCOMPARE(game.Result().Build, QString("build_1"));
        QCOMPARE(game.Notices.size(), 1);
        QVERIFY2(game.Notices[0].contains(why) && game.Notices[0].endsWith(c_GoesOn[0]),
                 qPrintable(game.Notices[0]));
    }
}

void HostOfflineTest::ASilentServerIsWaitedForAMomentOnly()
{
    constexpr int c_MostMilliseconds = 15'000; // half of what a silent answer is waited for

    SessionGame game;
    game.Options.CopyDelayMilliseconds = 200;
    Complete(game);
    game.Server.Script("*").Always(Answer::SilentBeforeHeaders());
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(game.Run(RequestType::Play), QString("done"));
    QVERIFY2(clock.elapsed() < c_MostMilliseconds, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(game.Notices.size(), 1);
    QVERIFY2(game.Notices[0].contains("no answer in time"), qPrintable(game.Notices[0]));
}

void HostOfflineTest::AServerThatAnswersIsWorthMoreThanCopies()
{
    SessionGame game;
    Complete(game);
    PublishAnotherBuild(game);
    QCOMPARE(game.Run(RequestType::Play), QString("done"));
    QCOMPARE(game.Result().Build, QString("build_2"));
    QCOMPARE(game.Notices, QStringList());
}

void HostOfflineTest::CopiesAreOfTheBuildThatWasCompletedLast()
{
    SessionGame game;
    Complete(game);
    PublishAnotherBuild(game);
    game.Server.Script(game.Content.ServerPath("new.txt")).Always(Answer::Status(404));
    QCOMPARE(game.Run(RequestType::Update), QString("files-given-up"));
    game.Options.Offline = true;
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    QCOMPARE(game.Result().Build, QString("build_1"));

    game.Server.ClearScript(game.Content.ServerPath("new.txt"));
    game.Options.Offline = false;
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    game.Server.Stop();
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    QCOMPARE(game.Result().Build, QString("build_2"));
}

void HostOfflineTest::AnUpdateWantsAServer()
{
    SessionGame game;
    Complete(game);
    game.Server.Stop();
    for (RequestType const kind : {RequestType::Update, RequestType::Repair, RequestType::Check})
        QCOMPARE(game.Run(kind), QString("server-unreachable"));
}

void HostOfflineTest::OfflineAsksNobody()
{
    SessionGame game;
    Complete(game);
    game.Options.Offline = true;
    QVERIFY(game.Open());
    std::size_t const asked = game.Server.Requests().size();
    QCOMPARE(game.Run(RequestType::Play), QString("done"));
    QCOMPARE(game.Notices, QStringList("No server is asked" + c_GoesOn[0]));
    QCOMPARE(game.Run(RequestType::ListLocales), QString("done"));
    QCOMPARE(game.Result().Locales.size(), std::size_t(2));
    QCOMPARE(game.Run(RequestType::Check), QString("done"));
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    QCOMPARE(game.Run(RequestType::Check), QString("update-available"));
    QVERIFY2(game.Sentence().contains("1 file (at least 0 bytes)"), qPrintable(game.Sentence()));
    QCOMPARE(game.Run(RequestType::Verify), QString("files-wrong"));
    QVERIFY(game.Status().IsInstalled);
    QCOMPARE(game.Server.Requests().size(), asked);
}

void HostOfflineTest::OfflineRefusesWhatNeedsServers()
{
    SessionGame game;
    Complete(game);
    game.Options.Offline = true;
    QVERIFY(game.Open());
    std::size_t const asked = game.Server.Requests().size();
    for (RequestType const kind : {RequestType::Install, RequestType::Update, RequestType::Repair,
                                   RequestType::AskMirrors}) {
        QCOMPARE(game.Run(kind, game.Folder), QString("option-invalid"));
        QCOMPARE(game.Result().Problem->ExitStatus(), 2);
        QVERIFY2(game.Sentence().contains("\"offline\""), qPrintable(game.Sentence()));
    }
    QCOMPARE(game.Server.Requests().size(), asked);
    QVERIFY(!game.IsMarkedUnfinished());
}

void HostOfflineTest::OfflineWithoutCopiesIsToldAsSuch()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Options.Offline = true;
    QVERIFY(game.Open());
    for (RequestType const kind :
         {RequestType::Play, RequestType::Verify, RequestType::Check, RequestType::ListLocales}) {
        QCOMPARE(game.Run(kind), QString("offline-unknown"));
        QVERIFY2(game.Sentence().contains("host.offline"), qPrintable(game.Sentence()));
    }
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("offline-unknown"));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
}

void HostOfflineTest::AnUninstallationForgetsTheCopies()
{
    SessionGame game;
    Complete(game);
    QString const folder = OfflineCopies(game.SettingsFile).Folder();
    QVERIFY(QFileInfo::exists(folder));
    QCOMPARE(game.Run(RequestType::Uninstall), QString("done"));
    QVERIFY(!QFileInfo::exists(folder));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostOfflineTest)
#include "tst_HostOffline.moc"
