#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/Terminal.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_Stopping = QStringLiteral("Stopping; press Ctrl-C again to stop at once.");
QString const c_Interrupted =
    QStringLiteral("varnholt-host: interrupted; give the same command again to go on; what has "
                   "arrived is kept.");

/// Makes an installation stand still within its first file.
QString HoldWithinAFile(HostGame& p_Game)
{
    p_Game.AddFiles().Publish();
    return p_Game.HoldContent("Data/base.MPQ", 30000);
}

/// Whether that is all that is left of an installation; how long it took is left open.
bool IsResult(HostGame const& p_Game, QString const& p_Text)
{
    QString const line = "Mists of Pandaria, build Sample build, is complete in " + p_Game.Folder +
                         " (6 files fetched: 106.5 KiB in 0:0";
    return p_Text.startsWith(line) && p_Text.indexOf('\n') == p_Text.size() - 1;
}

} // namespace

/// What a person at a terminal sees and types.
class HostTerminalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ABarIsDrawnAndTakenAway();
    void TheBarKeepsToTheWidthOfTheTerminal();
    void TheBarIsDrawnInAsciiWhereTheLocaleHasNoMore();
    void NoticesStandAboveTheBar();
    void InQuietModeThereIsNoBar();
    void ATerminalThatCanNothingGetsPlainLines_data();
    void ATerminalThatCanNothingGetsPlainLines();
    void ColoursCanBeDeclined();
    void AnUpdateIsNoFailureToTheEye();
    void CtrlCLeavesACleanLine();
    void APausedRunIsShownAsOne();
    void ThePasswordIsNotShown();
    void CtrlCAtThePasswordStartsNothing();
    void DeletingIsAskedFor_data();
    void DeletingIsAskedFor();
};

void HostTerminalTest::ABarIsDrawnAndTakenAway()
{
    HostGame game;
    QString const path = HoldWithinAFile(game);
    Terminal terminal(game, {"install", game.Folder});
    QVERIFY(terminal.WaitForLine("29.3 KiB of 89.9 KiB"));
    QString const bar = terminal.Screen().last();
    QVERIFY2(bar.startsWith("downloading base files  1/4  "), qPrintable(bar));
    QVERIFY2(bar.contains(QString(9, QChar(0x2588)) + QChar(0x2591)), qPrintable(bar));
    QVERIFY2(bar.contains("  32 %  "), qPrintable(bar));
    QCOMPARE(terminal.Screen().size(), 1); // always in the same line
    game.Server.OpenGate(path);
    QCOMPARE(terminal.Finish(), 0);
    QVERIFY(IsResult(game, terminal.Screen().join('\n')));
}

void HostTerminalTest::TheBarKeepsToTheWidthOfTheTerminal()
{
    HostGame game;
    QString const path = HoldWithinAFile(game);
    Terminal terminal(game, {"install", game.Folder}, {}, 40);
    QVERIFY(terminal.WaitForLine("32 %  29.3 KiB of 89.9 KiB"));
    QVERIFY(terminal.Screen().last().size() < 40);
    terminal.Resize(10);
    game.Server.OpenGate(path);
    QCOMPARE(terminal.Finish(), 0);
    QVERIFY(IsResult(game, terminal.Screen().join('\n')));
}

void HostTerminalTest::TheBarIsDrawnInAsciiWhereTheLocaleHasNoMore()
{
    HostGame game;
    HoldWithinAFile(game);
    Terminal terminal(game, {"install", game.Folder}, {{"LC_ALL", "C"}});
    QVERIFY(terminal.WaitForLine("29.3 KiB of 89.9 KiB"));
    QVERIFY2(terminal.Screen().last().contains(QString(9, '#') + '-'),
             qPrintable(terminal.Screen().last()));
}

