#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::Failure;

/// The lists that live players get, whatever the channel of a build.
class ServerListsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ANewTreeNeedsItsHosts();
    void ATrialNamesThisMachine();
    void TheDevelopmentChannelLeavesTheListsAlone_data();
    void TheDevelopmentChannelLeavesTheListsAlone();
    void ANewTreeMayBeginOnTheDevelopmentChannel();
    void ACommandChangesAListAndNothingElse_data();
    void ACommandChangesAListAndNothingElse();
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
    QStringList arguments = game.BuildArguments();
    arguments.removeAll("--local");
    QCOMPARE(RunProgram(arguments).Status, Failure::c_Usage);
    QCOMPARE(RunProgram(arguments + QStringList("--local")).Status, 0);
    QCOMPARE(game.Read("cdns.info"), QByteArray("127.0.0.1:8080"));
}

void ServerListsTest::TheDevelopmentChannelLeavesTheListsAlone_data()
{
    QTest::addColumn<GameChange>("change");
    QTest::addColumn<QString>("command");
    AddRow("hosts", GameChange([](PublishedGame& p_Game) {
               p_Game.Options.Hosts = QStringList("b.example");
           }),
           "use the command \"hosts\"");
    AddRow("realm list",
           GameChange([](PublishedGame& p_Game) { p_Game.Options.RealmListAddress = "b.example"; }),
           "use the command \"realmlist\"");
}

void ServerListsTest::TheDevelopmentChannelLeavesTheListsAlone()
{
    QFETCH(GameChange, change);
    QFETCH(QString, command);
    PublishedGame game;
    game.Publish();
    Tree const before = TreeOf(game.Options.Output);
    change(game);
    game.Options.DevChannel = true;
    CaughtFailure const failure = FailureOf([&] { game.Publish("build_2"); });
    QVERIFY2(failure.Sentence.contains(command), qPrintable(failure.Sentence));
    QCOMPARE(failure.ExitStatus, Failure::c_Usage);
    QCOMPARE(TreeOf(game.Options.Output), before);
    game.Options.DevChannel = false;
    game.Publish("build_2");
}

void ServerListsTest::ANewTreeMayBeginOnTheDevelopmentChannel()
{
    PublishedGame game;
    game.Options.Hosts = QStringList("a.example");
    game.Options.RealmListAddress = "logon";
    game.Options.DevChannel = true;
    game.Publish();
    QCOMPARE(game.Read("cdns.info"), QByteArray("a.example"));
    QCOMPARE(game.Read("pelmora_app/realmlist.info"), QByteArray("SET realmlist \"logon\""));
}

void ServerListsTest::ACommandChangesAListAndNothingElse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("before");
    AddRow("hosts", QStringList({"hosts", "b.example,c.example:81"}), "cdns.info",
           QByteArray("b.example c.example:81"), QByteArray("127.0.0.1:8080"));
    AddRow("realm list", QStringList({"realmlist", "logon"}), "pelmora_app/realmlist.info",
           QByteArray("SET realmlist \"logon\""), QByteArray("none"));
}

void ServerListsTest::ACommandChangesAListAndNothingElse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, list);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, before);
    PublishedGame game;
    game.Publish();
    Tree expected = game.Published();
    expected[list] = text;
    arguments += {"--output", game.Options.Output};
    ProgramResult const result = RunProgram(arguments);
    QCOMPARE(result.Errors, QByteArray());
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output,
             game.OutputPath(list).toUtf8() + ": " + text + " (before: " + before + ")\n");
    QCOMPARE(game.Published(), expected);
    QJsonObject const object =
        QJsonDocument::fromJson(RunProgram(arguments + QStringList("--json")).Output).object();
    QCOMPARE(object,
             (QJsonObject{
                 {"type", arguments.first()}, {"before", QString(text)}, {"now", QString(text)}}));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ServerListsTest)
#include "tst_ServerLists.moc"
