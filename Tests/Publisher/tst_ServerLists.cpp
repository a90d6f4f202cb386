#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::Failure;

/// The lists that live players get, whatever the channel of a build.
class ServerListsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ANewTreeNeedsItsHosts();
    void ATrialNamesThisMachine();
    void ATrialLeavesAnOldListAlone();
};

void ServerListsTest::ANewTreeNeedsItsHosts()
{
    PublishedGame game;
    game.Options.Local = false;
    for (bool const dryRun : {true, false}) {
        game.Options.DryRun = dryRun;
        CaughtFailure const failure = FailureOf([&] { game.Publish(); });
        QVERIFY2(failure.Sentence.contains("--hosts") && failure.Sentence.contains("--local"),
                 qPrintable(failure.Sentence));
        QCOMPARE(failure.ExitStatus, Failure::c_Usage);
        QVERIFY(!QFileInfo::exists(game.Options.Output));
    }
}

void ServerListsTest::ATrialNamesThisMachine()
{
    PublishedGame game;
    QStringList arguments{"build",
                          "--source",
                          game.Options.Source,
                          "--output",
                          game.Options.Output,
                          "--rules",
                          game.Options.RulesFile,
                          "--build",
                          "build_1"};
    QCOMPARE(RunProgram(arguments).Status, Failure::c_Usage);
    QCOMPARE(RunProgram(arguments + QStringList("--local")).Status, 0);
    QCOMPARE(game.Read("cdns.info"), QByteArray("127.0.0.1:8080"));
}

void ServerListsTest::ATrialLeavesAnOldListAlone()
{
    PublishedGame game;
    game.Options.Hosts = QStringList("a.example");
    game.Publish();
    game.Options.Hosts.reset();
    game.Publish("build_2");
    QCOMPARE(game.Read("cdns.info"), QByteArray("a.example"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ServerListsTest)
#include "tst_ServerLists.moc"