void HostTerminalTest::NoticesStandAboveTheBar()
{
    HostGame game;
    HoldWithinAFile(game);
    game.Server.Serve("/cdns.info", "<html>");
    Terminal terminal(game, {"install", game.Folder});
    QVERIFY(terminal.WaitForLine("29.3 KiB of 89.9 KiB"));
    QCOMPARE(terminal.Screen().size(), 2);
    QCOMPARE(terminal.Screen().first(),
             QString("The list of mirrors is damaged; the files come from the default server."));
}

void HostTerminalTest::InQuietModeThereIsNoBar()
{
    HostGame game;
    game.AddFiles().Publish();
    Terminal terminal(game, {"-q", "install", game.Folder});
    QCOMPARE(terminal.Finish(), 0);
    QVERIFY(IsResult(game, QString::fromUtf8(terminal.Written())));
}

void HostTerminalTest::ATerminalThatCanNothingGetsPlainLines_data()
{
    QTest::addColumn<QString>("type");
    QTest::newRow("dumb") << "dumb";
    QTest::newRow("unknown") << QString();
}

void HostTerminalTest::ATerminalThatCanNothingGetsPlainLines()
{
    QFETCH(QString, type);
    HostGame game;
    game.AddFiles().Publish();
    Terminal terminal(game, {"install", game.Folder}, {{"TERM", type}});
    QCOMPARE(terminal.Finish(), 0);
    QVERIFY2(!terminal.Written().contains('\x1b'), terminal.Written().constData());
    QCOMPARE(terminal.Written().count('\r'), terminal.Written().count('\n'));
    QCOMPARE(terminal.Screen().first(), QString("connecting"));
    QVERIFY(!terminal.Screen().filter("is complete in " + game.Folder).isEmpty());

    Terminal failing(game, {"install", "/"}, {{"TERM", type}});
    QCOMPARE(failing.Finish(), 7);
    QVERIFY2(!failing.Written().contains('\x1b'), failing.Written().constData());
}

void HostTerminalTest::ColoursCanBeDeclined()
{
    HostGame const game;
    QString const sentence = "varnholt-host: Mists of Pandaria is not installed; install it first.";
    auto const written = [&](QStringList const& p_Options, QMap<QString, QString> const& p_Vars) {
        Terminal terminal(game, p_Options + QStringList("update"), p_Vars);
        if (terminal.Finish() != 1 || terminal.Screen() != QStringList({sentence, QString()}))
            return QByteArray("something else");
        return terminal.Written();
    };
    QVERIFY(written({}, {}).contains("\x1b[31m"));
    QVERIFY(written({}, {{"NO_COLOR", ""}}).contains("\x1b[31m"));
    QVERIFY(!written({}, {{"NO_COLOR", "1"}}).contains("\x1b[31m"));
    QVERIFY(!written({"--color=never"}, {}).contains("\x1b[31m"));
    QVERIFY(written({"--color=always"}, {{"NO_COLOR", "1"}}).contains("\x1b[31m"));
}

void HostTerminalTest::AnUpdateIsNoFailureToTheEye()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.SetSetting("host/pelmora_app/build", "build_0");
    Terminal terminal(game, {"-q", "check", "--quick"});
    QCOMPARE(terminal.Finish(), 3);
    QVERIFY2(!terminal.Written().contains("\x1b[31m"), terminal.Written().constData());
    QCOMPARE(terminal.Screen().first(),
             QString("varnholt-host: an update to build build_1 fetches what differs (its size was "
                     "not asked for); run \"update\"."));
}

