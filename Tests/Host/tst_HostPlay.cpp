#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_Password = QStringLiteral("S3cret phrase");
QStringList const c_Account{"--account", "me@example.net"};

} // namespace

class HostPlayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheGameIsStartedWithItsOnlyArgument();
    void AnAccountIsLoggedInByTheLoginScreen();
    void ThePasswordIsTheFirstLineOfTheInput_data();
    void ThePasswordIsTheFirstLineOfTheInput();
    void ThePasswordIsSeenNowhere();
    void WithoutAPasswordTheGameIsStartedAllTheSame();
    void MissingTemplatesAreTold();
    void TemplatesThatCannotBeReadAreTold();
    void CharactersOfMarkupAreTold();
    void ASecondGameIsNotLoggedIn();
    void AnUnfinishedGameIsStartedAndTold();
    void APlayedGameFetchesNothing();
    void AnExecutableThatCannotBeStartedIsNamed_data();
    void AnExecutableThatCannotBeStartedIsNamed();
    void ABuildWithoutAnExecutableIsNamed();
    void PermissionsAreMadeGood();
    void WithoutAServerNothingIsStarted();
};

void HostPlayTest::TheGameIsStartedWithItsOnlyArgument()
{
    PlayedGame const game;
    Outcome const outcome = game.Play();
    QCOMPARE(outcome.Err, QString());
    QVERIFY2(outcome.Out.startsWith("Mists of Pandaria was started as process "),
             qPrintable(outcome.Out));
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(game.Arguments(), QString("-noautolaunch64bit\n"));
    QVERIFY(!game.Has(game.Layout) && !game.Has(game.Script));
}

void HostPlayTest::AnAccountIsLoggedInByTheLoginScreen()
{
    PlayedGame const game;
    Outcome const outcome = game.Play(c_Account, c_Password.toUtf8() + '\n');
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(game.Arguments(), QString("-noautolaunch64bit\n"));
    QCOMPARE(game.Read(game.Layout), QByteArray("<me@example.net|S3cret phrase>"));
    QCOMPARE(ModeOf(game.Path(game.Layout)), 0600);
    QVERIFY(game.Has(game.Script));
}

void HostPlayTest::ThePasswordIsTheFirstLineOfTheInput_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("password");
    QTest::newRow("a line") << QByteArray("one\ntwo\n") << QByteArray("one");
    QTest::newRow("without its end") << QByteArray("one") << QByteArray("one");
    QTest::newRow("of Windows") << QByteArray("one\r\n") << QByteArray("one");
    QTest::newRow("with blanks") << QByteArray(" o ne \n") << QByteArray(" o ne ");
    QTest::newRow("beyond ASCII") << QByteArray("p\xc3\xa4\xc3\x9f\n")
                                  << QByteArray("p\xc3\xa4\xc3\x9f");
    QTest::newRow("an option") << QByteArray("--help\n") << QByteArray("--help");
}

void HostPlayTest::ThePasswordIsTheFirstLineOfTheInput()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, password);
    PlayedGame const game;
    QCOMPARE(game.Play(c_Account, input).Err, QString());
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(game.Read(game.Layout), "<me@example.net|" + password + '>');
}

void HostPlayTest::ThePasswordIsSeenNowhere()
{
    PlayedGame const game;
    QString const log = game.Base + "log.txt";
    Outcome const outcome =
        HostProcess(game, QStringList{"--verbose", "--log-file", log, "play"} + c_Account)
            .Finish(c_Password.toUtf8() + '\n');
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QVERIFY2(outcome.Err.contains("[varnholt."), qPrintable(outcome.Err));
    QVERIFY(ReadFile(log).contains("varnholt."));
    QVERIFY(game.Processes().contains("World of Warcraft"));
    for (QString const& text :
         {outcome.Out, outcome.Err, QString::fromUtf8(ReadFile(log)), game.Arguments(),
          game.Environment(), game.Processes(), QString::fromUtf8(ReadFile(game.SettingsFile))})
        QVERIFY2(!text.contains(c_Password), qPrintable(text));
}

void HostPlayTest::WithoutAPasswordTheGameIsStartedAllTheSame()
{
    PlayedGame const game;
    int starts = 0;
    for (QByteArray const& input : {QByteArray(), QByteArray("\n")}) {
        Outcome const outcome = HostProcess(game, QStringList("play") + c_Account).Finish(input);
        QVERIFY2(outcome.Err.contains("No password was given; the game does not log in by itself."),
                 qPrintable(outcome.Err));
        QCOMPARE(outcome.Status, 0);
        QVERIFY(game.WaitForStarts(++starts));
        QVERIFY(!game.Has(game.Layout));
    }
}

void HostPlayTest::MissingTemplatesAreTold()
{
    for (bool const layout : {true, false}) {
        PlayedGame const game;
        QString const origin = (layout ? game.Layout : game.Script) + ".origin";
        QVERIFY(QFile::remove(game.Path(origin)));
        Outcome const outcome =
            HostProcess(game, QStringList("play") + c_Account).Finish(c_Password.toUtf8());
        QCOMPARE(outcome.Status, 0);
        QVERIFY2(outcome.Err.contains("\nThe game does not log in by itself: " + game.Path(origin) +
                                      " is missing.\n"),
                 qPrintable(outcome.Err));
        QVERIFY(game.WaitForStarts(1));
    }
}

