#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// A check that asks for the current build's number only.
class HostQuickCheckTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ItAsksForTheVersionFileOnly();
    void ItTellsOfAnotherBuild();
    void AnUnfinishedGameIsNoSuccess();
    void ItNamesWhatIsWrong_data();
    void ItNamesWhatIsWrong();
    void ItCanBeInterrupted();
};

void HostQuickCheckTest::ItAsksForTheVersionFileOnly()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("readme.txt", "damaged"); // which it does not look for
    QVERIFY(game.Open());
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
    QCOMPARE(game.Result().Build, QString("build_1"));
    QCOMPARE(game.Result().BuildName, QString());
    QCOMPARE(game.Server.Requests().size(), std::size_t(1));
    QCOMPARE(game.Server.Count(game.Content.VersionPath()), 1);
}

void HostQuickCheckTest::ItTellsOfAnotherBuild()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Server.Serve(game.Content.VersionPath(), "{\"build\":\"build_2\"}");
    QVERIFY(game.Open());
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("update-available"));
    QCOMPARE(game.Result().Problem->ExitStatus(), 3);
    QCOMPARE(game.Sentence(), QString("an update to build build_2 fetches what differs "
                                      "(its size was not asked for)"));
    QCOMPARE(game.Server.Requests().size(), std::size_t(1));
    QCOMPARE(game.Run(RequestType::Update), QString("server-refusal")); // there is no manifest
}

void HostQuickCheckTest::AnUnfinishedGameIsNoSuccess()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.SetSetting("host/pelmora_app/unfinished", true);
    QVERIFY(game.Open());
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("update-available"));
}

void HostQuickCheckTest::ItNamesWhatIsWrong_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("identifier");
    QTest::newRow("404") << Answer::Status(404) << "server-refusal";
    QTest::newRow("a page") << Answer().Body("<html></html>") << "content-invalid";
    QTest::newRow("no build") << Answer().Body("{}") << "content-invalid";
    QTest::newRow("it closes") << Answer::ClosedBeforeHeaders() << "server-unreachable";
    QTest::newRow("it is silent") << Answer::SilentBeforeHeaders() << "server-silent";
}

void HostQuickCheckTest::ItNamesWhatIsWrong()
{
    QFETCH(Answer, answer);
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Options.StallMilliseconds = 1'000;
    game.Server.Script(game.Content.VersionPath()).Always(answer);
    QVERIFY(game.Open());
    QTEST(game.Run(SessionGame::QuickCheck()), "identifier");
    QVERIFY2(game.Sentence().contains(game.Server.Url(game.Content.VersionPath())),
             qPrintable(game.Sentence()));
    game.Server.ClearScript(game.Content.VersionPath());
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
}

void HostQuickCheckTest::ItCanBeInterrupted()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const version = game.Content.VersionPath();
    game.Server.Script(version).Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(SessionGame::QuickCheck());
    QVERIFY(game.WaitUntil([&] { return game.Server.Count(version) == 1; }));
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    game.Server.OpenGate(version); // what it answers now is nobody's
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
    QCOMPARE(game.Results.size(), std::size_t(1));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostQuickCheckTest)
#include "tst_HostQuickCheck.moc"
