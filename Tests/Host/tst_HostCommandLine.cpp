#include "Tests/Host/HostProcess.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

class HostCommandLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void HelpIsAResult_data();
    void HelpIsAResult();
    void TheVersionIsAResult();
    void InfoShowsTheModulesPresentation();
    void StatusTellsHowTheGameStands();
    void StatusAsksNoServer();
    void OptionsStandBeforeAndBehindTheCommand();
    void OnlyTheResultGoesToStandardOutput();
    void QuietLeavesTheResultOnly();
    void VerboseShowsTheModulesLog();
    void ColoursAreForThoseWhoAskForThem();
    void RelativeNamesAreOfTheUsersFolder();
    void NamesMayHoldAnyCharacter_data();
    void NamesMayHoldAnyCharacter();
    void TheSettingsAreTheUsersWhenNoneAreNamed();
    void TheDevelopmentChannelHasItsOwnBuild();

private:
    static Outcome Run(HostGame const& p_Game, QStringList const& p_Arguments)
    {
        return HostProcess(p_Game, p_Arguments).Finish();
    }
    /// Whether that is the last line of a run that completed the game. \param p_Totals a pattern
    static bool IsComplete(QString const& p_Out, HostGame const& p_Game, QString const& p_Totals)
    {
        QString const begin =
            "Mists of Pandaria, build Sample build, is complete in " + p_Game.Folder;
        return QRegularExpression('^' + QRegularExpression::escape(begin) + " \\(" + p_Totals +
                                  "\\)\n$")
            .match(p_Out)
            .hasMatch();
    }
};

void HostCommandLineTest::HelpIsAResult_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("part");
    QTest::newRow("of the program") << QStringList("--help") << "varnholt-host [OPTIONS]";
    QTest::newRow("of a command") << QStringList{"install", "--help"} << "~/Games/Game";
    QTest::newRow("behind other options") << QStringList{"-q", "play", "-h"} << "--account NAME";
    QTest::newRow("by a command") << QStringList("help") << "varnholt-host [OPTIONS]";
    QTest::newRow("of one by another")
        << QStringList{"help", "play"} << "Usage: varnholt-host play [OPTIONS]";
    QTest::newRow("of help") << QStringList{"help", "help"} << "varnholt-host help [OPTIONS]";
}

void HostCommandLineTest::HelpIsAResult()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, part);
    HostGame const game;
    Outcome const outcome = Run(game, arguments);
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(outcome.Out.contains(part), qPrintable(outcome.Out));
}

void HostCommandLineTest::TheVersionIsAResult()
{
    HostGame const game;
    Outcome const outcome = Run(game, {"--version"});
    QCOMPARE(outcome.Err, QString());
    QVERIFY2(QRegularExpression("^\\d+\\.\\d+\\.\\d+\n$").match(outcome.Out).hasMatch(),
             qPrintable(outcome.Out));
    QCOMPARE(outcome.Status, 0);
}

void HostCommandLineTest::InfoShowsTheModulesPresentation()
{
    HostGame const game;
    Outcome const outcome = Run(game, {"info"});
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    for (char const* const line :
         {"Mists of Pandaria\n", "pelmora_app\n", "Pelmora\n", "#09111C\n", "top right\n",
          "3,9,14\n", ":/app_pelmora_app/background.jpg (", ":/app_pelmora_app/icon_mop.png (",
          ":/app_pelmora_app/icon_mop_active.png (", "pelmora_placeholder.jpg\n"})
        QVERIFY2(outcome.Out.contains(line), line);
    QVERIFY(!outcome.Out.contains("not an image"));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
}

void HostCommandLineTest::StatusTellsHowTheGameStands()
{
    HostGame game;
    QCOMPARE(Run(game, {"status"}).Out, QString("Mists of Pandaria is not installed\n"));
    game.AddFiles().PutInstalled();
    QString out = Run(game, {"status"}).Out;
    QVERIFY2(out.contains(": complete\n") || out.contains(" complete\n"), qPrintable(out));
    QVERIFY2(out.contains(game.Folder), qPrintable(out));
    QVERIFY2(out.contains("enUS\n") && out.contains("build_1\n"), qPrintable(out));
    QVERIFY2(!out.contains("pending"), qPrintable(out));

    game.SetSetting("host/pelmora_app/unfinished", true);
    game.Put("ToDownload.db", "a\nb\n");
    out = Run(game, {"status"}).Out;
    QVERIFY2(out.contains("not complete") && out.contains("2 files\n"), qPrintable(out));
    QVERIFY(QDir(game.Folder).removeRecursively());
    Outcome const gone = Run(game, {"status"});
    QVERIFY2(gone.Out.contains("its folder does not exist"), qPrintable(gone.Out));
    QCOMPARE(gone.Err, QString());
    QCOMPARE(gone.Status, 0);
}

void HostCommandLineTest::StatusAsksNoServer()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QCOMPARE(Run(game, {"status"}).Status, 0);
    QCOMPARE(Run(game, {"locale"}).Out, QString("enUS\n"));
    QCOMPARE(game.Server.Requests().size(), std::size_t(0));
    QVERIFY(!game.Has("WTF/Config.wtf"));
}