void HostPlayTest::TemplatesThatCannotBeReadAreTold()
{
    VARNHOLT_AS_ORDINARY_USER();
    PlayedGame game;
    SessionGame session;
    session.Options.SettingsFile = game.SettingsFile;
    session.Options.ContentUrl = game.Server.BaseUrl();
    QVERIFY(SetMode(game.Path(game.Script + ".origin"), 0000));
    QVERIFY(session.Open());
    Host::RunRequest request;
    request.Kind = RequestType::Play;
    request.Argument = "me@example.net";
    request.Password = c_Password;
    QCOMPARE(session.Run(request), QString("done"));
    QCOMPARE(session.Notices,
             QStringList("The game does not log in by itself: " +
                         game.Path(game.Script + ".origin") + " cannot be copied."));
    QVERIFY(game.WaitForStarts(1));
}

void HostPlayTest::CharactersOfMarkupAreTold()
{
    PlayedGame const game;
    Outcome const outcome = HostProcess(game, QStringList("play") + c_Account).Finish("a<b&c\n");
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(outcome.Err.contains("holds characters that the login screen may misread"),
             qPrintable(outcome.Err));
    QCOMPARE(game.Read(game.Layout), QByteArray("<me@example.net|a<b&c>"));
    QVERIFY(game.WaitForStarts(1));
}

void HostPlayTest::ASecondGameIsNotLoggedIn()
{
    PlayedGame const game;
    game.KeepRunning();
    QCOMPARE(game.Play(c_Account, c_Password.toUtf8()).Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QVERIFY(game.Has(game.Layout));
    Outcome const outcome =
        HostProcess(game, QStringList("play") + c_Account).Finish(c_Password.toUtf8());
    QVERIFY2(outcome.Err.contains(
                 "The game was running already; the new one does not log in by itself."),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.WaitForStarts(2));
    QVERIFY(!game.Has(game.Layout));
}

void HostPlayTest::AnUnfinishedGameIsStartedAndTold()
{
    PlayedGame const game;
    game.SetSetting("host/pelmora_app/unfinished", true);
    Outcome const outcome = HostProcess(game, {"play"}).Finish();
    QVERIFY2(outcome.Err.contains("The game is not complete; run \"update\" if it does not work."),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QVERIFY(game.IsMarkedUnfinished());
}

void HostPlayTest::APlayedGameFetchesNothing()
{
    PlayedGame const game;
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    game.Put("ToDownload.db", "Data/streamed 1.MPQ\n");
    QCOMPARE(game.Play().Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(game.Requested(), QStringList());
    QCOMPARE(game.Wrong(), QStringList("readme.txt"));
    QCOMPARE(game.Read("ToDownload.db"), QByteArray("Data/streamed 1.MPQ\n"));
}

void HostPlayTest::AnExecutableThatCannotBeStartedIsNamed_data()
{
    QTest::addColumn<bool>("folder");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<int>("status");
    QTest::newRow("missing") << false << "%1 is missing; run \"repair\"" << 4;
    QTest::newRow("a folder") << true << "%1 is no program that you may run (it is no file); " << 7;
}

void HostPlayTest::AnExecutableThatCannotBeStartedIsNamed()
{
    QFETCH(bool, folder);
    QFETCH(QString, sentence);
    PlayedGame const game;
    QVERIFY(QFile::remove(game.Path(game.Program)));
    QVERIFY(!folder || QDir().mkpath(game.Path(game.Program)));
    Outcome const outcome = game.Play(c_Account, c_Password.toUtf8());
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(sentence.replace("%1", game.Path(game.Program))),
             qPrintable(outcome.Err));
    QTEST(outcome.Status, "status");
    QCOMPARE(outcome.Out, QString());
    QVERIFY(!game.Has(game.Layout)); // no password lies about for nothing
}

void HostPlayTest::ABuildWithoutAnExecutableIsNamed()
{
    HostGame game;
    game.AddFiles();
    // Executable, but not the game's own program.
    game.Content.Add({"tool", "#!/bin/sh\ntouch \"$0.ran\"\n", 0x02}).Publish(game.Server);
    game.PutInstalled();
    Outcome const outcome = HostProcess(game, {"-q", "play"}).Finish();
    QCOMPARE(outcome.Err, QString("varnholt-host: the build Sample build names no program to "
                                  "start; ask who publishes it.\n"));
    QCOMPARE(outcome.Status, 1);
}

void HostPlayTest::PermissionsAreMadeGood()
{
    VARNHOLT_AS_ORDINARY_USER();
    PlayedGame const game;
    QVERIFY(SetMode(game.Path(game.Program), 0600));
    SessionGame session;
    session.Options.SettingsFile = game.SettingsFile;
    session.Options.ContentUrl = game.Server.BaseUrl();
    QVERIFY(session.Open());
    QCOMPARE(session.Run(RequestType::Play), QString("done"));
    QVERIFY(game.WaitForStarts(1));
}

void HostPlayTest::WithoutAServerNothingIsStarted()
{
    PlayedGame const game;
    Outcome const outcome = HostProcess(game,
                                        {"--settings", game.SettingsFile, "--content-url",
                                         ScriptedServer::RefusingUrl("/")},
                                        QStringList{"-q", "play"} + c_Account)
                                .Finish(c_Password.toUtf8());
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 5);
    QCOMPARE(game.Starts(), 0);
    QVERIFY(!game.Has(game.Layout));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostPlayTest)
#include "tst_HostPlay.moc"