void HostTerminalTest::CtrlCLeavesACleanLine()
{
    HostGame game;
    HoldWithinAFile(game);
    Terminal terminal(game, {"install", game.Folder});
    QVERIFY(terminal.WaitForLine("29.3 KiB of 89.9 KiB"));
    terminal.Type(QByteArray(1, Terminal::c_CtrlC));
    QCOMPARE(terminal.Finish(), 130);
    QCOMPARE(terminal.Screen(), QStringList({c_Stopping, c_Interrupted, QString()}));
    Terminal again(game, {"install", game.Folder});
    QCOMPARE(again.Finish(), 0);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostTerminalTest::APausedRunIsShownAsOne()
{
    HostGame game;
    QString const path = HoldWithinAFile(game);
    Terminal terminal(game, {"install", game.Folder});
    QVERIFY(terminal.WaitForLine("29.3 KiB of 89.9 KiB"));
    HostProcess const pause(game, {"pause"});
    QVERIFY(terminal.WaitUntil([&] { return terminal.Screen().last() == "suspended"; }));
    HostProcess const resume(game, {"resume"});
    game.Server.OpenGate(path);
    QCOMPARE(terminal.Finish(), 0);
    QCOMPARE(terminal.Screen().size(), 2);
    QVERIFY(terminal.Screen().first().startsWith("Mists of Pandaria, build Sample build, is "));
}

void HostTerminalTest::ThePasswordIsNotShown()
{
    PlayedGame const game;
    Terminal terminal(game, {"play", "--account", "me"});
    QVERIFY(terminal.WaitForLine("Password of me:"));
    QVERIFY(terminal.WaitUntil([&] { return !terminal.Echoes(); }));
    terminal.Type("S3cret phrase\n");
    QCOMPARE(terminal.Finish(), 0);
    QVERIFY2(!terminal.Written().contains("S3cret"), terminal.Written().constData());
    QCOMPARE(terminal.Screen().first(), QString("Password of me:"));
    QVERIFY(terminal.Screen().at(1).startsWith("Mists of Pandaria was started as process "));
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(game.Read(game.Layout), QByteArray("<me|S3cret phrase>"));
}

void HostTerminalTest::CtrlCAtThePasswordStartsNothing()
{
    PlayedGame const game;
    Terminal terminal(game, {"play", "--account", "me"});
    QVERIFY(terminal.WaitForLine("Password of me:"));
    QVERIFY(terminal.WaitUntil([&] { return !terminal.Echoes(); }));
    terminal.Type(QByteArray("S3c") + Terminal::c_CtrlC);
    QVERIFY(terminal.WaitUntil([&] { return terminal.Echoes(); }));
    QCOMPARE(terminal.Finish(), 130);
    QVERIFY2(!terminal.Written().contains("S3c"), terminal.Written().constData());
    QCOMPARE(terminal.Screen().last(), QString());
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QCOMPARE(game.Starts(), 0);
}

void HostTerminalTest::DeletingIsAskedFor_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<bool>("deletes");
    QTest::addColumn<int>("status");
    QTest::newRow("yes") << QByteArray("yes\n") << true << 0;
    QTest::newRow("y") << QByteArray("Y\n") << true << 0;
    QTest::newRow("no") << QByteArray("n\n") << false << 1;
    QTest::newRow("nothing") << QByteArray("\n") << false << 1;
    QTest::newRow("anything else") << QByteArray("yess\n") << false << 1;
    QTest::newRow("the end") << QByteArray(1, Terminal::c_CtrlD) << false << 1;
    QTest::newRow("Ctrl-C") << QByteArray(1, Terminal::c_CtrlC) << false << 130;
}

void HostTerminalTest::DeletingIsAskedFor()
{
    QFETCH(QByteArray, keys);
    QFETCH(bool, deletes);
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("mine.txt", "mine");
    Terminal terminal(game, {"uninstall", "--delete-files"});
    QVERIFY(terminal.WaitForLine("Delete 6 files (106.5 KiB) of Mists of Pandaria in " +
                                 game.Folder + "? 1 file that is not the game's stays. [y/N]"));
    terminal.Type(keys);
    QTEST(terminal.Finish(), "status");
    QCOMPARE(game.Has("readme.txt"), !deletes);
    QCOMPARE(game.Setting("pelmora_app.Installed").toBool(), !deletes);
    QCOMPARE(terminal.Screen().contains("Nothing was deleted."), !deletes);
    QCOMPARE(terminal.Screen().last(), QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostTerminalTest)
#include "tst_HostTerminal.moc"