void HostCommandLineTest::OptionsStandBeforeAndBehindTheCommand()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome =
        HostProcess(game, QStringList{"-q"},
                    QStringList{"install", game.Folder} + HostProcess::Options(game))
            .Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostCommandLineTest::OnlyTheResultGoesToStandardOutput()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome = Run(game, {"install", game.Folder});
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(IsComplete(outcome.Out, game,
                        "6 files fetched: 106\\.5 KiB in 0:0\\d, [0-9.]+ [KM]iB/s on average"),
             qPrintable(outcome.Out));
    QVERIFY2(outcome.Err.startsWith("connecting\n"), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains("\ndownloading base files: file "), qPrintable(outcome.Err));
    QVERIFY2(!outcome.Err.contains('\r') && !outcome.Err.contains('\x1b'), qPrintable(outcome.Err));
}

void HostCommandLineTest::QuietLeavesTheResultOnly()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("readme.txt", "damaged");
    Outcome const outcome = Run(game, {"update", "--quiet"});
    QCOMPARE(outcome.Err, QString());
    QVERIFY2(
        IsComplete(outcome.Out, game, "1 file fetched: 7 bytes in 0:0\\d, \\d+ bytes/s on average"),
        qPrintable(outcome.Out));
    QCOMPARE(outcome.Status, 0);
}

void HostCommandLineTest::VerboseShowsTheModulesLog()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome = Run(game, {"locales", "--verbose"});
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(outcome.Err.contains("[varnholt."), qPrintable(outcome.Err));
    QVERIFY2(!outcome.Out.contains("[varnholt."), qPrintable(outcome.Out));
    QVERIFY(!Run(game, {"locales"}).Err.contains("[varnholt."));
}

void HostCommandLineTest::ColoursAreForThoseWhoAskForThem()
{
    HostGame const game;
    QString const colored = "\x1b[1mvarnholt-host: \x1b[0m\x1b[31mMists of Pandaria is not "
                            "installed\x1b[0m; install it first.\n";
    QCOMPARE(Run(game, {"-q", "update", "--color=always"}).Err, colored);
    QVERIFY(!Run(game, {"-q", "update", "--color=never"}).Err.contains('\x1b'));
    QVERIFY(!Run(game, {"-q", "update", "--color=auto"}).Err.contains('\x1b'));
}

void HostCommandLineTest::RelativeNamesAreOfTheUsersFolder()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome =
        HostProcess(game, {"--settings", "own/file.ini", "--content-url", game.Server.BaseUrl()},
                    {"-q", "install", "./x/../games/mine/"})
            .Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(ReadFile(game.Base + "games/mine/readme.txt"), QByteArray("read me"));
    QVERIFY(ReadFile(game.Base + "own/file.ini").contains("games/mine/"));
}

void HostCommandLineTest::NamesMayHoldAnyCharacter_data()
{
    QTest::addColumn<QByteArray>("locale");
    for (char const* const locale : {"C", "C.UTF-8"})
        QTest::newRow(locale) << QByteArray(locale);
}

void HostCommandLineTest::NamesMayHoldAnyCharacter()
{
    QFETCH(QByteArray, locale);
    HostGame game;
    QString const odd =
        QString::fromUtf8("\xf0\x9f\x8e\xae Jeux d'été \xe6\xb8\xb8 \xf0\xa0\x80\x80");
    game.Folder = game.Base + odd + '/';
    game.AddFiles();
    game.Content.Add({"Data/" + odd + ".MPQ", "bytes"}).Publish(game.Server);
    QMap<QString, QString> const variables{{"LC_ALL", QString::fromLatin1(locale)}};
    QString const logFile = game.Base + odd + ".log";
    QStringList const install{"-q", "install", game.Folder, "--log-file", logFile};
    Outcome const installed = HostProcess(game, install, variables).Finish();
    QCOMPARE(installed.Err, QString());
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(QFile::exists(logFile));
    Outcome const status = HostProcess(game, {"status"}, variables).Finish();
    QVERIFY2(status.Out.contains(game.Folder), qPrintable(status.Out));
    QCOMPARE(HostProcess(game, {"config", "log-file", logFile}, variables).Finish().Status, 0);
    QCOMPARE(HostProcess(game, {"config", "log-file"}, variables).Finish().Out, logFile + '\n');
    QCOMPARE(HostProcess(game, {"-q", "verify"}, variables).Finish().Status, 0);
}

void HostCommandLineTest::TheSettingsAreTheUsersWhenNoneAreNamed()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome =
        HostProcess(game, {"--content-url", game.Server.BaseUrl()}, {"-q", "install", game.Folder})
            .Finish();
    QCOMPARE(outcome.Err, QString());
    QVERIFY(ReadFile(game.Base + "home/.config/varnholt/host.ini").contains("pelmora_app"));
}

void HostCommandLineTest::TheDevelopmentChannelHasItsOwnBuild()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Server.Serve("/pelmora_app/version_dev.json", "{\"build\":\"build_1\"}");
    QCOMPARE(Run(game, {"-q", "--dev-channel", "install", game.Folder}).Status, 0);
    QCOMPARE(game.Server.Count("/pelmora_app/version_dev.json"), 1);
    QCOMPARE(game.Server.Count(game.Content.VersionPath()), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostCommandLineTest)
#include "tst_HostCommandLine.moc"
